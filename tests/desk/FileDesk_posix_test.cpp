#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

#include "collection/RenameBasics.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "support/DeskFixture.h"

namespace tavlo::test {
namespace {

// The user's own journal of renamings is out of reach for as long as this lives.
class RenamedFile : public DeskFixture {
 protected:
    RenamedFile() {
        ::setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
        song("1.mp3");
        song("2.mp3");
        folder.write("l.m3u", "#EXTM3U\n2.mp3\n1.mp3\n");
        folder.write(".hidden.mp3", "");
        show();
    }
    ~RenamedFile() override {
        if (before_) ::setenv("XDG_CONFIG_HOME", before_->c_str(), 1);
        if (!before_) ::unsetenv("XDG_CONFIG_HOME");
    }

    const TempFolder config;

 private:
    const std::optional<std::string> before_ = environmentVariable("XDG_CONFIG_HOME");
};

TEST_F(RenamedFile, ListBesideItFollows) {
    const RowId id = row("1.mp3");
    desk.select({id});
    edit(TagField::Title, "New");
    EXPECT_EQ(desk.rename(id, "Ж new.mp3"), std::nullopt);
    EXPECT_EQ(folder.read("l.m3u").find("1.mp3"), std::string::npos);
    EXPECT_FALSE(isTaken(folder.path("1.mp3")));
    EXPECT_EQ(row("Ж new.mp3"), id);
    EXPECT_EQ(names(), "Ж new.mp3 2.mp3");
    // Its edits go with it.
    desk.save();
    settle();
    EXPECT_TRUE(desk.takeChanged().empty());
    EXPECT_EQ(onDisk("Ж new.mp3").GetTitle(), "New");
    show({folder.path("l.m3u")});
    EXPECT_EQ(names(), "2.mp3 Ж new.mp3");
    EXPECT_FALSE(desk.table().row(desk.table().shownAt(1)).isFailed);

    // One that is shown follows wherever it lies.
    folder.write("lists/m.m3u", "../2.mp3\n");
    show({folder.path("lists/m.m3u")});
    EXPECT_EQ(desk.rename(row("2.mp3"), "3.mp3"), std::nullopt);
    EXPECT_EQ(folder.read("lists/m.m3u"), "../3.mp3\n");
    EXPECT_EQ(messages.text, "");
}

TEST_F(RenamedFile, NameThatCannotBeGivenIsTold) {
    const RowId id = row("1.mp3");
    for (const char* name : {"", " ", ".", "..", "a/b.mp3", "a?.mp3", "con.mp3", ".a.mp3", " a.mp3",
                             "a.mp3 ", "a\n.mp3"}) {
        EXPECT_EQ(desk.rename(id, name), texts.get(Text::NameNotAllowed, name));
    }
    EXPECT_EQ(desk.rename(id, "2.mp3"), told(Text::FileNameTaken, "2.mp3"));
    EXPECT_EQ(desk.rename(id, "1.mp3"), std::nullopt) << "the name that it has";
    EXPECT_EQ(names(), "1.mp3 2.mp3");
    EXPECT_EQ(folder.read("l.m3u"), "#EXTM3U\n2.mp3\n1.mp3\n");
    EXPECT_TRUE(isTaken(folder.path("1.mp3")));
    EXPECT_EQ(onDisk("2.mp3").GetArtist(), "Artist");

    EXPECT_TRUE(removeEntry(folder.path("1.mp3")));
    EXPECT_EQ(desk.rename(id, "3.mp3"), told(Text::FileGone, "1.mp3"));
    EXPECT_EQ(messages.text, "") << "it was given back, not reported";
}

TEST_F(RenamedFile, CaseAloneMayChange) {
    EXPECT_EQ(desk.rename(row("1.mp3"), "1.MP3"), std::nullopt);
    EXPECT_EQ(names(), "1.MP3 2.mp3");
    EXPECT_TRUE(isTaken(folder.path("1.MP3")));
}

TEST_F(RenamedFile, WhileAnotherRenamingRunsNothingMoves) {
    RenameJournal other(journalFolder());
    ASSERT_TRUE(other.lock());
    EXPECT_EQ(desk.rename(row("1.mp3"), "3.mp3"), texts.get(Text::RenamingRuns));
    EXPECT_EQ(names(), "1.mp3 2.mp3");
    EXPECT_TRUE(isTaken(folder.path("1.mp3")));
}

}  // namespace
}  // namespace tavlo::test
