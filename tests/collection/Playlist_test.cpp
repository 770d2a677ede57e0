#include "collection/Playlist.h"

#include <gtest/gtest.h>

#include "collection/cFilesCollection.h"
#include "support/TempFolder.h"
#include "support/TestProgress.h"

namespace tavlo::test {
namespace {

using Names = std::vector<std::string>;

Names pathsOf(const PlaylistEntries& entries) {
    Names paths;
    for (const PlaylistEntry& entry : entries) paths.push_back(entry.path);
    return paths;
}

TEST(Playlist, EntriesAreResolvedAgainstTheFolder) {
    struct Case {
        PathStyle style;
        std::string_view folder, bytes;
        Names entries;
    };
    constexpr PathStyle posix = PathStyle::Posix, windows = PathStyle::Windows;
    const Case cases[] = {
        {posix, "/m", "a.mp3", {"/m/a.mp3"}},
        {posix,
         "/m",
         "#EXTM3U\r\n#EXTINF:5,A - B\r\na.mp3\r\n\r\nb.mp3\r\n",
         {"/m/a.mp3", "/m/b.mp3"}},
        {posix, "/m", "a.mp3\nb.mp3\n", {"/m/a.mp3", "/m/b.mp3"}},
        {posix, "/m", "CD1\\a.mp3", {"/m/CD1/a.mp3"}},
        {posix, "/m", "CD1//a.mp3 \t\r \n", {"/m/CD1/a.mp3"}},
        {posix, "/m", "/n/a b.mp3", {"/n/a b.mp3"}},
        {posix, "/m", "", {}},
        {windows, "C:\\m", "a.mp3\r\nCD1/b.mp3", {"C:\\m\\a.mp3", "C:\\m\\CD1\\b.mp3"}},
        {windows, "C:\\m", "D:\\n\\a.mp3", {"D:\\n\\a.mp3"}},
        {windows, "C:\\m", "D:/n/a.mp3", {"D:\\n\\a.mp3"}},
        {windows, "C:\\m", "CD1//a.mp3", {"C:\\m\\CD1\\a.mp3"}},
        {windows, "C:\\m", "\\\\server\\share\\a.mp3", {"\\\\server\\share\\a.mp3"}},
    };
    const CodePage ansi(1252);
    for (const Case& c : cases) {
        const PlaylistPlace place{c.folder, false, c.style};
        EXPECT_EQ(pathsOf(playlistEntries(c.bytes, place, ansi)), c.entries) << c.bytes;
    }
}

TEST(Playlist, EntriesFollowTheirFilesAndAllElseStays) {
    struct Case {
        PathStyle style;
        std::string_view folder, before, from, to, after;
        bool isUtf8 = false;
    };
    constexpr PathStyle posix = PathStyle::Posix, windows = PathStyle::Windows;
    const Case cases[] = {
        {windows, "C:\\m", "#a.mp3\r\na.mp3\n\r\nb.mp3", "C:\\m\\a.mp3", "C:\\m\\X\\a.mp3",
         "#a.mp3\r\nX\\a.mp3\n\r\nb.mp3"},
        {windows, "C:\\m", "X/a.mp3", "C:\\m\\X\\a.mp3", "C:\\m\\Y\\a.mp3", "Y/a.mp3"},
        {windows, "C:\\m", "D:\\a.mp3", "D:\\a.mp3", "D:\\X\\b.mp3", "D:\\X\\b.mp3"},
        {windows, "C:\\m", "a.mp3", "C:\\m\\a.mp3", "D:\\a.mp3", "D:\\a.mp3"},
        {posix, "/m/l", "..\\a.mp3", "/m/a.mp3", "/m/X/a.mp3", "..\\X\\a.mp3"},
        {posix, "/m/l", "./../l//a.mp3", "/m/l/a.mp3", "/n/a.mp3", "../../n/a.mp3"},
        {posix, "/m", "b.mp3\r\n", "/m/a.mp3", "/m/c.mp3", ""},
        {posix, "/m", "\xC0.mp3\r\n\xC1.mp3", "/m/А.mp3", "/m/Ж.mp3", "\xC6.mp3\r\n\xC1.mp3"},
        {posix, "/m", "\xC0.mp3\r\na.mp3", "/m/a.mp3", "/m/é.mp3", "\xEF\xBB\xBFА.mp3\r\né.mp3"},
        {posix, "/m",
         "\xEF\xBB\xBF"
         "a.mp3",
         "/m/a.mp3", "/m/Ж.mp3", "\xEF\xBB\xBFЖ.mp3"},
        {posix, "/m", "А.mp3\na.mp3", "/m/a.mp3", "/m/Ж.mp3", "А.mp3\nЖ.mp3", true},
    };
    const CodePage ansi(1251);
    for (const Case& c : cases) {
        const auto after = rewrittenPlaylist(
            c.before, {c.folder, c.isUtf8, c.style}, ansi,
            [&](const std::string& path) { return std::string(path == c.from ? c.to : ""); });
        EXPECT_EQ(after.value_or(""), c.after) << c.before;
    }
}

TEST(Playlist, NamesAreInTheCodePageUnlessTheListIsUtf8) {
    const TempFolder folder;
    const CodePage ansi(1251);
    const std::string cyrillic = "\xCF\xB8\xF1.mp3";
    const std::pair<std::string, std::string> lists[] = {
        {"ansi.m3u", cyrillic}, {"marked.m3u", "\xEF\xBB\xBFПёс.mp3"}, {"named.M3U8", "Пёс.mp3"}};
    for (const auto& [name, bytes] : lists) {
        PlaylistEntries entries;
        const auto take = [&](PlaylistEntry entry) {
            entries.push_back(std::move(entry));
            return true;
        };
        EXPECT_TRUE(eachEntryOf(folder.write(name, bytes), ansi, take));
        EXPECT_EQ(pathsOf(entries), Names{folder.path("Пёс.mp3")}) << name;
    }
    EXPECT_FALSE(eachEntryOf(folder.path("none.m3u"), ansi, [](const auto&) { return true; }));
}

TEST(Playlist, ACancelIsHeardWhileAListIsRead) {
    const TempFolder folder;
    const CodePage ansi(1252);
    std::string bytes;
    for (int i = 0; i < 1000; ++i) bytes += "a" + std::to_string(i) + ".mp3\r\n";
    const std::string list = folder.write("l.m3u", bytes);
    TestProgress progress;
    std::size_t taken = 0;
    const auto take = [&](const PlaylistEntry&) {
        progress.cancel = ++taken == 10;
        return true;
    };
    EXPECT_TRUE(eachEntryOf(list, ansi, take, &progress.cancel));
    EXPECT_EQ(taken, 10U);
    EXPECT_FALSE(eachEntryOf(list, ansi, take, &progress.cancel));
}

TEST(Playlist, ALineLongerThanAnyPathNamesNothing) {
    const CodePage ansi(1252);
    const std::string longest(longestEntry - 4, 'a');
    EXPECT_EQ(playlistEntries(longest + ".mp3\n", {"/m"}, ansi).size(), 1U);
    EXPECT_EQ(playlistEntries("a" + longest + ".mp3\n", {"/m"}, ansi).size(), 0U);
}

TEST(Playlist, CollectionTakesTheEntriesOfItsTypes) {
    const TempFolder folder;
    const CodePage ansi(1252);
    TestProgress progress;
    cFilesCollection files(progress, progress.cancel);
    const std::string list = folder.write("l.m3u", "a.mp3\r\nCD1\\b.ogg\r\na.mp3\r\nc.jpg\r\n");
    EXPECT_TRUE(files.FillFromPlaylist(list, FileType::Audio, ansi));
    ASSERT_EQ(files.count(), 2U);
    EXPECT_EQ(files.GetFile(1), folder.path("a.mp3"));
    EXPECT_EQ(files.GetFile(2), folder.path("CD1/b.ogg"));
    EXPECT_FALSE(files.FillFromPlaylist(folder.path("none.m3u"), FileType::Audio, ansi));
    EXPECT_EQ(files.count(), 2U);
}

}  // namespace
}  // namespace tavlo::test
