#include "collection/RenameJournal.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/FileSystem.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

using Texts = std::vector<std::string>;

Texts textsOf(const JournalBatch& batch) {
    Texts texts = batch.newFolders;
    texts.insert(texts.end(), batch.roots.begin(), batch.roots.end());
    for (const JournalRow& row : batch.rows) {
        texts.push_back(std::to_string(row.size) + "|" + std::to_string(row.modified) + "|" +
                        row.from + "|" + row.to);
    }
    for (const JournalList& list : batch.lists) texts.push_back(list.path + "|" + list.before);
    return texts;
}

const JournalBatch strange = {
    {{0, -1, "/m/a\tb.mp3", "/m/a\nbatch\tb.mp3"},
     {1, 0, "/m/r.mp3", "/m/m\\new\\\\t\\x.mp3"},
     {~std::uint64_t{0}, INT64_MAX, "/m/\r\n\tx.mp3", "/m/\\n\\t\\\\x.mp3"},
     {5, INT64_MIN, "/m/Пёс.mp3", "/m/file\t5\t5\tx\ty.mp3"}},
    {"/m/a", "/m/a\tb\n\\c"},
    {"/m"},
    {{"/m/l.m3u", "#EXTM3U\r\n\xCF\\x.mp3\r\n"}, {"/m/e.m3u", ""}}};

TEST(RenameJournal, BatchComesBackAsItWas) {
    const TempFolder folder;
    RenameJournal journal(folder.path("new/deep"));
    EXPECT_TRUE(journal.last().rows.empty());
    EXPECT_FALSE(journal.isBrokenOff());
    JournalBatch first = strange;
    first.lists.clear();
    ASSERT_TRUE(journal.begin("2026-05-01 18:30:00", first));
    EXPECT_EQ(textsOf(RenameJournal(folder.path("new/deep")).last()), textsOf(first));
    EXPECT_FALSE(journal.last().isMoved);
    for (const bool isPart : {false, true}) {
        JournalBatch moved = strange;
        if (isPart) moved.rows.pop_back();
        EXPECT_TRUE(journal.endMoves("now", moved, !isPart));
        EXPECT_EQ(textsOf(journal.last()), textsOf(moved));
        EXPECT_TRUE(journal.last().isMoved && !journal.last().isDone && journal.isBrokenOff());
    }
    EXPECT_TRUE(journal.finish());
    EXPECT_TRUE(journal.last().isDone && !journal.isBrokenOff());
    EXPECT_FALSE(RenameJournal("").begin("now", strange));
    EXPECT_FALSE(RenameJournal(folder.write("file", "")).begin("now", strange));
}

TEST(RenameJournal, LastBatchGoesAndOldOnesToo) {
    const TempFolder folder;
    RenameJournal journal(folder.path());
    folder.write("notes.txt", "somebody's");
    for (std::size_t i = 0; i < RenameJournal::mostBatches + 3; ++i) {
        ASSERT_TRUE(journal.begin("now", {{{i, 0, "/m/a.mp3", "/m/b.mp3"}}, {}, {}, {}}));
    }
    EXPECT_EQ(listFolder(folder.path()).size(), RenameJournal::mostBatches + 1);
    EXPECT_EQ(journal.last().rows[0].size, RenameJournal::mostBatches + 2);
    EXPECT_TRUE(journal.drop());
    EXPECT_EQ(journal.last().rows[0].size, RenameJournal::mostBatches + 1);
    // One that moved nothing is none, and one that tells nothing hides no other.
    ASSERT_TRUE(journal.begin("now", strange));
    EXPECT_TRUE(journal.endMoves("now", {}, false));
    folder.write("999999.txt", "");
    EXPECT_EQ(journal.last().rows[0].size, RenameJournal::mostBatches + 1);
}

JournalBatch batchOf(std::vector<JournalRow> rows) {
    return {std::move(rows), {}, {"/m"}, {}, {}, true, true};
}

