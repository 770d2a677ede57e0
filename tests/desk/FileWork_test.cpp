#include "desk/FileWork.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "core/PathText.h"
#include "platform/FileSystem.h"
#include "support/StruckCalls.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"
#include "tags/AudioFile.h"
#include "tags/UpdateTags.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

const std::string song =
    tag(3, textFrame(3, "TPE1", "Old artist") + textFrame(3, "TALB", "Old album")) + mpegFrames(9);

class OneFile : public testing::Test {
 protected:
    [[nodiscard]] FileItem item(const std::string& path) const {
        const auto info = fileInfo(path).value_or(FileInfo{});
        auto changes = std::make_shared<TagChanges>();
        changes->texts[TagField::Title] = "New title";
        changes->texts[TagField::Comment] = std::string(3000, 'c');
        return {7, path, info.size, info.modified, std::move(changes)};
    }
    FileResult save(const FileItem& item, bool evenIfChanged = false) {
        return saveTags(item, evenIfChanged, context, texts);
    }
    // Another program at work on the file.
    static void changeArtist(const std::string& path) {
        const std::size_t at = tag(3, "").size() + frame(3, "TPE1", "").size() + 1;
        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(at)) << "Two";
        file.close();
        fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
    }
    void expectMessage(const FileResult& result, FileOutcome outcome, Text text) const {
        EXPECT_EQ(result.outcome, outcome);
        EXPECT_EQ(result.message, texts.get(text, result.path));
        EXPECT_EQ(result.row, 7U);
    }

    const TempFolder folder;
    const Texts texts;
    StruckCalls calls;
    WorkContext context{1252, {}, calls};
};

TEST_F(OneFile, SavedFileIsReadBack) {
    const FileItem saved = item(folder.write("a.mp3", song));
    const FileResult result = save(saved);
    EXPECT_EQ(result.outcome, FileOutcome::Saved);
    EXPECT_EQ(result.message, "");
    EXPECT_EQ(result.row, 7U);
    EXPECT_EQ(result.changes, saved.changes);
    EXPECT_EQ(result.record.GetTitle(), "New title");
    EXPECT_EQ(result.record.GetArtist(), "Old artist");
    const auto there = fileInfo(saved.path);
    EXPECT_EQ(result.record.Length, there->size);
    EXPECT_EQ(result.record.Modified, there->modified);

    // What was read back is what the next saving asks for.
    FileItem next = saved;
    EXPECT_EQ(save(next).outcome, FileOutcome::Changed) << "it was changed meanwhile";
    next.size = result.record.Length;
    next.modified = result.record.Modified;
    EXPECT_EQ(save(next).outcome, FileOutcome::Saved);
}

TEST_F(OneFile, FileThatWentIsTold) {
    const std::string path = folder.write("a.mp3", song);
    const FileItem gone = item(path);
    fs::remove(fs::path(path));
    for (const bool evenIfChanged : {false, true}) {
        expectMessage(save(gone, evenIfChanged), FileOutcome::Gone, Text::FileGone);
    }
    expectMessage(readAgain(gone, context, texts), FileOutcome::Gone, Text::FileGone);
    for (const bool toBin : {false, true}) {
        expectMessage(deleteFile(gone, toBin, texts), FileOutcome::Gone, Text::FileGone);
    }
    expectMessage(copyToFolder(gone, folder.makeFolder("to"), texts), FileOutcome::Failed,
                  Text::NotCopied);
    EXPECT_TRUE(listFolder(folder.path("to")).empty());
}

TEST_F(OneFile, FolderInItsPlaceStays) {
    folder.write("a.mp3/inside.mp3", song);
    FileItem there = item(folder.path("a.mp3"));
    expectMessage(save(there, true), FileOutcome::Gone, Text::FileGone);
    expectMessage(readAgain(there, context, texts), FileOutcome::Gone, Text::FileGone);
    for (const bool toBin : {false, true}) {
        EXPECT_NE(deleteFile(there, toBin, texts).outcome, FileOutcome::Removed);
        EXPECT_TRUE(folder.read("a.mp3/inside.mp3") == song);
    }
}

TEST_F(OneFile, WhatAnotherProgramChangedIsLeftOrKept) {
    const FileItem changed = item(folder.write("a.mp3", song));
    changeArtist(changed.path);
    const std::string before = folder.read("a.mp3");
    const FileResult left = save(changed);
    EXPECT_EQ(left.outcome, FileOutcome::Changed);
    EXPECT_EQ(left.changes, changed.changes);
    EXPECT_TRUE(folder.read("a.mp3") == before);
    EXPECT_EQ(calls.changes, 0U);

    const FileResult kept = save(changed, true);
    EXPECT_EQ(kept.outcome, FileOutcome::Saved);
    EXPECT_EQ(kept.record.GetArtist(), "Two artist");
    EXPECT_EQ(kept.record.GetAlbum(), "Old album");
    EXPECT_EQ(kept.record.GetTitle(), "New title");
}

