#include "tags/FileType.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tavlo {
namespace {

struct Kind {
    std::string_view name;
    FileTypes type;
    std::string_view word;
    bool hasTags;
};

constexpr Kind kinds[] = {
    {"a.mp3", 1, "MP3", true},      {"a.ogg", 2, "OGG", true},      {"a.mpc", 4, "MPC", true},
    {"a.wma", 8, "WMA", true},      {"a.mp4", 16, "MP4", true},     {"a.m4a", 16, "MP4", true},
    {"a.wav", 32, "WAVE", false},   {"a.m3u", 64, "M3U", false},    {"a.mxc", 128, "MXC", false},
    {"a.aac", 256, "AAC", false},   {"a.flac", 512, "FLAC", true},  {"a.wv", 1024, "WV", true},
    {"a.ape", 2048, "APE", true},   {"a.cue", 4096, "CUE", false},  {"a.jpg", 8192, "JPEG", false},
    {"a.png", 16384, "PNG", false}, {"a.bmp", 32768, "BMP", false},
};

TEST(FileType, EveryKindIsToldByTheEndOfTheName) {
    std::set<FileTypes> seen;
    for (const Kind& kind : kinds) {
        EXPECT_EQ(GetFileType(kind.name), kind.type) << kind.name;
        EXPECT_EQ(fileTypeName(kind.type), kind.word);
        EXPECT_EQ(HasEditableTags(kind.name), kind.hasTags) << kind.name;
        seen.insert(kind.type);
    }
    EXPECT_EQ(seen.size(), 16U);
}

TEST(FileType, OnlyTheLastCharactersCountAndNoCase) {
    constexpr std::pair<std::string_view, FileTypes> cases[] = {
        {"SONG.MP3", FileType::Mp3},
        {"song.Mp3", FileType::Mp3},
        {"song.xmp3", FileType::Mp3},
        {"mp3", FileType::Mp3},
        {"abcwv", FileType::Wv},
        {"wv", FileType::Wv},
        {"C:\\Music\\Track.FLAC", FileType::Flac},
        {"lac", FileType::None},
        {"song.mp3.bak", FileType::None},
        {"notes.mp3.txt", FileType::None},
        {"song.mp3 ", FileType::None},
        {"p3", FileType::None},
        {"v", FileType::None},
        {"", FileType::None},
        {"a.jpeg", FileType::None},
    };
    for (const auto& [name, type] : cases) EXPECT_EQ(GetFileType(name), type) << name;
}

}  // namespace
}  // namespace tavlo
