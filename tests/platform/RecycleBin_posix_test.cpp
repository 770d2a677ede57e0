#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/RecycleBin.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

// The user's own bin is out of reach for as long as this lives.
class RecycleBinOnPosix : public testing::Test {
 protected:
    RecycleBinOnPosix() { ::setenv("XDG_DATA_HOME", folder.path("data").c_str(), 1); }
    ~RecycleBinOnPosix() override {
        if (before_) ::setenv("XDG_DATA_HOME", before_->c_str(), 1);
        if (!before_) ::unsetenv("XDG_DATA_HOME");
    }

    const TempFolder folder;

 private:
    const std::optional<std::string> before_ = environmentVariable("XDG_DATA_HOME");
};

TEST_F(RecycleBinOnPosix, FileGetsAFreeNameAndANote) {
    const std::string start = "[Trash Info]\nPath=" + folder.path() + "/";
    const std::string longName(250, 'x');
    folder.write("data/Trash/files/found.mp3", "not noted");
    const struct {
        std::string name, inBin, coded;
    } files[] = {
        {"a%b #1 Ж.mp3", "a%b #1 Ж.mp3", "a%25b%20%231%20%D0%96.mp3"},
        {"a%b #1 Ж.mp3", "a%b #1 Ж.2.mp3", "a%25b%20%231%20%D0%96.mp3"},
        {"a%b #1 Ж.mp3", "a%b #1 Ж.3.mp3", "a%25b%20%231%20%D0%96.mp3"},
        {"found.mp3", "found.2.mp3", "found.mp3"},
        {".hidden", ".hidden", ".hidden"},
        {longName, longName.substr(0, 200), longName},
    };
    for (const auto& file : files) {
        EXPECT_TRUE(moveToRecycleBin(folder.write(file.name, file.inBin))) << file.name;
        EXPECT_FALSE(fileInfo(folder.path(file.name)));
        EXPECT_EQ(folder.read("data/Trash/files/" + file.inBin), file.inBin);
        const std::string note = folder.read("data/Trash/info/" + file.inBin + ".trashinfo");
        const std::string head = start + file.coded + "\nDeletionDate=20";
        EXPECT_EQ(note.substr(0, head.size()), head);
        EXPECT_EQ(note.size(), head.size() + std::string("26-01-02T03:04:05\n").size());
    }
    EXPECT_EQ(folder.read("data/Trash/files/found.mp3"), "not noted");
    EXPECT_FALSE(fileInfo(folder.path("data/Trash/info/found.mp3.trashinfo")));
}

TEST_F(RecycleBinOnPosix, FoldersAndLinksGoWhole) {
    folder.write("album/a.mp3", "a");
    EXPECT_TRUE(moveToRecycleBin(folder.path("album")));
    EXPECT_EQ(folder.read("data/Trash/files/album/a.mp3"), "a");
    ASSERT_EQ(::symlink(folder.write("target", "t").c_str(), folder.path("link").c_str()), 0);
    EXPECT_TRUE(moveToRecycleBin(folder.path("link")));
    EXPECT_EQ(folder.read("target"), "t");
}

TEST_F(RecycleBinOnPosix, WhatCannotGoStaysAndIsNotNoted) {
    EXPECT_FALSE(moveToRecycleBin(folder.path("none")));
    folder.makeFolder("data/inside");
    EXPECT_FALSE(moveToRecycleBin(folder.path("data")));
    EXPECT_TRUE(folderExists(folder.path("data/inside")));
    EXPECT_TRUE(listFolder(folder.path("data/Trash/info")).empty());
    const std::string file = folder.write("a.mp3", "a");
    folder.write("blocked", "");
    ::setenv("XDG_DATA_HOME", folder.path("blocked").c_str(), 1);
    EXPECT_FALSE(moveToRecycleBin(file));
    EXPECT_EQ(folder.read("a.mp3"), "a");
}

}  // namespace
}  // namespace tavlo::test
