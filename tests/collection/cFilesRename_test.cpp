#include "collection/cFilesRename.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/RenameDesk.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

using Names = std::vector<std::string>;
using Desk = RenameDesk;

std::string song(const std::string& artist, const std::string& title) {
    return tag(4, textFrame(4, "TPE1", artist, 3) + textFrame(4, "TIT2", title, 3)) + mpegFrames(2);
}

TEST(cFilesRename, CreateNameTellsWhatCameOfAFile) {
    struct Case {
        std::string name, nameTemplate, artist, title, target;
        Files others;
        RenameResult result;
        std::string newName, message;  // in both "@" stands for the folder
        std::size_t failAt = 0;
    };
    constexpr RenameResult done = RenameResult::Done, skipped = RenameResult::Skipped,
                           notCreated = RenameResult::NotCreated,
                           noFolder = RenameResult::FolderNotCreated;
    const Case cases[] = {
        {"a.MP3", "%A - %T", "Ёж", "T", "", {}, done, "Ёж - T.mp3", ""},
        {"a", "%T", "A", "T", "", {}, skipped, "a", ""},
        {"a.mp3", "%T", "", "", "", {}, skipped, "a.mp3", ""},
        {"a.mp3",
         "%A",
         "",
         "T",
         "",
         {},
         notCreated,
         "a.mp3",
         "File \"@.mp3\" could not be created.\n"},
        {"x y.MP3", "%A %T", "X", "Y", "", {}, done, "x y.MP3", ""},
        {"a.mp3", "%T", "A", "T", "", {{"t.mp3", "1"}}, done, "T (1).mp3", ""},
        {"a.mp3", "%T", "A", "T", "", {{"T.mp3", "1"}, {"T (1).mp3", "2"}}, done, "T (2).mp3", ""},
        {"T (1).mp3", "%T", "A", "T", "", {{"T.mp3", "1"}}, done, "T (1).mp3", ""},
        {"s/a.mp3", "%A\\%T", "A\\B", "T", "", {}, done, "s/A_B/T.mp3", ""},
        {"s/a.mp3", "%A\\\\%T", "A", "T", "to", {{"to/x", ""}}, done, "to/A/T.mp3", ""},
        {"s/a.mp3", "%T", "A", "T", "none", {}, done, "s/T.mp3", ""},
        {"a.mp3",
         "%A\\%T",
         "A",
         "T",
         "",
         {{"A", "a file"}},
         noFolder,
         "a.mp3",
         "Unable to create folder: @A\n"},
        {"a.mp3",
         "%T",
         "A",
         "T",
         "",
         {},
         notCreated,
         "a.mp3",
         "File \"@T.mp3\" could not be created.\n",
         1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name + " by " + c.nameTemplate + " to " + c.newName);
        Desk desk(c.nameTemplate, c.others);
        const std::string bytes =
            c.artist + c.title == "" ? mpegFrames(2) : song(c.artist, c.title);
        const std::string path = desk.folder.write(c.name, bytes);
        desk.calls.failingMove = c.failAt;
        std::string newPath;
        EXPECT_EQ(desk.renamer.CreateName(path, c.target.empty() ? "" : desk.folder.path(c.target),
                                          newPath),
                  c.result);
        EXPECT_EQ(newPath, desk.folder.path(c.newName));
        Files expected = c.others;
        expected[c.newName] = bytes;
        EXPECT_EQ(desk.files(), expected);
        std::string message = c.message;
        if (message.find('@') != std::string::npos) {
            message.replace(message.find('@'), 1, desk.folder.path(""));
        }
        EXPECT_EQ(desk.messages.text, message);
        const bool moved = c.result == done && c.newName != c.name;
        EXPECT_EQ(desk.renamer.GetValue(path), moved ? newPath : "");
    }
}