TEST(RenameJournal, OnlyWhatARenamingDoesIsBelieved) {
    struct Case {
        JournalRow row;
        bool isBelieved;
    };
    const JournalRow song{1, 1, "/m/1.mp3", "/m/a/2.mp3"};
    const Case cases[] = {
        {{1, 1, "/m/x.flac", "/m/y.FLAC"}, true},
        {{1, 1, "/m/x.mp3", "/m/y.mp3.moving"}, true},
        {{1, 1, "/m/x.m3u", "/m/y.m3u"}, true},
        {{1, 1, "/m/1.jpg", "/m/a/2.jpg"}, true},
        {{1, 1, "/m/1.cue", "/m/a/2.cue"}, true},
        {{1, 1, "/m/cover.jpg", "/m/a/cover.jpg"}, false},
        {{1, 1, "/m/1.jpg", "/m/a/3.jpg"}, false},
        {{1, 1, "/m/x.mp3", "/m/y.sh"}, false},
        {{1, 1, "/m/.bashrc", "/m/bashrc"}, false},
        {{1, 1, "/m/x.mp3", "/home/y.mp3"}, false},
        {{1, 1, "/etc/x.mp3", "/m/y.mp3"}, false},
        {{1, 1, "/m/x.mp3", "/m/../etc/y.mp3"}, false},
        {{1, 1, "/m/./x.mp3", "/m/y.mp3"}, false},
        {{1, 1, "m/x.mp3", "m/y.mp3"}, false},
        {{1, 1, "/mm/x.mp3", "/mm/y.mp3"}, false},
    };
    for (const Case& each : cases) {
        const TempFolder folder;
        RenameJournal journal(folder.path());
        ASSERT_TRUE(journal.begin("now", batchOf({song, each.row})));
        const std::vector<JournalRow> rows = journal.last().rows;
        EXPECT_EQ(rows.size(), each.isBelieved ? 2U : 1U) << each.row.from << " " << each.row.to;
        EXPECT_EQ(journal.strangeRows().size(), each.isBelieved ? 0U : 1U) << each.row.to;
    }
}

TEST(RenameJournal, StrangeThingsInItsFolderBlockNothing) {
    const TempFolder folder;
    RenameJournal journal(folder.path());
    ASSERT_TRUE(journal.begin("now", batchOf({{7, 1, "/m/1.mp3", "/m/2.mp3"}})));
    ASSERT_TRUE(journal.endMoves("now", batchOf({{7, 1, "/m/1.mp3", "/m/2.mp3"}}), true));
    ASSERT_TRUE(journal.finish());
    folder.makeFolder("000007.txt");
    folder.makeFolder("lock");
    folder.write("000008.txt", "");
    folder.write("000009.txt", std::string(1000, '\0'));
    folder.write("999999.txt", "batch\tnow\n");
    folder.write("99999999999999999999.txt", "batch\tnow\n");
    EXPECT_TRUE(journal.lock());
    EXPECT_FALSE(journal.isBrokenOff());
    EXPECT_EQ(journal.last().rows.at(0).size, 7U);
    EXPECT_EQ(journal.passedOver().size(), 4U);
    ASSERT_TRUE(journal.begin("now", batchOf({{8, 1, "/m/1.mp3", "/m/2.mp3"}})));
    EXPECT_EQ(journal.last().rows.at(0).size, 8U);
    EXPECT_TRUE(journal.drop());
    EXPECT_EQ(journal.last().rows.at(0).size, 7U);
}

TEST(RenameJournal, OneRunAtATime) {
    const TempFolder folder;
    RenameJournal first(folder.path("j")), second(folder.path("j"));
    EXPECT_TRUE(first.lock());
    EXPECT_FALSE(second.lock());
    EXPECT_TRUE(RenameJournal("").lock());
}

TEST(RenameJournal, CutFileKeepsTheLinesBeforeTheCut) {
    const TempFolder folder;
    RenameJournal journal(folder.path());
    ASSERT_TRUE(journal.begin("now", strange));
    const std::string name = "000001.txt", whole = folder.read(name);
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        folder.write(name, whole.substr(0, size));
        const auto end = whole.begin() + static_cast<std::ptrdiff_t>(size);
        const std::ptrdiff_t lines = std::count(whole.begin(), end, '\n');
        const JournalBatch last = journal.last();
        const std::size_t parts =
            last.rows.size() + last.newFolders.size() + last.roots.size() + last.lists.size();
        EXPECT_EQ(parts, static_cast<std::size_t>(std::max<std::ptrdiff_t>(lines - 1, 0))) << size;
    }
}

}  // namespace
}  // namespace tavlo::test
