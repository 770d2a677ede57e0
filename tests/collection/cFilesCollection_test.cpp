#include "collection/cFilesCollection.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/TempFolder.h"
#include "support/TestProgress.h"

namespace tavlo::test {
namespace {

using Names = std::vector<std::string>;

/// A path below a made-up root, written as the system does.
std::string native(std::string path) {
    const bool windows = nativePathStyle() == PathStyle::Windows;
    if (windows) std::replace(path.begin(), path.end(), '/', '\\');
    return (windows ? "C:\\" : "/") + path;
}

struct Collection {
    TestProgress progress;
    cFilesCollection files{progress, progress.cancel};

    explicit Collection(const Names& paths = {}) {
        for (const std::string& path : paths) files.AddFile(path);
    }

    /// The sub-paths in their order, with "/".
    Names names() const {
        Names all;
        for (std::size_t i = 1; i <= files.count(); ++i) {
            all.push_back(files.GetFileSubPath(i));
            std::replace(all.back().begin(), all.back().end(), '\\', '/');
        }
        return all;
    }
};

TEST(cFilesCollection, APathIsHeldOnceWhateverItsCase) {
    Collection c({native("m/a.mp3"), native("m/A.MP3"), native("m/Пёс.mp3"), native("m/пЁС.mp3")});
    EXPECT_EQ(c.files.count(), 2U);
    EXPECT_EQ(c.files.GetFile(1), native("m/a.mp3"));
    EXPECT_EQ(c.files.GetFile(2), native("m/Пёс.mp3"));
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 3000; ++i) {
            c.files.AddFile(native((round == 0 ? "x/" : "X/") + std::to_string(i)));
        }
    }
    EXPECT_EQ(c.files.FilesCount(), 3002U);
    EXPECT_EQ(c.files.GetFile(3002), native("x/2999"));
}

TEST(cFilesCollection, RemovedFilesMayComeBackAtTheEnd) {
    Collection c({native("a"), native("b"), native("c")});
    c.files.RemoveFile(0);
    c.files.RemoveFile(4);
    EXPECT_EQ(c.files.count(), 3U);
    c.files.RemoveFile(1);
    c.files.AddFile(native("B"));
    c.files.AddFile(native("A"));
    EXPECT_EQ(c.files.count(), 3U);
    EXPECT_EQ(c.files.GetFile(1), native("b"));
    EXPECT_EQ(c.files.GetFile(2), native("c"));
    EXPECT_EQ(c.files.GetFile(3), native("A"));
    EXPECT_EQ(c.files.GetFile(4), "");
    EXPECT_EQ(c.files.GetFile(0), "");
    c.files.AddFolder(native("f"));
    EXPECT_EQ(c.files.FoldersCount(), 1U);
    EXPECT_EQ(c.files.AllCount(), 4U);
    EXPECT_EQ(c.files.GetFolder(1), native("f"));
    c.files.Clean();
    EXPECT_EQ(c.files.AllCount(), 0U);
}

TEST(cFilesCollection, PathsAreTakenApart) {
    Collection c({native("m/CD 1/07.song.MP3"), native("m/x.wv"), native("other/y.txt")});
    for (const std::string& base : {native("m"), native("m/")}) {
        c.files.BaseFolder = base;
        EXPECT_EQ(c.names()[0], "CD 1/07.song.MP3");
        EXPECT_EQ(c.files.GetFileSubPathOnly(1), "CD 1");
        EXPECT_EQ(c.files.GetFileSubPath(2), "x.wv");
        EXPECT_EQ(c.files.GetFileSubPathOnly(2), "");
        EXPECT_EQ(c.files.GetFileSubPath(3), native("other/y.txt"));
    }
    EXPECT_EQ(c.files.GetFileName(1), "07.song.MP3");
    EXPECT_EQ(c.files.GetFileBaseName(1), "07.song");
    EXPECT_EQ(c.files.GetFileExt(1), "MP3");
    EXPECT_EQ(c.files.GetFilePath(1), native("m/CD 1"));
    EXPECT_EQ(c.files.GetFileType(1), FileType::Mp3);
    EXPECT_EQ(c.files.GetFileType(2), FileType::Wv);
    EXPECT_EQ(c.files.GetFileType(3), FileType::None);
    EXPECT_EQ(c.files.GetFileType(4), FileType::None);
    c.files.FilterFiles(FileType::Wv | FileType::Ogg);
    EXPECT_EQ(c.names(), Names{"x.wv"});
}

TEST(cFilesCollection, BaseFolderIsTheLongestCommonOne) {
    const std::pair<Names, std::string> cases[] = {
        {{"m/a/1.mp3", "m/ab/2.mp3"}, "m"},    {{"m/a/1.mp3", "m/a/b/2.mp3"}, "m/a"},
        {{"m/a/b/2.mp3", "m/a/1.mp3"}, "m/a"}, {{"m/a/1.mp3"}, "m/a"},
        {{"m/a/1.mp3", "m/a/10.mp3"}, "m/a"},  {{"m/1.mp3", "n/1.mp3"}, ""},
    };
    for (const auto& [paths, base] : cases) {
        Collection c;
        for (const std::string& path : paths) c.files.AddFile(native(path));
        c.files.CheckBaseFolder();
        EXPECT_EQ(c.files.BaseFolder, native(base)) << base;
    }
    Collection none;
    none.files.BaseFolder = native("m");
    none.files.CheckBaseFolder();
    EXPECT_EQ(none.files.BaseFolder, "");
}

