#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>

#include "collection/ListJob.h"
#include "collection/ListJson.h"
#include "collection/ListTable.h"
#include "support/MemorySink.h"
#include "support/TagBytes.h"
#include "support/TestProgress.h"
#include "support/TestRegistry.h"

namespace tavlo::test {
namespace {

ListRow rowOf(std::string_view title) {
    ListRow row{"/m/a.mp3", "a.mp3", {}};
    row.record.FileType = FileType::Mp3;
    row.record.SetTitleMix(title);
    row.record.SetArtist("Marble Choir");
    row.record.SetNumberL(7);
    row.record.SetGenreID(17);
    row.record.Seconds = 245;
    row.record.Bitrate = 128;
    row.record.Layer = 3;
    return row;
}

TEST(ListJson, EveryFieldStandsInItsPlace) {
    const std::string keys =
        "Path SubPath FileType Artist Title Mix Album Year TrackNumber Genre Comment "
        "Composer OriginalArtist CopyRight URL EncodedBy TracksCount DiskNumber DisksCount "
        "BPM IsPartOfCompilation Length Seconds Bitrate SampleRate ChannelMode Frames VBR "
        "MpegVersion Layer Encoder AlbumArt IsID3v1Present IsID3v2Present IsAPE2Present "
        "IsLyricsPresent ";
    std::string line;
    appendJsonLine(line, rowOf("Seven\n\"Bells\" (Live)"));
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    rapidjson::Document json;
    ASSERT_FALSE(json.Parse(line.c_str()).HasParseError()) << line;
    std::string found;
    for (const auto& member : json.GetObject()) found += member.name.GetString() + std::string(" ");
    EXPECT_EQ(found, keys);
    EXPECT_STREQ(json["FileType"].GetString(), "MP3");
    EXPECT_STREQ(json["Title"].GetString(), "Seven\n\"Bells\"");
    EXPECT_STREQ(json["Mix"].GetString(), "Live");
    EXPECT_STREQ(json["Genre"].GetString(), "Rock");
    EXPECT_EQ(json["TrackNumber"].GetInt(), 7);
    EXPECT_EQ(json["Seconds"].GetInt(), 245);
    EXPECT_FALSE(json["VBR"].GetBool());
    EXPECT_TRUE(json["AlbumArt"].IsNull());
}

TEST(ListJson, PictureIsItsKindAndSize) {
    ListRow row = rowOf("a");
    row.record.AlbumArt.Size = 4321;
    row.record.AlbumArtType = FileType::Png;
    std::string line;
    appendJsonLine(line, row);
    EXPECT_NE(line.find("4321"), std::string::npos);
    EXPECT_NE(line.find("\"PNG\""), std::string::npos);
}

TEST(ListJson, NamesThatAreNoTextAreNotLost) {
    ListRow row = rowOf("a");
    row.path = "/m/\xFF\"\xD0\xB9\xD0.mp3";
    row.subPath = "\x80\xFF";
    std::string line;
    appendJsonLine(line, row);
    EXPECT_NE(line.find(R"("Path":"/m/\udcff\"й\udcd0.mp3")"), std::string::npos) << line;
    EXPECT_NE(line.find(R"("SubPath":"\udc80\udcff")"), std::string::npos) << line;
}

TEST(ListTable, TabLinesKeepTheirColumns) {
    std::string plain, wild;
    appendTabLine(plain, rowOf("One Two"));
    appendTabLine(wild, rowOf("One\tTwo"));
    EXPECT_EQ(wild, plain);
    wild.clear();
    appendTabLine(wild, rowOf("One\nTwo"));
    EXPECT_EQ(wild, plain);
    EXPECT_TRUE(plain.starts_with("/m/a.mp3\t"));
    EXPECT_EQ(plain.find('\n'), plain.size() - 1);
    ListRow raw = rowOf("One Two");
    raw.path = "/m/\xFF.mp3";
    wild.clear();
    appendTabLine(wild, raw);
    EXPECT_TRUE(wild.starts_with("/m/\xFF.mp3\t"));
}

TEST(ListTable, LinesFitTheTerminal) {
    ListTable table;
    for (const char* title : {"Short", "Очень длинное название песни, которое не поместится",
                              "日本語の長い曲名日本語の長い曲名日本語の長い曲名"}) {
        table.add(rowOf(title));
    }
    const Texts texts;
    for (const std::size_t width : {80U, 100U, 120U, 400U}) {
        const std::string printed = table.print(texts, width);
        EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 4) << printed;
        std::size_t begin = 0;
        while (begin < printed.size()) {
            const std::size_t end = printed.find('\n', begin);
            EXPECT_LE(displayWidth(printed.substr(begin, end - begin)), width) << printed;
            begin = end + 1;
        }
        EXPECT_EQ(printed.find("…") == std::string::npos, width == 400) << printed;
        EXPECT_NE(printed.find("Short"), std::string::npos);
    }
}

TEST(ListTable, WidthsAreThoseOfATerminal) {
    constexpr std::pair<std::string_view, std::size_t> cases[] = {
        {"", 0}, {"abc", 3}, {"Снег", 4}, {"日本", 4}, {"e\xCC\x81", 1}, {"한", 2}, {"Ａ", 2},
    };
    for (const auto& [text, width] : cases) EXPECT_EQ(displayWidth(text), width) << text;
}

struct Job {
    TestRegistry registry;
    RegistryEx store{registry.registry()};
    Settings settings{store};
    Texts texts;
    MemorySink output, messages;
    ErrorReport errors{texts, messages};
    TestProgress progress;
    JobOptions options;
    TempFolder folder;

