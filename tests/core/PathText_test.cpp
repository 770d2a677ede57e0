#include "core/PathText.h"

#include <gtest/gtest.h>

namespace tavlo {
namespace {

constexpr PathStyle posix = PathStyle::Posix, windows = PathStyle::Windows;

TEST(PathText, PathsAreTakenApart) {
    struct Case {
        PathStyle style;
        std::string_view path, folder, name, base, extension;
    };
    constexpr Case cases[] = {
        {posix, "/m/a b/song.mp3", "/m/a b", "song.mp3", "song", "mp3"},
        {posix, "/song.mp3", "/", "song.mp3", "song", "mp3"},
        {posix, "song.tar.gz", "", "song.tar.gz", "song.tar", "gz"},
        {posix, "/m.x/song", "/m.x", "song", "song", ""},
        {posix, "/m/.hidden", "/m", ".hidden", ".hidden", ""},
        {posix, "/m/song.", "/m", "song.", "song", ""},
        {posix, "/m/", "/m", "", "", ""},
        {posix, "/m/a\\b.mp3", "/m", "a\\b.mp3", "a\\b", "mp3"},
        {posix, "", "", "", "", ""},
        {windows, "C:\\m\\song.mp3", "C:\\m", "song.mp3", "song", "mp3"},
        {windows, "C:/m/song.mp3", "C:/m", "song.mp3", "song", "mp3"},
        {windows, "C:\\song.mp3", "C:\\", "song.mp3", "song", "mp3"},
        {windows, "\\\\server\\share\\a.mp3", "\\\\server\\share", "a.mp3", "a", "mp3"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(folderOf(c.path, c.style), c.folder) << c.path;
        EXPECT_EQ(fileNameOf(c.path, c.style), c.name) << c.path;
        EXPECT_EQ(baseNameOf(c.path, c.style), c.base) << c.path;
        EXPECT_EQ(extensionOf(c.path, c.style), c.extension) << c.path;
    }
}

TEST(PathText, FolderAndNameAreJoinedByOneSeparator) {
    EXPECT_EQ(joinPath("/m", "a", posix), "/m/a");
    EXPECT_EQ(joinPath("/m/", "a", posix), "/m/a");
    EXPECT_EQ(joinPath("/", "a", posix), "/a");
    EXPECT_EQ(joinPath("C:\\m", "a", windows), "C:\\m\\a");
    EXPECT_EQ(joinPath("C:/m/", "a", windows), "C:/m/a");
    EXPECT_EQ(joinPath("C:\\", "a", windows), "C:\\a");
}

TEST(PathText, PathsLieInTheirFolderAndAllAboveIt) {
    struct Case {
        PathStyle style;
        std::string_view path, folder;
        bool lies;
    };
    constexpr Case cases[] = {
        {posix, "/m/a/b.mp3", "/m/a", true},
        {posix, "/m/a/b.mp3", "/m", true},
        {posix, "/m/a/b.mp3", "/m/", true},
        {posix, "/m/a/b.mp3", "/", true},
        {posix, "/m/a", "/m/a", true},
        {posix, "/m/ab/c.mp3", "/m/a", false},
        {posix, "/m/A/b.mp3", "/m/a", false},
        {posix, "/m", "/m/a", false},
        {windows, "C:\\M\\A.mp3", "c:\\m", true},
        {windows, "C:\\mm\\a.mp3", "C:\\m", false},
        {windows, "C:\\Пёс\\a.mp3", "C:\\пЁС", true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(liesIn(c.path, c.folder, c.style), c.lies) << c.path << ' ' << c.folder;
    }
}

}  // namespace
}  // namespace tavlo