TEST(cFilesCollection, SortingIsNaturalAndWithoutCase) {
    Collection c;
    c.files.BaseFolder = native("m");
    for (const char* name : {"Track 10.mp3", "track 2.mp3", "b/1.mp3", "B/0.mp3", "a.mp3"}) {
        c.files.AddFile(native("m/") + name);
    }
    c.files.Sort();
    const Names names = c.names();
    EXPECT_EQ(names.front(), "a.mp3");
    EXPECT_EQ(Names(names.end() - 2, names.end()), (Names{"track 2.mp3", "Track 10.mp3"}));
    c.files.AddFile(native("M/A.MP3"));
    EXPECT_EQ(c.files.count(), 5U);
}

// --- Scans ---------------------------------------------------------------------------------------

void makeTree(const TempFolder& folder) {
    for (const char* name : {"z.mp3", "a.MP3", "notes.mp3.txt", "c.ogg", "A/B/2.mp3", "A/1.mp3",
                             "A/B/10.mp3", "D/3.mp3", "abcwv"}) {
        folder.write(name, "x");
    }
}

TEST(cFilesCollection, SubfoldersComeBeforeTheFolderThatHoldsThem) {
    const TempFolder folder;
    makeTree(folder);
    Collection c;
    c.files.BaseFolder = folder.path();
    ASSERT_TRUE(c.files.FillFromFolder(folder.path(), FileType::Mp3, true, true, false));
    Names names = c.names();
    ASSERT_EQ(names.size(), 6U);
    std::sort(names.begin(), names.begin() + 2);
    EXPECT_EQ(names, (Names{"A/B/10.mp3", "A/B/2.mp3", "A/1.mp3", "D/3.mp3", "a.MP3", "z.mp3"}));
    ASSERT_EQ(c.progress.ranges.size(), 2U);
    EXPECT_EQ(c.progress.ranges[0], 9U);  // every file counts, of whatever type
    EXPECT_EQ(c.progress.ranges[1], 0U);
    EXPECT_EQ(c.progress.steps, 9U);
}

TEST(cFilesCollection, MaskAndCleanDecideWhatIsHeld) {
    const TempFolder folder;
    makeTree(folder);
    Collection c({native("old.mp3")});
    c.files.BaseFolder = folder.path();
    c.files.FillFromFolder(folder.path(), FileType::Ogg | FileType::Wv, false, true, false);
    EXPECT_EQ(c.names(), (Names{"abcwv", "c.ogg"}));
    c.files.FillFromFolder(folder.path("A"), FileType::Mp3, false, false, false);
    EXPECT_EQ(c.names(), (Names{"abcwv", "c.ogg", "A/1.mp3"}));
    c.files.FillFromFolder(folder.path("A"), FileType::Mp3, false, false, false);
    EXPECT_EQ(c.files.count(), 3U);
    EXPECT_FALSE(c.files.FillFromFolder(folder.path("none"), 0xFFFF, true, true, true));
    EXPECT_EQ(c.files.count(), 3U);
    EXPECT_TRUE(c.files.FillFromFolder(folder.makeFolder("empty"), 0xFFFF, true, true, true));
    EXPECT_EQ(c.files.count(), 0U);
}

TEST(cFilesCollection, CancelLeavesWhatWasGathered) {
    const TempFolder folder;
    for (const char* name : {"1.mp3", "2.mp3", "3.mp3", "4.mp3"}) folder.write(name, "x");
    for (const bool subfolders : {false, true}) {
        Collection c;
        c.progress.cancelAt = 2;
        c.files.FillFromFolder(folder.path(), FileType::Mp3, subfolders, true, false);
        EXPECT_EQ(c.files.count(), 2U) << subfolders;
        EXPECT_EQ(c.progress.ranges.back(), 0U);
    }
}

TEST(cFilesCollection, ACancelBeforeTheScanGathersNothing) {
    const TempFolder folder;
    folder.write("1.mp3", "x");
    Collection c;
    c.progress.cancel = true;
    c.files.FillFromFolder(folder.path(), FileType::Mp3, true, true, false);
    EXPECT_EQ(c.files.count(), 0U);
}

TEST(cFilesCollection, SizesAreAddedUp) {
    const TempFolder folder;
    Collection c({folder.write("a.mp3", std::string(1000, 'x')),
                  folder.write("b.mp3", std::string(1048, 'x')), folder.path("none.mp3")});
    EXPECT_EQ(c.files.GetFileSize(2), 1048U);
    EXPECT_EQ(c.files.GetFileSize(3), 0U);
    EXPECT_EQ(c.files.GetFileSize(4), 0U);
    EXPECT_EQ(c.files.GetTotalFilesSize(), 2048U);
    EXPECT_EQ(c.files.GetTotalFilesSizeK(), 2U);
    EXPECT_EQ(c.files.GetTotalFilesSizeM(), 0U);
}

TEST(cFilesCollection, ListedFoldersAreScannedAndEmptyOnesDeleted) {
    const TempFolder folder;
    makeTree(folder);
    const std::string empty = folder.makeFolder("empty");
    Collection c;
    c.files.BaseFolder = folder.path();
    for (const std::string& each : {folder.path("D"), empty, folder.path("A")}) {
        c.files.AddFolder(each);
    }
    c.files.GetFilesFromFolders(FileType::Mp3);
    EXPECT_EQ(c.names(), (Names{"D/3.mp3", "A/1.mp3"}));
    c.files.DeleteEmptyFolders();
    EXPECT_FALSE(std::filesystem::exists(empty));
    EXPECT_TRUE(std::filesystem::exists(folder.path("A/1.mp3")));
    EXPECT_EQ(c.files.FoldersCount(), 2U);
    EXPECT_EQ(c.files.GetFolder(2), folder.path("A"));
}

}  // namespace
}  // namespace tavlo::test
