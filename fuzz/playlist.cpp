#include "collection/Playlist.h"

#include "fuzz/Promise.h"
#include "platform/Utf8.h"
#include "tags/ByteCursor.h"

using namespace tavlo;

namespace {
void check(std::string_view bytes, bool isUtf8, PathStyle style) {
    static const CodePage ansi(1251);
    const std::string folder = style == PathStyle::Windows ? "C:\\music" : "/music";
    std::string again;
    const auto entries = parsePlaylist(bytes, folder, isUtf8, ansi, style);
    for (const std::string& entry : entries) {
        promise(isUtf8 || isValidUtf8(entry) || bytes.starts_with("\xEF\xBB\xBF"));
        promise(entry.find(style == PathStyle::Windows ? '/' : '\\') == std::string::npos);
        again += entry + '\n';
    }
    // Full paths are left as they are.
    promise(parsePlaylist(again, "elsewhere", true, ansi, style) == entries);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const PathStyle style : {PathStyle::Posix, PathStyle::Windows}) {
        check(textOf({data, size}), true, style);
        check(textOf({data, size}), false, style);
    }
    return 0;
}