TEST_F(OneFile, ReadOnlyFileIsWrittenAndNoLongerReadOnly) {
    const std::string path = folder.write("a.mp3", song);
    fs::permissions(fs::path(path), fs::perms::owner_read);
    const FileResult result = save(item(path));
    EXPECT_EQ(result.outcome, FileOutcome::Saved) << result.message;
    EXPECT_EQ(result.record.GetTitle(), "New title");
    EXPECT_FALSE(result.record.ReadOnly);
}

TEST_F(OneFile, NameThatIsNoTextIsAFileLikeOthers) {
    if (nativePathStyle() == PathStyle::Windows) GTEST_SKIP() << "names are UTF-16 there";
    const std::string name = "\xFF\xD0 a.mp3";
    const std::string path = folder.write(name, song);
    const FileResult result = save(item(path));
    EXPECT_EQ(result.outcome, FileOutcome::Saved) << result.message;
    EXPECT_EQ(result.record.GetTitle(), "New title");
    folder.makeFolder("to");
    EXPECT_EQ(copyToFolder(item(path), folder.path("to"), texts).outcome, FileOutcome::Copied);
    EXPECT_TRUE(folder.read("to/" + name) == folder.read(name));
    EXPECT_EQ(deleteFile(item(path), false, texts).outcome, FileOutcome::Removed);
    EXPECT_FALSE(isTaken(path));
}

TEST_F(OneFile, CallThatFailsLeavesTheOldFile) {
    calls.failingReplace = 1;
    std::size_t failures = 0;
    // Each in a folder of its own, for what a process leaves when it is killed is another matter.
    for (bool isSaved = false; !isSaved; calls.deathAt = failures) {
        const std::string name = std::to_string(failures) + "/a.mp3";
        const FileItem kept = item(folder.write(name, song));
        calls.changes = 0;
        const FileResult result = save(kept);
        isSaved = result.outcome == FileOutcome::Saved;
        EXPECT_EQ(result.record.GetArtist(), "Old artist");
        EXPECT_EQ(result.record.GetTitle(), isSaved ? "New title" : "");
        EXPECT_EQ(result.message.find(kept.path) == std::string::npos, isSaved) << result.message;
        EXPECT_EQ(folder.read(name) == song, !isSaved) << "dead at call " << calls.deathAt;
        ASSERT_LT(++failures, 40U);
    }
    EXPECT_GT(failures, 5U);
}

TEST_F(OneFile, FormatThatIsNotWrittenIsTold) {
    expectMessage(save(item(folder.write("a.flac", "fLaC"))), FileOutcome::Failed,
                  Text::FormatNotWritten);
    EXPECT_EQ(folder.read("a.flac"), "fLaC");
}

TEST_F(OneFile, ItemWithoutChangesIsReadAgain) {
    FileItem bare = item(folder.write("a.mp3", song));
    bare.changes = nullptr;
    const FileResult result = save(bare, true);
    EXPECT_EQ(result.outcome, FileOutcome::Read) << result.message;
    EXPECT_EQ(result.record.GetArtist(), "Old artist");
    EXPECT_TRUE(folder.read("a.mp3") == song);
    EXPECT_EQ(readAgain(bare, context, texts).record.GetArtist(), "Old artist");
}

TEST_F(OneFile, CopiesNeverOverwrite) {
    const FileItem copied = item(folder.write("a.mp3", song));
    folder.write("to/a.mp3", "somebody's");
    for (std::size_t count = 2; count <= 4; ++count) {
        const FileResult result = copyToFolder(copied, folder.path("to"), texts);
        EXPECT_EQ(result.outcome, FileOutcome::Copied) << result.message;
        std::size_t whole = 0;
        const auto entries = listFolder(folder.path("to"));
        for (const FolderEntry& entry : entries) {
            EXPECT_EQ(GetFileType(entry.name), FileType::Mp3) << entry.name;
            whole += folder.read("to/" + entry.name) == song ? 1U : 0U;
        }
        EXPECT_EQ(entries.size(), count);
        EXPECT_EQ(whole, count - 1);
    }
    EXPECT_EQ(folder.read("to/a.mp3"), "somebody's");
    expectMessage(copyToFolder(copied, folder.path(), texts), FileOutcome::Failed,
                  Text::IsInTarget);
    EXPECT_TRUE(folder.read("a.mp3") == song);
    expectMessage(copyToFolder(copied, folder.path("none"), texts), FileOutcome::Failed,
                  Text::NotCopied);
    EXPECT_FALSE(isTaken(folder.path("none")));
}

TEST_F(OneFile, DeletedForGoodIsGone) {
    const FileItem deleted = item(folder.write("a.mp3", song));
    fs::permissions(fs::path(deleted.path), fs::perms::owner_read);
    EXPECT_EQ(deleteFile(deleted, false, texts).outcome, FileOutcome::Removed);
    EXPECT_FALSE(isTaken(deleted.path));
}

}  // namespace
}  // namespace tavlo::test
