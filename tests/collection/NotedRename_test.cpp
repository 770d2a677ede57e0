#include "collection/NotedRename.h"

#include <gtest/gtest.h>

#include "support/RenameDesk.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

std::string song(const std::string& title, const std::string& album = "") {
    const std::string frames = textFrame(4, "TIT2", title, 3);
    return tag(4, album.empty() ? frames : frames + textFrame(4, "TALB", album, 3)) + mpegFrames(2);
}

// A chain, a circle of three, one that goes into a new folder, and lists that name them all.
const std::string list = "1.mp3\r\n2.mp3\r\n4.mp3\r\n#x\r\n5.mp3\r\n6.mp3\r\n7.mp3\r\n";
const Files start = {{"1.mp3", song("2")}, {"2.mp3", song("3")}, {"4.mp3", song("5")},
                     {"5.mp3", song("6")}, {"6.mp3", song("4")}, {"7.mp3", song("Ж", "D")},
                     {"l.m3u", list},      {"k.m3u8", list}};

struct Desk : RenameDesk {
    TempFolder journalFolder;
    RenameJournal journal{journalFolder.path(), calls};

    Desk() : RenameDesk("%L\\%T", start) {}

    // Leftovers of temporary files apart.
    [[nodiscard]] Files files() const {
        Files all = RenameDesk::files();
        std::erase_if(all, [](const auto& file) { return file.first.ends_with(".tmp"); });
        return all;
    }
    void strike(std::size_t at) {
        calls.changes = 0;
        calls.deathAt = at;
    }
    void rename() {
        std::vector<std::string> paths;
        for (const auto& [name, bytes] : start) {
            if (name.ends_with(".mp3")) paths.push_back(folder.path(name));
        }
        RenamePlan plan = renamer.plan(paths);
        performNoted(renamer, journal, plan, {folder.path()}, {});
    }
    void undo() {
        const JournalBatch batch = RenameJournal(journalFolder.path()).last();
        if (batch.rows.empty()) return;
        journal.last();
        BatchBack back(batch);
        EXPECT_TRUE(back.changedRows().empty());
        if (back.perform(renamer)) journal.drop();
    }
};

TEST(NotedRename, ListsFollowAndAllComesBack) {
    Desk desk;
    desk.rename();
    const std::string moved = "2.mp3\r\n3.mp3\r\n5.mp3\r\n#x\r\n6.mp3\r\n4.mp3\r\n";
    const std::string last = "D" + std::string(1, separatorOf(nativePathStyle())) + "Ж.mp3\r\n";
    EXPECT_EQ(desk.files(), (Files{{"2.mp3", song("2")},
                                   {"3.mp3", song("3")},
                                   {"5.mp3", song("5")},
                                   {"6.mp3", song("6")},
                                   {"4.mp3", song("4")},
                                   {"D/Ж.mp3", song("Ж", "D")},
                                   {"l.m3u", "\xEF\xBB\xBF" + moved + last},
                                   {"k.m3u8", moved + last}}));
    desk.undo();
    EXPECT_EQ(desk.files(), start);
    EXPECT_FALSE(folderExists(desk.folder.path("D")));
    EXPECT_TRUE(desk.journal.last().rows.empty());
    EXPECT_EQ(desk.errors.count(), 0U) << desk.messages.text;
}

TEST(NotedRename, KilledAtAnyCallItCanBeTakenBack) {
    Desk whole;
    whole.rename();
    for (std::size_t at = 1; at <= whole.calls.changes; ++at) {
        SCOPED_TRACE(at);
        Desk desk;
        desk.strike(at);
        desk.rename();
        desk.strike(0);
        desk.undo();
        EXPECT_EQ(desk.files(), start);
    }
}

TEST(NotedRename, TakingBackMayBeKilledAtAnyCall) {
    Desk whole;
    whole.rename();
    whole.strike(0);
    whole.undo();
    for (std::size_t at = 1; at <= whole.calls.changes; ++at) {
        SCOPED_TRACE(at);
        Desk desk;
        desk.rename();
        desk.strike(at);
        desk.undo();
        desk.strike(0);
        desk.undo();
        EXPECT_EQ(desk.files(), start);
        EXPECT_TRUE(desk.journal.last().rows.empty());
    }
}

TEST(NotedRename, LastingErrorsLeaveNothingThatCannotBeTakenBack) {
    Desk whole;
    whole.rename();
    const std::size_t moves = whole.calls.moves;
    whole.undo();
    for (std::size_t at = 1; at <= whole.calls.moves; ++at) {
        SCOPED_TRACE(at);
        Desk desk;
        desk.calls.failOn = true;
        desk.calls.failingMove = at;
        desk.rename();
        if (at > moves) desk.undo();
        desk.calls.failingMove = 0;
        desk.undo();
        EXPECT_EQ(desk.files(), start);
    }
}

TEST(NotedRename, WithoutItsListsItDoesNotHappen) {
    for (std::size_t at = 1; at <= 2; ++at) {
        Desk desk;
        desk.calls.failingReplace = at;
        desk.rename();
        EXPECT_EQ(desk.files(), start);
        EXPECT_EQ(desk.errors.count(), 1U) << desk.messages.text;
        EXPECT_TRUE(desk.journal.last().rows.empty());
    }
}

// What was edited since goes by what it says now; the names that stay are told rightly.
TEST(NotedRename, WhatChangedSinceIsLeft) {
    Desk desk;
    desk.rename();
    desk.folder.write("3.mp3", song("another"));
    desk.folder.write("k.m3u8", "4.mp3\n6.mp3\n");
    const auto batch = desk.journal.last();
    BatchBack back(batch);
    EXPECT_EQ(back.changedRows().size(), 1U);
    EXPECT_TRUE(back.perform(desk.renamer));
    Files expected = start;
    expected.erase("2.mp3");
    expected["3.mp3"] = song("another");
    expected["l.m3u"].replace(expected["l.m3u"].find("2.mp3"), 1, "3");
    expected["k.m3u8"] = "6.mp3\n5.mp3\n";
    EXPECT_EQ(desk.files(), expected);
}

}  // namespace
}  // namespace tavlo::test
