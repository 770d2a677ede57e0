#include <gtest/gtest.h>
#include <sys/stat.h>

#include "collection/ChangeJob.h"
#include "collection/RemoveTagsJob.h"
#include "platform/Utf8.h"
#include "support/JobRun.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"
#include "tags/AudioFile.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

const std::string sound = mpegFrames(9);

class TagJobsOnDisk : public testing::Test {
 protected:
    [[nodiscard]] ID3tag onDisk(const std::string& name) const {
        return ReadAudioFile(folder.path(name), {CodePage(1251)});
    }

    const TempFolder folder;
    JobRun job{folder.path(), 1251};
};

TEST_F(TagJobsOnDisk, NamesAndOptionsAreDecoded) {
    job.settings.set(Setting::EnableAPE2Tags, true);
    job.settings.set(Setting::EnableID3v2Unicode, true);
    // The folder's name is UTF-8, the file's in the code page; the third has a byte that is in
    // none.
    folder.write("\xD0\x9F/\xC0\xED\xED\xE0.mp3", sound);
    folder.write("\xD0\x9F/\xD0\xAF.mp3", sound);
    folder.write("\xD0\x9F/\x98.mp3", sound);
    job.options.subfolders = true;
    job.options.nameTemplate = "%A\\%T";
    job.options.album = "\xC4\xE0";
    for (const bool dry : {true, false}) {
        job.options.dryRun = dry;
        EXPECT_EQ(job.run(changeTags), 1);
        EXPECT_TRUE(job.warns("neither UTF-8 nor text of the code page")) << job.messages.text;
    }
    for (const auto& [name, title] :
         {std::pair<std::string, std::string>{"\xC0\xED\xED\xE0", "Анна"}, {"\xD0\xAF", "Я"}}) {
        const ID3tag found = onDisk("\xD0\x9F/" + name + ".mp3");
        EXPECT_EQ(found.GetTitle(), title);
        EXPECT_EQ(found.GetArtist(), "П");
        EXPECT_EQ(found.GetAlbum(), "Да");
        const std::string bytes = folder.read("\xD0\x9F/" + name + ".mp3");
        const std::size_t at = bytes.find("APETAGEX");
        ASSERT_NE(at, std::string::npos);
        EXPECT_NE(bytes.find("Да", at), std::string::npos) << "not UTF-8 in the APEv2 tag";
    }
    EXPECT_EQ(folder.read("\xD0\x9F/\x98.mp3"), sound);
    job.options.json = true;
    EXPECT_EQ(job.run(changeTags), 1);
    EXPECT_TRUE(job.says("\"Result\":\"skipped\"")) << job.output.text;
    EXPECT_TRUE(isValidUtf8(job.output.text));
}

TEST_F(TagJobsOnDisk, OptionThatIsNoTextIsRefused) {
    folder.write("a.mp3", sound);
    const std::pair<std::optional<std::string> JobOptions::*, std::string> places[] = {
        {&JobOptions::artist, "/a"}, {&JobOptions::nameTemplate, "/template"}};
    for (const auto& [place, word] : places) {
        job.options = {};
        job.options.startFolder = folder.path();
        job.options.*place = "%T \x98";
        EXPECT_EQ(job.run(changeTags), 2);
        EXPECT_TRUE(job.warns("code page: " + word)) << job.messages.text;
        EXPECT_EQ(folder.read("a.mp3"), sound);
    }
}

// A link to a file that is no song gets no tags, whoever asks for it, and keeps what looks like
// one.
TEST_F(TagJobsOnDisk, BehindALinkThereMustBeASong) {
    const TempFolder elsewhere;
    const std::string other = "key=value\n" + Id3v1{"Title", "", "", "", ""}.block();
    elsewhere.write("settings.conf", other);
    elsewhere.write("song", sound);
    fs::create_symlink(elsewhere.path("settings.conf"), folder.path("a.mp3"));
    fs::create_symlink(elsewhere.path("song"), folder.path("b.mp3"));
    job.options.artist = "New";
    job.options.force = true;
    job.options.tagKinds = "id3v1";
    for (const auto run : {changeTags, removeTags}) {
        EXPECT_EQ(job.run(run), 1);
        EXPECT_TRUE(job.warns("a.mp3\" is a link to a file that holds no MPEG audio"));
        EXPECT_FALSE(job.warns("/force"));
        EXPECT_EQ(elsewhere.read("settings.conf"), other);
    }
    EXPECT_NE(elsewhere.read("song"), sound);
}

TEST_F(TagJobsOnDisk, OtherNamesOfAFileAreTold) {
    folder.write("a.mp3", sound);
    fs::create_hard_link(folder.path("a.mp3"), folder.path("other"));
    const std::string told = "a.mp3\" has 2 names; the others keep the old content.";
    job.options.artist = "New";
    for (const bool dry : {true, false}) {
        job.options.dryRun = dry;
        job.options.json = !dry;
        EXPECT_EQ(job.run(changeTags), 0);
        EXPECT_TRUE(job.warns(told)) << job.messages.text;
        EXPECT_EQ(job.says("has 2 names"), !dry) << job.output.text;
    }
    EXPECT_EQ(folder.read("other"), sound);
    EXPECT_EQ(job.run(changeTags), 0);
    EXPECT_FALSE(job.warns("names")) << "nothing was changed";
}

}  // namespace
}  // namespace tavlo::test
