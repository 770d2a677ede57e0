#include "collection/Playlist.h"

#include <algorithm>

#include "core/TextCase.h"
#include "platform/File.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::uint64_t largestPlaylist = 64U << 20U;  // bytes

bool isDrivePath(std::string_view entry) {
    return entry.size() >= 3 && entry[1] == ':' && (entry[2] == '\\' || entry[2] == '/');
}

// The entry with the system's own separators; doubled ones inside become one.
std::string nativeEntry(std::string_view entry, PathStyle style) {
    const char separator = separatorOf(style);
    std::string native;
    for (const char c : entry) {
        const char next = c == '\\' || c == '/' ? separator : c;
        const bool doubled = next == separator && native.size() > 1 && native.back() == separator;
        if (!doubled) native += next;
    }
    return native;
}

std::string resolved(std::string_view entry, std::string_view folder, PathStyle style) {
    std::string native = nativeEntry(entry, style);
    if (isAbsolutePath(native, style) || isDrivePath(entry)) return native;
    while (native.starts_with(std::string(".") + separatorOf(style))) native.erase(0, 2);
    return joinPath(folder, native, style);
}

}  // namespace

std::vector<std::string> parsePlaylist(std::string_view bytes, std::string_view folder, bool isUtf8,
                                       const CodePage& ansi, PathStyle style) {
    if (bytes.starts_with(utf8Mark)) {
        bytes.remove_prefix(utf8Mark.size());
        isUtf8 = true;
    }
    std::vector<std::string> entries;
    while (!bytes.empty()) {
        const std::string_view line = takeLine(bytes);
        const bool isAddress = line.find("://") != std::string_view::npos;
        if (trimBlanks(line).empty() || line[0] == '#' || isAddress) continue;
        const std::string entry = isUtf8 ? std::string(line) : ansi.toUtf8(line);
        entries.push_back(resolved(entry, folder, style));
    }
    return entries;
}

std::optional<std::vector<std::string>> readPlaylist(const std::string& path,
                                                     const CodePage& ansi) {
    const PathStyle style = nativePathStyle();
    const auto text = readFile(path, largestPlaylist);
    if (!text) return std::nullopt;
    const bool isUtf8 = equalsNoCase(extensionOf(path, style), "m3u8");
    return parsePlaylist(*text, folderOf(path, style), isUtf8, ansi, style);
}

}  // namespace tavlo
