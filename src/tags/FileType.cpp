#include "tags/FileType.h"

#include <algorithm>
#include <array>

#include "platform/PlainText.h"

namespace tavlo {

namespace {
struct Row {
    FileTypes type;
    std::string_view name;
    std::array<std::string_view, 2> endings;  // in lower case; an empty one is none
};

// In the order of the tests: the first hit wins.
constexpr std::array<Row, 16> rows{{
    {FileType::Mp3, "MP3", {"mp3"}},
    {FileType::Mp4, "MP4", {"mp4", "m4a"}},
    {FileType::Aac, "AAC", {"aac"}},
    {FileType::Mpc, "MPC", {"mpc"}},
    {FileType::Ogg, "OGG", {"ogg"}},
    {FileType::Wma, "WMA", {"wma"}},
    {FileType::Flac, "FLAC", {"flac"}},
    {FileType::Wv, "WV", {"wv"}},
    {FileType::Ape, "APE", {"ape"}},
    {FileType::Wave, "WAVE", {"wav"}},
    {FileType::Cue, "CUE", {"cue"}},
    {FileType::Mxc, "MXC", {"mxc"}},
    {FileType::M3u, "M3U", {"m3u"}},
    {FileType::Jpeg, "JPEG", {"jpg"}},
    {FileType::Png, "PNG", {"png"}},
    {FileType::Bmp, "BMP", {"bmp"}},
}};

bool endsWith(std::string_view path, std::string_view ending) {
    return !ending.empty() && path.size() >= ending.size() &&
           sameAscii(path.substr(path.size() - ending.size()), ending);
}
}  // namespace

FileTypes GetFileType(std::string_view path) {
    for (const Row& row : rows) {
        for (const std::string_view ending : row.endings) {
            if (endsWith(path, ending)) return row.type;
        }
    }
    return FileType::None;
}

std::string_view fileTypeName(FileTypes type) {
    const auto* row =
        std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.type == type; });
    return row == rows.end() ? std::string_view() : row->name;
}

bool HasEditableTags(std::string_view path) {
    return (GetFileType(path) & FileType::Tagged) != 0;
}

}  // namespace tavlo