    Job() {
        options.mode = RunMode::Scan;
        options.folder = folder.path();
        const Id3v1 tag{"Title", "Artist", "", "", "", 0, 0, 255};
        for (const char* name : {"1.mp3", "2.mp3", "x.ogg", "sub/3.mp3", "no.txt"}) {
            folder.write(name, mpegFrames(5) + tag.block());
        }
    }
    int run(ListForm form = ListForm::TabLines) {
        Services services{options, settings, texts,           errors,
                          output,  progress, progress.cancel, 1252};
        return listFiles(services, form, 100);
    }
    std::ptrdiff_t lines() const {
        return std::count(output.text.begin(), output.text.end(), '\n');
    }
};

TEST(ListJob, FolderIsListedByOptions) {
    struct Case {
        std::string mask;
        bool subfolders;
        int lines;
    };
    const Case cases[] = {{"*.*", false, 3}, {"*.*", true, 4}, {"*.MP3", true, 3}, {"2*", true, 1}};
    for (const Case& c : cases) {
        Job job;
        job.folder.write("x.ogg", "OggS");
        job.options.mask = c.mask;
        job.options.subfolders = c.subfolders;
        job.run();
        EXPECT_EQ(job.lines(), c.lines) << c.mask;
    }
}

TEST(ListJob, OneFileIsListedAlone) {
    Job job;
    job.options.folder = job.folder.path("1.mp3");
    EXPECT_EQ(job.run(ListForm::JsonLines), 0);
    EXPECT_EQ(job.lines(), 1);
    EXPECT_NE(job.output.text.find("\"Artist\":\"Artist\""), std::string::npos);
    EXPECT_NE(job.output.text.find("\"SubPath\":\"1.mp3\""), std::string::npos);
}

TEST(ListJob, SeveralFilesFoldersAndPlaylistsAreListedTogether) {
    Job job;
    job.options.paths = {job.folder.path("2.mp3"), job.folder.path("sub"),
                         job.folder.write("a.m3u", "#EXTM3U\r\n1.mp3\r\n"),
                         job.folder.path("no.txt"), job.folder.path("none.mp3")};
    EXPECT_EQ(job.run(), 1);
    EXPECT_EQ(job.lines(), 3);
    EXPECT_NE(job.messages.text.find("no.txt"), std::string::npos);
    EXPECT_NE(job.messages.text.find("none.mp3"), std::string::npos);
}

TEST(ListJob, MissingFolderIsToldAndEndsTheJob) {
    Job job;
    job.options.folder = job.folder.path("none");
    EXPECT_EQ(job.run(), 2);
    EXPECT_EQ(job.output.text, "");
    EXPECT_NE(job.messages.text.find("none"), std::string::npos);
}

TEST(ListJob, CancelAndFullOutputAreFailures) {
    Job cancelled;
    cancelled.options.mask = "*.mp3";
    cancelled.progress.cancelAt = 2;
    EXPECT_EQ(cancelled.run(), 1);
    EXPECT_GE(cancelled.lines(), 1);
    Job full;
    full.output.full = true;
    EXPECT_EQ(full.run(), 1);
    EXPECT_NE(full.messages.text, "");
}

}  // namespace
}  // namespace tavlo::test
