#include <gtest/gtest.h>

#include "collection/ChangeJob.h"
#include "collection/RemoveTagsJob.h"
#include "support/JobRun.h"
#include "support/SoundBytes.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

const std::string sound = mpegFrames(9);
const std::string ape = ApeTag{{apeItem("Artist", "Ape")}}.bytes();
const std::string block = Id3v1{"Title", "Old", "Album", "2001", "", 0, 7, 17}.block();
const std::string v2 = tag(3, textFrame(3, "TPE1", "Old"));

class TagJobs : public testing::Test {
 protected:
    int change() { return job.run(changeTags); }
    int remove(const std::string& kinds) {
        job.options.tagKinds = kinds;
        return job.run(removeTags);
    }

    const TempFolder folder;
    JobRun job{folder.path()};
};

TEST_F(TagJobs, FilesWithoutSoundAreToldAndForced) {
    const std::string text = "some words\n";
    folder.write("text.mp3", text);
    folder.write("song.mp3", sound);
    job.options.artist = "New";
    for (const bool dry : {true, false}) {
        job.options.dryRun = dry;
        EXPECT_EQ(change(), 1);
        EXPECT_TRUE(job.warns("text.mp3\" holds no MPEG audio (it looks like text)"));
        EXPECT_TRUE(job.warns("/force"));
        EXPECT_TRUE(job.says(": 1  ")) << job.output.text;
        EXPECT_EQ(folder.read("text.mp3"), text);
    }
    EXPECT_NE(folder.read("song.mp3"), sound);
    job.options.json = true;
    EXPECT_EQ(change(), 1);
    EXPECT_TRUE(job.says("\"Result\":\"failed\",\"Message\":\"")) << job.output.text;
    EXPECT_TRUE(job.says("it looks like text"));
    job.options.force = true;
    EXPECT_EQ(change(), 0) << job.messages.text;
    EXPECT_NE(folder.read("text.mp3"), text);
}

TEST_F(TagJobs, FieldThatAnotherTagStillTellsIsNamed) {
    folder.write("x -.mp3", v2 + sound + ape);
    job.options.nameTemplate = "%T -%A";  // an empty artist
    const std::string told = "x -.mp3: Another tag of the file still holds: Artist.";
    for (const bool dry : {true, false}) {
        job.options.dryRun = dry;
        job.options.json = false;
        EXPECT_EQ(change(), 0);
        EXPECT_TRUE(job.warns(told)) << job.messages.text;
        job.options.json = true;
        EXPECT_EQ(change(), 0);
        const std::size_t first = job.output.text.find("Another tag");
        EXPECT_NE(first, std::string::npos) << job.output.text;
        EXPECT_EQ(job.output.text.find("Another tag", first + 1), std::string::npos) << "twice";
    }
    job.settings.set(Setting::EnableAPE2Tags, true);
    EXPECT_EQ(change(), 0);
    EXPECT_FALSE(job.warns("Another tag")) << job.messages.text;
}

TEST_F(TagJobs, TagsAreTakenOff) {
    folder.write("a.mp3", v2 + sound + ape + block);
    folder.write("b.mp3", sound);
    folder.write("c.wv", wavPackBytes(1) + ape);
    job.options.dryRun = true;
    EXPECT_EQ(remove("ape,ID3v1"), 0);
    EXPECT_TRUE(job.says("a.mp3  without its ID3v1 tag\na.mp3  without its APEv2 tag\n"));
    EXPECT_TRUE(job.says("Would change: 2  Unchanged: 1")) << job.output.text;
    EXPECT_TRUE(job.warns("the only kind of tag")) << job.messages.text;
    EXPECT_EQ(folder.read("a.mp3"), v2 + sound + ape + block);
    job.options.dryRun = false;
    job.options.json = true;
    EXPECT_EQ(remove("ape,ID3v1"), 0);
    EXPECT_TRUE(job.says("\"Tags\":[\"ID3v1\",\"APEv2\"],\"Result\":\"changed\"}"))
        << job.output.text;
    EXPECT_TRUE(job.says("\"Tags\":[],\"Result\":\"unchanged\"}"));
    EXPECT_EQ(folder.read("a.mp3"), v2 + sound);
    EXPECT_EQ(folder.read("b.mp3"), sound);
    EXPECT_EQ(folder.read("c.wv"), wavPackBytes(1));
}

TEST_F(TagJobs, WordsThatAreNoKindOfTagAreRefused) {
    const std::string bytes = v2 + sound + block;
    folder.write("a.mp3", bytes);
    const std::pair<std::string, std::string> cases[] = {
        {"id3v1,flac", "flac"}, {"id3", "id3"}, {"", "No kind of tag"}, {",id3v1", "No kind"}};
    for (const auto& [kinds, told] : cases) {
        EXPECT_EQ(remove(kinds), 2) << kinds;
        EXPECT_TRUE(job.warns(told)) << job.messages.text;
        EXPECT_EQ(folder.read("a.mp3"), bytes);
    }
}

}  // namespace
}  // namespace tavlo::test