TEST(cFilesRename, FolderTreeAndCollectionAreSnapshots) {
    const Files files = {{"a.mp3", song("B", "1")},     {"B/a.mp3", song("B", "2")},
                         {"B/B/a.mp3", song("B", "3")}, {"c.ogg", "nothing"},
                         {".h.mp3", song("B", "4")},    {"d.mp3", "nothing"}};
    struct Case {
        std::string name;
        void (*rename)(Desk&);
        Names moved;  // "old>new"
    };
    const Case cases[] = {
        {"folder",
         [](Desk& d) { d.renamer.RenameFiles(d.folder.path()); },
         {"a.mp3>B/1.mp3", ".h.mp3>B/4.mp3"}},
        {"tree",
         [](Desk& d) { d.renamer.RenameFilesTree(d.folder.path()); },
         {"a.mp3>B/1.mp3", ".h.mp3>B/4.mp3", "B/a.mp3>B/B/2.mp3", "B/B/a.mp3>B/B/B/3.mp3"}},
        {"mask",
         [](Desk& d) {
             d.renamer.Mask = "[.C-Z]*.MP#";
             d.renamer.RenameFilesTree(d.folder.path());
         },
         {".h.mp3>B/4.mp3"}},
        {"collection",
         [](Desk& d) {
             cFilesCollection list(d.progress, d.progress.cancel);
             for (const std::string& path : d.paths({"B/a.mp3", "d.mp3", "a.mp3"})) {
                 list.AddFile(path);
             }
             d.renamer.RenameFilesCollection(list);
             const Names after = d.paths({"B/B/2.mp3", "d.mp3", "B/1.mp3"});
             for (std::size_t i = 0; i < after.size(); ++i) {
                 EXPECT_EQ(list.GetFile(i + 1), after[i]);
             }
         },
         {"a.mp3>B/1.mp3", "B/a.mp3>B/B/2.mp3"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Desk desk("%A\\%T", files);
        c.rename(desk);
        Files expected = files;
        for (const std::string& pair : c.moved) {
            const std::string from = pair.substr(0, pair.find('>'));
            const std::string to = pair.substr(pair.find('>') + 1);
            expected[to] = expected.extract(from).mapped();
            EXPECT_EQ(desk.renamer.GetValue(desk.folder.path(from)), desk.folder.path(to));
        }
        EXPECT_EQ(desk.files(), expected);
        desk.renamer.Dispatch();
        EXPECT_EQ(desk.renamer.GetValue(desk.folder.path("a.mp3")), "");
        EXPECT_EQ(desk.errors.count(), 0U) << desk.messages.text;
    }
}

TEST(cFilesRename, SwapAndCircleEndRightAndListsFollow) {
    const std::string list = "#EXTM3U\r\n1.mp3\r\nCD\\2.mp3\n3.mp3", marked = "\xEF\xBB\xBF";
    Desk desk("%T", {{"1.mp3", song("A", "3")},
                     {"3.mp3", song("A", "Ж")},
                     {"Ж.mp3", song("A", "1")},
                     {"CD/2.mp3", song("A", "5")},
                     {"CD/5.mp3", song("A", "2")},
                     {"l.m3u", list},
                     {"CD/l.m3u8", "../Ж.mp3\n5.mp3\n"}});
    desk.renamer.RenameFilesTree(desk.folder.path());
    EXPECT_EQ(desk.files(), (Files{{"3.mp3", song("A", "3")},
                                   {"Ж.mp3", song("A", "Ж")},
                                   {"1.mp3", song("A", "1")},
                                   {"CD/5.mp3", song("A", "5")},
                                   {"CD/2.mp3", song("A", "2")},
                                   {"l.m3u", marked + "#EXTM3U\r\n3.mp3\r\nCD\\5.mp3\nЖ.mp3"},
                                   {"CD/l.m3u8", "../1.mp3\n2.mp3\n"}}));
}

TEST(cFilesRename, PlaylistsChooseTheFilesByRelativeEntries) {
    Desk desk("%T");
    const std::string line = desk.folder.path("d.mp3") + "\r\n";
    const std::string list = "a.mp3\r\n#b.mp3\r\nCD\\c.mp3\r\na.mp3\r\nnone.mp3\r\n" + line;
    const std::string changed = "A1.mp3\r\n#b.mp3\r\nCD\\C1.mp3\r\nA1.mp3\r\nnone.mp3\r\n" + line;
    const Files files = {{"a.mp3", song("A", "A1")},
                         {"b.mp3", song("A", "B1")},
                         {"CD/c.mp3", song("A", "C1")},
                         {"d.mp3", song("A", "D1")},
                         {"L.M3U", list},
                         {"sub/k.m3u", "..\\b.mp3"}};
    for (const auto& [name, bytes] : files) desk.folder.write(name, bytes);
    Files expected = {{"A1.mp3", song("A", "A1")},
                      {"b.mp3", song("A", "B1")},
                      {"CD/C1.mp3", song("A", "C1")},
                      {"d.mp3", song("A", "D1")},
                      {"L.M3U", list},
                      {"L (new).m3u", changed},
                      {"sub/k.m3u", "..\\b.mp3"}};
    cFilesCollection lists(desk.progress, desk.progress.cancel);
    lists.AddFile(desk.folder.path("L.M3U"));
    lists.AddFile(desk.folder.path("d.mp3"));
    desk.renamer.RenameFilesEx(lists);
    EXPECT_EQ(desk.files(), expected);

    desk.renamer.Dispatch();
    desk.renamer.Mask = "K*.m3u";
    desk.renamer.RenamePlaylists(desk.folder.path());
    expected["B1.mp3"] = expected.extract("b.mp3").mapped();
    expected["sub/k.m3u"] = "..\\B1.mp3";
    EXPECT_EQ(desk.files(), expected);
}

// A chain goes on without the one that stays; a circle is taken back as a whole.
TEST(cFilesRename, FailingMoveLeavesEveryFileUnderOneOfItsNames) {
    const Files files = {{"1.mp3", song("x", "2")}, {"2.mp3", song("x", "3")},
                         {"3.mp3", song("x", "4")}, {"5.mp3", song("x", "6")},
                         {"6.mp3", song("x", "7")}, {"7.mp3", song("x", "5")},
                         {"8.mp3", song("x", "9")}, {"9.mp3", song("y", "9")}};
    Names names;
    for (const auto& [name, bytes] : files) names.push_back(name);
    for (std::size_t failAt = 1; failAt <= files.size(); ++failAt) {
        SCOPED_TRACE(failAt);
        Desk desk("%T", files);
        desk.calls.failingMove = failAt;
        RenamePlan plan = desk.renamer.plan(desk.paths(names));
        desk.renamer.moveFiles(plan);
        desk.renamer.reportFailures(plan);
        std::size_t failed = 0;
        Files found;
        for (std::size_t i = 0; i < plan.size(); ++i) {
            failed += plan[i].result == RenameResult::Done ? 0U : 1U;
            EXPECT_EQ(desk.renamer.GetValue(plan[i].from), plan[i].isMoved ? plan[i].to : "");
            const std::string& path = plan[i].isMoved ? plan[i].to : plan[i].from;
            found[path.substr(desk.folder.path("").size())] = files.at(names[i]);
        }
        EXPECT_EQ(desk.files(), found);
        EXPECT_GE(failed, 1U);
        EXPECT_EQ(desk.errors.count(), failed);
    }
}

TEST(cFilesRename, CancelLeavesTheRestAsItIs) {
    Desk desk("%T", {{"a.mp3", song("A", "x")}, {"b.mp3", song("A", "y")}});
    RenamePlan plan = desk.renamer.plan(desk.paths({"a.mp3", "b.mp3"}));
    desk.progress.cancel = true;
    desk.renamer.moveFiles(plan);
    for (const RenameStep& step : plan) EXPECT_TRUE(!step.isMoved && step.moves());
    EXPECT_EQ(desk.errors.count(), 0U);
    EXPECT_TRUE(desk.renamer.plan(desk.paths({"a.mp3"})).empty());
}

}  // namespace
}  // namespace tavlo::test
