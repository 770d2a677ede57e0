#include "platform/FileSystem.h"

#include <gtest/gtest.h>

#include <map>

#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

TEST(FileSystem, FoldersAreListedWithTheKindOfEachEntry) {
    const TempFolder folder;
    folder.write("Пёс.mp3", "x");
    folder.write("sub/inner.mp3", "x");
    std::map<std::string, bool> found;
    for (const FolderEntry& entry : listFolder(folder.path())) {
        found[entry.name] = entry.isFolder;
        EXPECT_FALSE(entry.isLink) << entry.name;
        EXPECT_FALSE(entry.isHidden) << entry.name;
    }
    EXPECT_EQ(found, (std::map<std::string, bool>{{"Пёс.mp3", false}, {"sub", true}}));
    EXPECT_TRUE(listFolder(folder.path("none")).empty());
    EXPECT_TRUE(listFolder(folder.path("Пёс.mp3")).empty());
    EXPECT_TRUE(listFolder(folder.makeFolder("empty")).empty());
}

TEST(FileSystem, FilesAreDescribed) {
    const TempFolder folder;
    const std::string path = folder.write("a.mp3", std::string(1234, 'x'));
    const auto info = fileInfo(path);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->size, 1234U);
    EXPECT_FALSE(info->isFolder);
    EXPECT_FALSE(info->isReadOnly);
    fs::permissions(path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    EXPECT_TRUE(fileInfo(path)->isReadOnly);
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
    EXPECT_TRUE(fileInfo(folder.path())->isFolder);
    EXPECT_FALSE(fileInfo(folder.path("none")));
    EXPECT_TRUE(folderExists(folder.path()));
    EXPECT_FALSE(folderExists(path));
    EXPECT_FALSE(folderExists(folder.path("none")));
    EXPECT_FALSE(folderExists(""));
}

TEST(FileSystem, OnlyEmptyFoldersAreRemoved) {
    const TempFolder folder;
    const std::string empty = folder.makeFolder("empty");
    const std::string file = folder.write("full/a.mp3", "x");
    EXPECT_TRUE(removeEmptyFolder(empty));
    EXPECT_FALSE(fs::exists(empty));
    EXPECT_FALSE(removeEmptyFolder(folder.path("full")));
    EXPECT_FALSE(removeEmptyFolder(file));
    EXPECT_FALSE(removeEmptyFolder(empty));
    EXPECT_EQ(folder.read("full/a.mp3"), "x");
}

TEST(FileSystem, NewFilesNeverReplaceOthers) {
    const TempFolder folder;
    EXPECT_EQ(writeNewFile(folder.path("a"), "first"), Created::Done);
    EXPECT_EQ(writeNewFile(folder.path("a"), "second"), Created::Exists);
    EXPECT_EQ(folder.read("a"), "first");
    EXPECT_EQ(writeNewFile(folder.path("none/a"), "x"), Created::Failed);
}

TEST(FileSystem, PathsAreMadeAbsolute) {
    const TempFolder folder;
    const std::string path = folder.write("sub/a.mp3", "x");
    EXPECT_EQ(absolutePath(path), path);
    EXPECT_EQ(absolutePath("."), absolutePath(fs::current_path().string()));
    EXPECT_EQ(absolutePath("a"),
              absolutePath(fs::current_path().string()) + nativeSeparator() + "a");
    const std::string canonical = canonicalPath(path);
    EXPECT_FALSE(canonical.empty());
    EXPECT_EQ(canonicalPath(folder.path("sub/../sub/a.mp3")), canonical);
    EXPECT_EQ(canonicalPath(folder.path("none")), "");
}

}  // namespace
}  // namespace tavlo::test
