#include "collection/Playlist.h"

#include "core/ByteCursor.h"
#include "fuzz/Promise.h"
#include "platform/Utf8.h"

using namespace tavlo;

namespace {
using Paths = std::vector<std::string>;

Paths pathsOf(const PlaylistEntries& entries) {
    Paths paths;
    for (const PlaylistEntry& entry : entries) paths.push_back(entry.path);
    return paths;
}

// Files that get other names are named by them afterwards, and the others as before.
void checkRewriting(std::string_view bytes, const PlaylistPlace& place, const CodePage& ansi,
                    const Paths& before) {
    const auto newPath = [&](const std::string& path) {
        return path.size() % 2 == 0 ? joinPath(place.folder, "\u00E9\u0416", place.style)
                                    : std::string();
    };
    const auto rewritten = rewrittenPlaylist(bytes, place, ansi, newPath);
    if (!rewritten) return;
    Paths wanted = before;
    for (std::string& path : wanted) {
        if (const std::string moved = newPath(path); !moved.empty()) path = moved;
    }
    promise(pathsOf(playlistEntries(*rewritten, place, ansi)) == wanted);
}

void check(std::string_view bytes, bool isUtf8, PathStyle style) {
    static const CodePage ansi(1251);
    const std::string folder = style == PathStyle::Windows ? "C:\\music" : "/music";
    std::string again;
    const PlaylistPlace place{folder, isUtf8, style};
    const PlaylistEntries entries = playlistEntries(bytes, place, ansi);
    for (const PlaylistEntry& entry : entries) {
        promise(isUtf8 || isValidUtf8(entry.path) || bytes.starts_with("\xEF\xBB\xBF"));
        promise(entry.path.find(style == PathStyle::Windows ? '/' : '\\') == std::string::npos);
        again += entry.path + '\n';
    }
    // Full paths are left as they are.
    promise(pathsOf(playlistEntries(again, {"elsewhere", true, style}, ansi)) == pathsOf(entries));
    checkRewriting(bytes, place, ansi, pathsOf(entries));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const PathStyle style : {PathStyle::Posix, PathStyle::Windows}) {
        check(textOf({data, size}), true, style);
        check(textOf({data, size}), false, style);
    }
    return 0;
}
