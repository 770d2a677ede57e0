#include "platform/FileSystem.h"

#include <gtest/gtest.h>

#include <map>

#include "platform/File.h"
#include "platform/FileTransfer.h"
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

// Another system may have made names that this one would tidy up.
TEST(FileSystem, NamesAreTakenToTheLetter) {
    const TempFolder folder;
    const std::string separator(1, nativeSeparator());
    const std::vector<std::string> folders{"Album", "Album.", "Album ", "Album. .", "aux"};
    const std::vector<std::string> names{"a", "a.", "a ", "con.mp3", "nul"};
    for (const std::string& below : folders) {
        const std::string path = folder.path() + separator + below;
        ASSERT_EQ(createFolder(path), Created::Done) << below;
        for (const std::string& name : names) {
            ASSERT_EQ(writeNewFile(path + separator + name, below + name), Created::Done) << name;
        }
    }
    EXPECT_EQ(listFolder(folder.path()).size(), folders.size());
    for (const std::string& below : folders) {
        const std::string path = folder.path() + separator + below;
        EXPECT_EQ(listFolder(path).size(), names.size()) << below;
        for (const std::string& name : names) {
            const std::string file = path + separator + name;
            EXPECT_EQ(readFile(file, 100), below + name) << file;
            EXPECT_TRUE(replaceFile(file, "new")) << file;
            EXPECT_EQ(readFile(absolutePath(file), 100), "new") << file;
            EXPECT_EQ(fileInfo(file)->size, 3U) << file;
        }
        for (const std::string& name : names) {
            EXPECT_EQ(moveFile(path + separator + name, path + separator + "other" + name),
                      Transfer::Done);
            EXPECT_TRUE(removeEntry(path + separator + "other" + name)) << name;
        }
        EXPECT_TRUE(removeEmptyFolder(path)) << below;
    }
}

TEST(FileSystem, AFileThatAnotherHoldsIsInUse) {
    const TempFolder folder;
    const std::string path = folder.write("a.mp3", "x");
    EXPECT_FALSE(isInUse(path));
    EXPECT_FALSE(isInUse(folder.path("none")));
    File held;
    ASSERT_TRUE(held.open(path, Access::ReadWrite));
    EXPECT_TRUE(isInUse(path));
    held.close();
    EXPECT_FALSE(isInUse(path));
}

}  // namespace
}  // namespace tavlo::test
