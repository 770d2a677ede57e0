#include <gtest/gtest.h>

#include "collection/cFilesCollection.h"
#include "support/TempFolder.h"
#include "support/TestProgress.h"
#include "tags/AudioFile.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

Names scan(const TempFolder& folder, bool hidden = false) {
    TestProgress progress;
    cFilesCollection files(progress, progress.cancel);
    files.BaseFolder = folder.path();
    files.FillFromFolder(folder.path(), FileType::Mp3, true, true, hidden);
    Names names;
    for (std::size_t i = 1; i <= files.count(); ++i) names.push_back(files.GetFileSubPath(i));
    return names;
}

TEST(ScanPosix, HiddenFilesAndFoldersAreTakenOnlyWhenAskedFor) {
    const TempFolder folder;
    for (const char* name : {".h.mp3", "a.mp3", ".dir/b.mp3", "dir/.c.mp3"})
        folder.write(name, "x");
    EXPECT_EQ(scan(folder), Names{"a.mp3"});
    EXPECT_EQ(scan(folder, true), (Names{".dir/b.mp3", "dir/.c.mp3", ".h.mp3", "a.mp3"}));
}

TEST(ScanPosix, FoldersBehindLinksAreTakenOnce) {
    const TempFolder folder, outside;
    folder.write("a/1.mp3", "x");
    outside.write("sub/2.mp3", "x");
    fs::create_directory_symlink(folder.path(), folder.path("a/loop"));
    fs::create_directory_symlink(folder.path("a"), folder.path("b"));
    fs::create_directory_symlink(outside.path(), folder.path("c"));
    fs::create_directory_symlink(outside.path(), folder.path("d"));
    fs::create_directory_symlink(outside.path(), outside.path("sub/loop"));
    fs::create_symlink(outside.path("sub/2.mp3"), folder.path("link.mp3"));
    EXPECT_EQ(scan(folder), (Names{"a/1.mp3", "c/sub/2.mp3", "link.mp3"}));
}

TEST(ScanPosix, NamesApartOnlyByCaseAndNamesThatAreNoTextAreHeld) {
    const TempFolder folder;
    for (const char* name : {"a.mp3", "A.mp3", "\xFF.mp3"}) folder.write(name, "x");
    folder.write(std::string(251, 'n') + ".mp3", "x");
    const Names names = scan(folder);
    EXPECT_EQ(names.size(), 4U);
    EXPECT_EQ(names.back(), "\xFF.mp3");
}

TEST(ScanPosix, LinkToNothingIsARowThatCannotBeRead) {
    const TempFolder folder;
    folder.write("a.mp3", "x");
    fs::create_symlink(folder.path("none"), folder.path("b.mp3"));
    EXPECT_EQ(scan(folder), (Names{"a.mp3", "b.mp3"}));
    const CodePage ansi(1252);
    EXPECT_FALSE(ReadAudioFile(folder.path("b.mp3"), {ansi}).OK);
}

}  // namespace
}  // namespace tavlo::test
