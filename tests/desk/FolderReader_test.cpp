#include "desk/FolderReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "core/PathText.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"
#include "support/Waiting.h"

namespace tavlo::test {
namespace {

std::string song(const std::string& artist) {
    return tag(3, textFrame(3, "TPE1", artist)) + mpegFrames(3);
}

class ReadFolder : public testing::Test {
 protected:
    /// Everything, `most` rows at a time.
    void read(const std::vector<std::string>& paths, bool subfolders = true,
              std::size_t most = 1000) {
        FolderReader reader({paths, subfolders, 1252});
        store = reader.store();
        rows.clear();
        EXPECT_TRUE(soon([&] {
            const auto taken = reader.take(most);
            EXPECT_LE(taken.size(), most);
            rows.insert(rows.end(), taken.begin(), taken.end());
            return reader.isDone();
        }));
        unread = reader.unread();
        EXPECT_EQ(reader.found(), rows.size());
        EXPECT_EQ(reader.read(), rows.size());
    }
    // Paths below the folder with "/", parted by blanks.
    [[nodiscard]] std::string names() const {
        std::string all;
        for (const FileRow& row : rows) {
            std::string name = row.path().substr(folder.path().size() + 1);
            std::ranges::replace(name, '\\', '/');
            all += (all.empty() ? "" : " ") + name;
        }
        return all;
    }

    const TempFolder folder;
    std::shared_ptr<TextStore> store;
    std::vector<FileRow> rows;
    std::vector<std::string> unread;
};

TEST_F(ReadFolder, OrderIsThatOfTheScan) {
    for (const char* name : {"10.mp3", "2.MP3", "b/2.mp3", "b/c/1.mp3", "a/x.wv", "B2/y.mpc",
                             "cover.jpg", "list.m3u", "a/notes.txt", "z.wav"}) {
        folder.write(name, song(name));
    }
    for (const std::size_t most : {std::size_t{1}, std::size_t{3}, std::size_t{1000}}) {
        read({folder.path()}, true, most);
        EXPECT_EQ(names(), "a/x.wv b/c/1.mp3 b/2.mp3 B2/y.mpc 2.MP3 10.mp3 z.wav");
    }
    EXPECT_EQ(rows[5].text(RowText::Artist), "10.mp3");
    EXPECT_EQ(rows[1].text(RowText::Artist), "b/c/1.mp3");
    EXPECT_TRUE(unread.empty());
    read({folder.path()}, false);
    EXPECT_EQ(names(), "2.MP3 10.mp3 z.wav");
    // In the order in which they were asked for, whatever they are.
    read({folder.path("b"), folder.path("10.mp3"), folder.path("a")}, false);
    EXPECT_EQ(names(), "b/2.mp3 10.mp3 a/x.wv");
}

TEST_F(ReadFolder, PlaylistsEntriesKeepTheirOrder) {
    for (const char* name : {"1.mp3", "2.mp3", "sub/3.mp3"}) folder.write(name, song(name));
    folder.write("sub/l.m3u8",
                 "#EXTM3U\r\n../2.mp3\r\n3.mp3\r\n..\\1.mp3\r\ngone.mp3\r\n"
                 "../cover.jpg\r\n../2.mp3\r\n");
    read({folder.path("sub/l.m3u8")});
    EXPECT_EQ(names(), "2.mp3 sub/3.mp3 1.mp3 sub/gone.mp3 2.mp3");
    EXPECT_TRUE(rows[3].isFailed) << "what a list names and is not there is shown as such";
    EXPECT_FALSE(rows[0].isFailed);
    EXPECT_TRUE(unread.empty());
}

TEST_F(ReadFolder, WhatIsNotThereIsTold) {
    const std::string song1 = folder.write("1.mp3", song("A"));
    const std::vector<std::string> missing{folder.path("none"), folder.path("none.m3u"),
                                           folder.path("notes.txt")};
    std::vector<std::string> wanted = missing;
    wanted.insert(wanted.begin() + 1, song1);
    read(wanted);
    EXPECT_EQ(names(), "1.mp3");
    EXPECT_EQ(unread, missing);
    read({});
    EXPECT_TRUE(rows.empty());
}

TEST_F(ReadFolder, FileWithoutSoundIsARow) {
    folder.write("empty.mp3", "");
    folder.write("text.flac", "no sound");
    folder.makeFolder("folder.mp3");
    read({folder.path()});
    EXPECT_EQ(names(), "empty.mp3 text.flac");
    for (const FileRow& row : rows) EXPECT_FALSE(row.hasStream) << row.path();
}

TEST_F(ReadFolder, CancelledReadingEndsAndKeepsWhatItRead) {
    for (int i = 0; i < 300; ++i) folder.write(std::to_string(i) + ".mp3", song("A"));
    FolderReader reader({{folder.path()}, true, 1252});
    ASSERT_TRUE(soon([&] { return reader.read() > 0; }));
    reader.cancel();
    std::size_t taken = 0;
    EXPECT_TRUE(soon([&] {
        taken += reader.take(50).size();
        return reader.isDone();
    }));
    EXPECT_EQ(taken, reader.read());
    EXPECT_GT(taken, 0U);
}

TEST_F(ReadFolder, TextsOutliveTheReader) {
    folder.write("1.mp3", song("Artist of a row"));
    read({folder.path()});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].text(RowText::Artist), "Artist of a row");
    // A reader that is not waited for goes by itself.
    for (int i = 0; i < 20; ++i) FolderReader({{folder.path()}, true, 1252});
}

}  // namespace
}  // namespace tavlo::test
