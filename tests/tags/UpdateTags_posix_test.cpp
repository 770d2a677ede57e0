#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "support/MemoryFile.h"
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
