#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "collection/NotedRename.h"
#include "platform/FileSystem.h"
#include "support/RenameDesk.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

JournalBatch oneRow() {
    return {{{7, 1, "/m/1.mp3", "/m/2.mp3"}}, {}, {"/m"}, {}, {}, true, true};
}

// What anybody else can have written or put there is not believed.
TEST(RenameJournalPosix, OnlyTheUsersOwnFilesAreBelieved) {
    struct Case {
        const char* name;
        void (*spoil)(const fs::path& folder, const fs::path& file);
        bool isBelieved;
    };
    const Case cases[] = {
        {"as it was", [](const fs::path&, const fs::path&) {}, true},
        {"a group may write", [](auto&, auto& file) { ::chmod(file.c_str(), 0664); }, false},
        {"all may write", [](auto&, auto& file) { ::chmod(file.c_str(), 0646); }, false},
        {"all may write to the folder", [](auto& folder, auto&) { ::chmod(folder.c_str(), 0777); },
         false},
        {"a link",
         [](auto& folder, auto& file) {
             fs::rename(file, folder / "other");
             fs::create_symlink(folder / "other", file);
         },
         false},
        {"a pipe",
         [](auto&, auto& file) {
             fs::remove(file);
             ::mkfifo(file.c_str(), 0600);
         },
         false},
        {"somebody else's",
         [](auto&, auto& file) {
             if (::chown(file.c_str(), 65534, 65534) != 0) fs::remove(file);
         },
         false},
    };
    for (const Case& each : cases) {
        const TempFolder folder;
        RenameJournal journal(folder.path());
        ASSERT_TRUE(journal.begin("now", oneRow()));
        each.spoil(folder.path(), journal.path());
        EXPECT_EQ(journal.last().rows.size(), each.isBelieved ? 1U : 0U) << each.name;
    }
}

TEST(RenameJournalPosix, ItsFilesAreTheUsersWhateverTheMask) {
    const TempFolder folder;
    const mode_t before = ::umask(0);
    RenameJournal journal(folder.path("a/b"));
    EXPECT_TRUE(journal.begin("now", oneRow()));
    ::umask(before);
    EXPECT_EQ(journal.last().rows.size(), 1U);
}

// A file that somebody put in the place of the renamed one, alike in size and time.
TEST(RenameJournalPosix, AnotherFileOfThatNameIsNotTakenBack) {
    RenameDesk desk("%T", {{"2.mp3", "bytes"}});
    const std::string path = desk.folder.path("2.mp3");
    const auto info = fileInfo(path);
    const auto id = lastingFileId(path);
    if (!id) GTEST_SKIP() << "this disk keeps no numbers";
    const std::string old = desk.folder.path("1.mp3");
    const FileId other{id->volume, id->index + 1}, elsewhere{id->volume + 1, id->index + 1};
    for (const auto& [noted, isSame] :
         {std::pair(std::optional(*id), true), std::pair(std::optional(other), false),
          std::pair(std::optional(elsewhere), true), std::pair(std::optional<FileId>(), true)}) {
        const JournalBatch batch{
            {{info->size, info->modified, old, path, noted}}, {}, {}, {}, {}, true, true};
        EXPECT_EQ(BatchBack(batch).plan().size(), isSame ? 1U : 0U);
        EXPECT_EQ(BatchBack(batch).changedRows().size(), isSame ? 0U : 1U);
    }
}

}  // namespace
}  // namespace tavlo::test
