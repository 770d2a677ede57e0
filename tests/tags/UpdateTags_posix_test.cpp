#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <functional>

#include "support/MemoryFile.h"
#include "support/StruckCalls.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

const std::string sound = mpegFrames(9);

class UpdateTagsOnDisk : public testing::Test {
 protected:
    // A longer artist each time, so that the file has to be written anew.
    TagUpdate grow(const std::string& path) {
        record = ReadAudioFile(path, {ansi});
        record.SetArtist(std::string(record.GetArtist().size() + 5000, 'a'));
        return UpdateTags(record, {ansi, {}, errors, progress});
    }
    void expectGrown(const std::string& path) {
        EXPECT_EQ(ReadAudioFile(path, {ansi}).GetArtist(), std::string(5000, 'a'));
    }
    static mode_t modeOf(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    const TempFolder folder;
    const CodePage ansi{1252};
    const Texts texts;
    MemorySink sink;
    ErrorReport errors{texts, sink};
    TestProgress progress;
    ID3tag record;
};

TEST_F(UpdateTagsOnDisk, PermissionsAreKeptAndReadOnlyGoes) {
    struct Case {
        mode_t before, after;
    };
    for (const auto [before, after] : {Case{0640, 0640}, Case{0606, 0606}, Case{0444, 0644}}) {
        const std::string path = folder.write("a.mp3", sound);
        ASSERT_EQ(::chmod(path.c_str(), before), 0);
        EXPECT_EQ(grow(path), TagUpdate::Written) << sink.text;
        expectGrown(path);
        EXPECT_EQ(modeOf(path), after);
        EXPECT_FALSE(record.ReadOnly);
        ASSERT_EQ(::unlink(path.c_str()), 0);
    }
}

TEST_F(UpdateTagsOnDisk, ExtendedAttributesAreKept) {
    const std::string path = folder.write("a.mp3", sound);
    if (::setxattr(path.c_str(), "user.test", "kept", 4, 0) != 0) {
        GTEST_SKIP() << "this disk has no extended attributes";
    }
    EXPECT_EQ(grow(path), TagUpdate::Written);
    expectGrown(path);
    std::string value(4, '\0');
    EXPECT_EQ(::getxattr(path.c_str(), "user.test", value.data(), value.size()), 4);
    EXPECT_EQ(value, "kept");
}

TEST_F(UpdateTagsOnDisk, LinkStaysALink) {
    const std::string target = folder.write("far/real.mp3", sound);
    const std::string direct = folder.path("link.mp3"), chained = folder.path("chain.mp3");
    ASSERT_EQ(::symlink("far/real.mp3", direct.c_str()), 0);
    ASSERT_EQ(::symlink("link.mp3", chained.c_str()), 0);
    EXPECT_EQ(grow(chained), TagUpdate::Written) << sink.text;
    expectGrown(target);
    for (const std::string& link : {direct, chained}) {
        EXPECT_TRUE(std::filesystem::is_symlink(link));
        expectGrown(link);
    }
}

TEST_F(UpdateTagsOnDisk, FolderThatTakesNoFileIsReported) {
    if (::geteuid() == 0) GTEST_SKIP() << "root may write anywhere";
    const std::string path = folder.write("closed/a.mp3", sound);
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0500), 0);
    EXPECT_EQ(grow(path), TagUpdate::Refused);
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0700), 0);
    EXPECT_EQ(record.Refused, Refusal::NotCreated);
    EXPECT_EQ(sink.text, texts.get(Text::FileNotCreated, path + ".tmp") + "\n");
    EXPECT_TRUE(folder.read("closed/a.mp3") == sound);
}

// A link or a strange file at the temporary's name, even one with its mark, is nobody's leftover.
TEST_F(UpdateTagsOnDisk, LinkAtTheTemporarysNameIsNotFollowed) {
    const std::string path = folder.write("a.mp3", sound);
    const std::string far = folder.write("far", sound);
    ASSERT_EQ(::chmod(far.c_str(), 01600), 0);
    ASSERT_EQ(::symlink("far", folder.path("a.mp3.tmp").c_str()), 0);
    EXPECT_EQ(grow(path), TagUpdate::Written) << sink.text;
    expectGrown(path);
    EXPECT_TRUE(folder.read("far") == sound);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("a.mp3.tmp")));
}

TEST_F(UpdateTagsOnDisk, HolesStayHoles) {
    constexpr off_t hole = 64 << 20;
    const std::string path = folder.write("a.mp3", sound);
    ASSERT_EQ(::truncate(path.c_str(), hole), 0);
    struct stat before {};
    ASSERT_EQ(::stat(path.c_str(), &before), 0);
    if (before.st_blocks * 512 > hole / 2) GTEST_SKIP() << "this disk has no holes";
    EXPECT_EQ(grow(path), TagUpdate::Written) << sink.text;
    expectGrown(path);
    struct stat after {};
    ASSERT_EQ(::stat(path.c_str(), &after), 0);
    EXPECT_GT(after.st_size, hole);
    EXPECT_LT(after.st_blocks * 512, 1 << 20);
}

// What another program puts in the song's place in the very last moment is not lost.
TEST_F(UpdateTagsOnDisk, OtherProgramsFileIsNotReplaced) {
    const std::string path = folder.path("a.mp3");
    const std::vector<std::function<void()>> others{
        [&] { std::filesystem::rename(folder.write("theirs", "theirs"), path); },
        [&] { folder.write("a.mp3", "theirs"); },
    };
    for (const auto& other : others) {
        folder.write("a.mp3", sound);
        StruckCalls calls;
        calls.beforeReplace = other;
        record = ReadAudioFile(path, {ansi});
        record.SetArtist(std::string(5000, 'a'));
        EXPECT_EQ(UpdateTags(record, {ansi, {}, errors, progress, calls}), TagUpdate::Refused);
        EXPECT_EQ(record.Refused, Refusal::Replaced);
        EXPECT_EQ(folder.read("a.mp3"), "theirs");
        EXPECT_EQ(systemCalls().names(folder.path()), std::vector<std::string>{"a.mp3"});
    }
}

TEST_F(UpdateTagsOnDisk, SomebodyElsesFilesStay) {
    const std::string path = folder.write("a.mp3", sound);
    folder.write("a.mp3.tmp", "somebody's");
    folder.makeFolder("tavlo-1.tmp");
    EXPECT_EQ(grow(path), TagUpdate::Written);
    expectGrown(path);
    EXPECT_EQ(folder.read("a.mp3.tmp"), "somebody's");
    using Entries = std::filesystem::directory_iterator;
    EXPECT_EQ(std::distance(Entries(folder.path()), Entries()), 3);
}

}  // namespace
}  // namespace tavlo::test
