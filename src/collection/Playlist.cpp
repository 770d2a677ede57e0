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
    return !trimBlanks(line).empty() && line[0] != '#' && !isAddress && line.size() <= longestEntry;
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

PlaylistLines::PlaylistLines(std::string_view bytes, const PlaylistPlace& place,
                             const CodePage& ansi)
    : place_(place), ansi_(ansi), isUtf8_(place.isUtf8), rest_(withoutMark(bytes, isUtf8_)) {
    mark_ = bytes.substr(0, bytes.size() - rest_.size());
}

bool PlaylistLines::next() {
    if (rest_.empty()) return false;
    const std::string_view before = rest_;
    bytes = takeLine(rest_);
    end = before.substr(bytes.size(), before.size() - rest_.size() - bytes.size());
    text = isUtf8_ ? std::string(bytes) : ansi_.toUtf8(bytes);
    isEntry = tavlo::isEntry(bytes);
    isAbsolute = isEntry && isAbsoluteEntry(text, place_.style);
    return true;
}

std::string PlaylistLines::path() const {
    return resolveEntry(text, place_.folder, place_.style);
}

PlaylistEntries playlistEntries(std::string_view bytes, const PlaylistPlace& place,
                                const CodePage& ansi) {
    PlaylistEntries entries;
    for (PlaylistLines lines(bytes, place, ansi); lines.next();) {
        if (lines.isEntry) entries.push_back({lines.path(), lines.isAbsolute});
    }
    return entries;
}

bool eachEntryOf(const std::string& path, const CodePage& ansi, const TakeEntry& take,
                 const std::atomic<bool>* cancel) {
    const auto bytes = readFile(path, largestPlaylist, cancel);
    if (!bytes) return false;
    for (PlaylistLines lines(*bytes, playlistPlace(path), ansi); lines.next();) {
        if (cancel != nullptr && cancel->load(std::memory_order_relaxed)) break;
        if (lines.isEntry && !take({lines.path(), lines.isAbsolute})) break;
    }
    return true;
}

namespace {
bool namesAny(std::string_view bytes, const PlaylistPlace& place, const CodePage& ansi,
              const NewPathOf& newPath) {
    for (PlaylistLines lines(bytes, place, ansi); lines.next();) {
        if (lines.isEntry && !newPath(lines.path()).empty()) return true;
    }
    return false;
}

// In the list's own encoding, or in UTF-8; nothing where that cannot hold a name.
std::optional<std::string> rewritten(std::string_view bytes, const PlaylistPlace& place,
                                     const CodePage& ansi, const NewPathOf& newPath, bool inUtf8) {
    PlaylistLines lines(bytes, place, ansi);
    const bool isSame = lines.isUtf8() || !inUtf8;
    std::string out(lines.isUtf8() ? lines.mark() : std::string_view());
    out.reserve(bytes.size() + bytes.size() / 16);
    while (lines.next()) {
        const std::string path = lines.isEntry ? newPath(lines.path()) : std::string();
        if (path.empty()) {
            out.append(isSame ? lines.bytes : lines.text).append(lines.end);
            continue;
        }
        std::string entry = newEntry(lines.text, path, place.folder, place.style);
        if (!inUtf8) {
            CodePage::Encoded encoded = ansi.fromUtf8(entry);
            if (encoded.lossy) return std::nullopt;
            entry = std::move(encoded.bytes);
        }
        out.append(entry).append(lines.end);
    }
    return out;
}
}  // namespace

// Most lists name nothing that changes: they are gone through without a copy. Only one copy is held
// at a time.
std::optional<std::string> rewrittenPlaylist(std::string_view bytes, const PlaylistPlace& place,
                                             const CodePage& ansi, const NewPathOf& newPath) {
    if (!namesAny(bytes, place, ansi, newPath)) return std::nullopt;
    if (PlaylistLines(bytes, place, ansi).isUtf8()) {
        return rewritten(bytes, place, ansi, newPath, true);
    }
    auto own = rewritten(bytes, place, ansi, newPath, false);
    if (own && !looksLikeUtf8(*own)) return own;
    own.reset();
    auto wide = rewritten(bytes, place, ansi, newPath, true);
    wide->insert(0, utf8Mark);
    return wide;
}

}  // namespace tavlo
