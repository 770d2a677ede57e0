#include "collection/Playlist.h"

#include <algorithm>

#include "core/TextCase.h"
#include "platform/File.h"
#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

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

std::string_view withoutBlanksBehind(std::string_view entry) {
    return entry.substr(0, entry.find_last_not_of(" \t\r") + 1);
}

// "." and ".." steps taken out; a step above the root stays.
std::string withoutSteps(const std::string& path, PathStyle style) {
    const char separator = separatorOf(style);
    std::string out;
    std::vector<std::size_t> levels;  // where each named level begins
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find(separator, at), path.size());
        const std::string_view level = std::string_view(path).substr(at, end - at);
        if (level == ".." && !levels.empty()) {
            out.resize(levels.back());
            levels.pop_back();
        } else if (level != ".") {
            const bool isNamed = !level.empty() && level != ".." && !level.ends_with(':');
            if (isNamed) levels.push_back(out.size());
            out += level;
            if (end < path.size()) out += separator;
        }
        at = end + 1;
    }
    return out;
}

bool isEntry(std::string_view line) {
    const bool isAddress = line.find("://") != std::string_view::npos;
    return !trimBlanks(line).empty() && line[0] != '#' && !isAddress;
}

bool isAbsoluteEntry(std::string_view entry, PathStyle style) {
    return isAbsolutePath(nativeEntry(entry, style), style) || isDrivePath(entry);
}

// From one folder to a file, up with ".." where it must; the full path where none leads there.
std::string relativePath(std::string_view path, std::string_view folder, PathStyle style) {
    std::string up;
    while (!folder.empty() && !liesIn(path, folder, style)) {
        up += std::string("..") + separatorOf(style);
        folder = parentOf(folder, style);
    }
    if (folder.empty()) return std::string(path);
    path.remove_prefix(folder.size());
    while (!path.empty() && isSeparator(path[0], style)) path.remove_prefix(1);
    return up + std::string(path);
}

// In the form that the old entry had.
std::string newEntry(std::string_view entry, std::string_view path, std::string_view folder,
                     PathStyle style) {
    std::string text =
        isAbsoluteEntry(entry, style) ? std::string(path) : relativePath(path, folder, style);
    const std::size_t at = entry.find_first_of("\\/");
    const char separator = at == std::string_view::npos ? separatorOf(style) : entry[at];
    std::replace(text.begin(), text.end(), separatorOf(style), separator);
    return plainEntry(text, style);
}

// The list without a mark. One without it is UTF-8 as well where it could be: by chance, text of a
// code page hardly ever is.
std::string_view withoutMark(std::string_view bytes, bool& isUtf8) {
    const bool hasMark = bytes.starts_with(utf8Mark);
    isUtf8 = isUtf8 || hasMark || looksLikeUtf8(bytes);
    return bytes.substr(hasMark ? utf8Mark.size() : 0);
}
}  // namespace

bool isUtf8Playlist(std::string_view path) {
    return equalsNoCase(extensionOf(path, nativePathStyle()), "m3u8");
}

bool looksLikeUtf8(std::string_view bytes) {
    const auto isBeyondAscii = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    return std::ranges::any_of(bytes, isBeyondAscii) && isValidUtf8(bytes);
}

std::string withMark(std::string_view utf8) {
    return std::string(utf8Mark).append(utf8);
}

bool isPlaylist(std::string_view path) {
    return equalsNoCase(extensionOf(path, nativePathStyle()), "m3u") || isUtf8Playlist(path);
}

std::string plainEntry(const std::string& entry, PathStyle style) {
    return entry.starts_with('#') ? std::string(".") + separatorOf(style) + entry : entry;
}

PlaylistPlace playlistPlace(std::string_view path) {
    return {folderOf(path, nativePathStyle()), isUtf8Playlist(path)};
}

std::string resolveEntry(std::string_view entry, std::string_view folder, PathStyle style) {
    const std::string native = nativeEntry(withoutBlanksBehind(entry), style);
    if (isAbsoluteEntry(entry, style)) return withoutSteps(native, style);
    return withoutSteps(joinPath(folder, native, style), style);
}

namespace {
// `take` gets each line in UTF-8, and whether it is an entry.
template <typename Take>
void eachLine(std::string_view bytes, const PlaylistPlace& place, const CodePage& ansi, Take take) {
    bool isUtf8 = place.isUtf8;
    bytes = withoutMark(bytes, isUtf8);
    while (!bytes.empty()) {
        const std::string_view line = takeLine(bytes);
        take(isUtf8 ? std::string(line) : ansi.toUtf8(line), isEntry(line));
    }
}
}  // namespace

PlaylistEntries playlistEntries(std::string_view bytes, const PlaylistPlace& place,
                                const CodePage& ansi) {
    PlaylistEntries entries;
    eachLine(bytes, place, ansi, [&](const std::string& line, bool isEntry) {
        if (!isEntry) return;
        entries.push_back(
            {resolveEntry(line, place.folder, place.style), isAbsoluteEntry(line, place.style)});
    });
    return entries;
}

std::vector<std::string> playlistLines(std::string_view bytes, const PlaylistPlace& place,
                                       const CodePage& ansi) {
    std::vector<std::string> lines;
    eachLine(bytes, place, ansi, [&](std::string line, bool isEntry) {
        lines.push_back(isEntry ? resolveEntry(line, place.folder, place.style) : std::move(line));
    });
    return lines;
}

std::optional<PlaylistEntries> readPlaylistEntries(const std::string& path, const CodePage& ansi) {
    const auto bytes = readFile(path, largestPlaylist);
    if (!bytes) return std::nullopt;
    return playlistEntries(*bytes, playlistPlace(path), ansi);
}

std::optional<std::string> rewrittenPlaylist(std::string_view bytes, const PlaylistPlace& place,
                                             const CodePage& ansi, const NewPathOf& newPath) {
    bool isUtf8 = place.isUtf8;
    const std::string_view text = withoutMark(bytes, isUtf8);
    const std::string_view mark = bytes.substr(0, bytes.size() - text.size());
    std::string own;   // the list in its own encoding
    std::string wide;  // and in UTF-8
    bool changes = false;
    bool fits = true;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view before = rest;
        const std::string_view line = takeLine(rest);
        const std::string_view end =
            before.substr(line.size(), before.size() - rest.size() - line.size());
        std::string shown = isUtf8 ? std::string(line) : ansi.toUtf8(line);
        const std::string path =
            isEntry(line) ? newPath(resolveEntry(shown, place.folder, place.style)) : std::string();
        if (path.empty()) {
            own.append(line).append(end);
        } else {
            shown = newEntry(shown, path, place.folder, place.style);
            const CodePage::Encoded encoded = ansi.fromUtf8(shown);
            fits = fits && !encoded.lossy;
            own.append(isUtf8 ? shown : encoded.bytes).append(end);
            changes = true;
        }
        wide.append(shown).append(end);
    }
    if (!changes) return std::nullopt;
    if (isUtf8 || (fits && !looksLikeUtf8(own))) return std::string(mark) + own;
    return withMark(wide);
}

}  // namespace tavlo
