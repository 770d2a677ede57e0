#include "convert/Converter.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/ConversionDesk.h"

namespace tavlo::test {
namespace {

using Desk = ConversionDesk;
using enum ConversionResult;

const std::string wav = waveBytes(12), mp3 = mp3Bytes(12);
const std::string id3 = tag(3, textFrame(3, "TIT2", "Title"));
const std::map<std::string, std::string> sources{{"a.wav", wav},
                                                 {"a.mp3", mp3},
                                                 {"tagged.mp3", id3 + mp3},
                                                 {"a.ogg", ""},
                                                 {"100.mp3", vbrBytes(12, 100)},
                                                 {"long.mp3", mp3Bytes(24)},
                                                 {"a.wma", ""},
                                                 {"a.aac", ""},
                                                 {"a.m4a", mp4Bytes(12)}};

const ConversionTarget toMp3{FileType::Mp3, LameStandard}, to95{FileType::Mp3, 95},
    to96{FileType::Mp3, 96}, toAlac{FileType::Mp4, Alac}, toAac{FileType::Mp4, 5},
    toWavPack{FileType::Wv, 0}, toWave{FileType::Wave, 0};

// One conversion; what `ConversionDesk` says about names and texts is true here too.
struct Row {
    std::string source, folder, tools, does;
    ConversionResult result;
    std::string changes, log;  // its last lines
    ConversionTarget target = toMp3;
    std::string options = {};  // "rise": bitrateRise; "waves", "others": such sources are deleted
};

// Gives what `ConversionDesk::told` does.
std::string expectRow(const Row& row) {
    SCOPED_TRACE(row.source + " -> " + row.folder + " by " + row.tools + " " + row.does);
    Desk desk({{row.source, sources.at(row.source)}}, row.tools, row.does);
    desk.prepare("75.mp3", vbrBytes(12, 75));
    desk.prepare("76.mp3", vbrBytes(12, 76));
    desk.settings.target = row.target;
    desk.settings.bitrateRise = row.options == "rise";
    desk.settings.deletesWaves = row.options == "waves";
    desk.settings.deletesCompressed = row.options == "others";
    EXPECT_EQ(desk.convert(row.source, row.folder), row.result);
    EXPECT_EQ(desk.changes(), row.changes);
    EXPECT_TRUE(desk.log().ends_with(row.log)) << desk.log();
    return desk.told();
}

std::string isMissing(const std::string& tool) {
    return "! File \"" + tool + "\" not found.\n";
}

const std::string encodes = "encoding to MP3 using LAME\nVBR standard preset\n";
const std::string failed = "! Encoding ERROR detected! Operation cancelled.\n";
const std::string error = "encoding error detected\n", tags = "updating information tags\n";

TEST(Converter, WaveBecomesAWholeFileOrNone) {
    const std::string half = encodes + "! no whole file came out of lame.exe\n" + failed;
    const std::string none = "! no whole file came out of lame.exe\n" + failed;
    const Row rows[] = {
        {"a.wav", "", "lame", "give=#", Converted, "a.mp3=#.mp3", "@a.wav\n" + encodes},
        {"a.wav", "o/p", "lame", "give=# exit=3", Converted, "o/p/a.mp3=#.mp3", encodes},
        {"a.wav", "", "oggenc", "", Failed, "",
         "@a.wav\n" + encodes + isMissing("lame.exe") + failed},
        {"a.wav", "", "lame", "print=3", Failed, "", encodes + "    abc\n" + none},
        {"a.wav", "", "lame", "garbage", Failed, "", half},
        {"a.wav", "", "lame", "half=#", Failed, "", half},
        {"a.wav", "", "lame", "give=# garbage crash", Failed, "", half},
        {"a.wav", "a.wav", "lame", "give=#", Failed, "", "! Unable to create folder: @a.wav\n"},
    };
    for (const Row& row : rows) expectRow(row);
    Desk desk({}, "lame", "give=#");
    EXPECT_EQ(desk.convert("a.wav"), Failed);
    EXPECT_EQ(desk.log(), "processing @a.wav\n! file not found\n");
}

// Of what stands in another format no tags are read, so that the sources need be no real ones.
TEST(Converter, OtherFormatsAreDecodedFirst) {
    const std::string rest = encodes + "file bitrate: 128 kbps\n" + tags +
                             "tags of this source format cannot be read yet, so none go over\n";
    const std::string mp3s = "decoding from MP3 using LAME\n", ogg = "decoding from Ogg Vorbis\n",
                      aac = "decoding from MPEG-4 AAC\n", made = "o/a.mp3=#.mp3",
                      wma = "decoding from Windows Media Audio\n";
    const auto silent = [](const std::string& tool) {
        return "! no sound came out of " + tool + "\n";
    };
    const std::string alac = mp3s + "encoding to ALAC (MPEG-4 AAC)\nALAC\nfile bitrate: 3 kbps\n";
    const Row rows[] = {
        {"a.ogg", "o", "oggdec lame", "give=#", Converted, made, ogg + rest},
        {"a.ogg", "o", "oggdec lame", "oggdec:behind give=#", Converted, made, ogg + rest},
        {"a.ogg", "o", "lame", "give=#", Failed, "",
         ogg + isMissing("oggdec.exe") + "! skipped: " + error},
        {"long.mp3", "o", "lame ffmpeg", "give=#", Failed, "",
         mp3s + "! Corrupted file detected!\n! skipped: " + error, toAlac},
        {"a.ogg", "o", "oggdec", "give=#", Failed, "",
         isMissing("lame.exe") + "! skipped: " + error},
        {"a.ogg", "o", "oggdec lame", "garbage", Failed, "",
         silent("oggdec.exe") + "! skipped: " + error},
        {"a.wma", "o", "wmal2pcm mplayer lame", "give=#", Converted, made, wma + rest},
        {"a.wma", "o", "mplayer lame", "give=#", Converted, made, wma + rest},
        {"a.wma", "o", "wmal2pcm mplayer lame", "mplayer:give=# lame:give=#", Converted, made,
         wma + silent("wmal2pcm.exe") + rest},
        {"a.wma", "o", "lame", "", Failed, "",
         wma + isMissing("wmal2pcm.exe") + "! skipped: " + error},
        {"a.aac", "o", "faad neroaacdec lame", "faad:garbage neroaacdec:give=# lame:give=#",
         Converted, made, aac + silent("faad.exe") + rest},
        {"a.aac", "o", "faad neroaacdec lame", "lame:give=#", Failed, "",
         silent("faad.exe") + silent("neroaacdec.exe") + "! skipped: " + error},
        {"a.mp3", "o", "lame ffmpeg", "give=#", Converted, "o/a.m4a=#.m4a", alac, toAlac},
        {"a.mp3", "o", "lame ffmpeg", "lame:behind give=#", Converted, "o/a.m4a=#.m4a", alac,
         toAlac},
        {"a.mp3", "o", "lame", "give=#", Converted, "o/a.wav=#.wav", mp3s, toWave},
    };
    for (const Row& row : rows) expectRow(row);
}

TEST(Converter, WhatSavesTooLittleStaysAsItIs) {
    const std::string desired = "desired bitrate is higher than source\n",
                      encoded = "encoded bitrate is higher than source\n",
                      copied = "copied \"as is\": ", skipped = "skipped: ",
                      copy = "o/100.mp3=100.mp3", gives75 = "give=# give=@as/75",
                      gives76 = "give=# give=@as/76";
    const Row rows[] = {
        {"100.mp3", "", "lame", gives75, Skipped, "", skipped + desired, to96},
        {"100.mp3", "o", "lame", gives75, Copied, copy, copied + desired, to96},
        {"100.mp3", "o", "lame", gives75, Converted, "o/100.mp3=75.mp3", tags, to96, "rise"},
        {"100.mp3", "o", "lame", gives75, Converted, "o/100.mp3=75.mp3", tags, to95},
        {"100.mp3", "", "lame", gives75, Converted, "100.mp3=75.mp3", tags, to95},
        {"100.mp3", "", "lame", gives76, Skipped, "", skipped + encoded, to95},
        {"100.mp3", "o", "lame", gives76, Copied, copy, copied + encoded, to95},
        {"100.mp3", "o", "lame", gives76, Converted, "o/100.mp3=76.mp3", tags, to95, "rise"},
        {"100.mp3", "", "lame", "garbage", Failed, "", skipped + error, to95},
        {"100.mp3", "o", "lame", "garbage", Copied, copy, copied + error, to95},
    };
    for (const Row& row : rows) expectRow(row);
}

TEST(Converter, SourcesGoOnlyWhenAllOfThemIsInTheResult) {
    const std::string tools = "lame ffmpeg faad wavpack";
    const std::string stays =
        "the source stays, because its tags cannot be read or could not all go over\n";
    const Row rows[] = {
        {"a.wav", "", tools, "give=#", Converted, "a.mp3=#.mp3 a.wav=gone", "", toMp3, "waves"},
        {"a.wav", "", tools, "give=#", Converted, "a.mp3=#.mp3", "", toMp3, "others"},
        {"a.wav", "", tools, "garbage", Failed, "", failed, toMp3, "waves"},
        {"a.mp3", "", tools, "give=#", Converted, "a.m4a=#.m4a a.mp3=gone", "", toAlac, "others"},
        {"a.mp3", "", tools, "give=#", Converted, "a.wav=#.wav", "", toWave, "others"},
        {"tagged.mp3", "", tools, "give=#", Converted, "tagged.mp3=gone tagged.wv=#.wv", tags,
         toWavPack, "others"},
        {"tagged.mp3", "", tools, "give=#", Converted, "tagged.wv=#.wv", tags, toWavPack, "waves"},
        {"tagged.mp3", "", tools, "give=#", Converted, "tagged.m4a=#.m4a",
         "tags that this format cannot take yet stay behind: Title\n" + stays, toAlac, "others"},
        {"a.m4a", "", tools, "give=#", Converted, "a.mp3=#.mp3", stays, toMp3, "others"},
        {"100.mp3", "o", tools, "give=#", Copied, "o/100.mp3=100.mp3", "source\n", to96, "others"},
    };
    for (const Row& row : rows) expectRow(row);
}

TEST(Converter, AacGoesThroughTheOptimizerTwice) {
    const std::string head = "encoding to MPEG-4 AAC\nFAAC: -q 120\n", both = "faac mp4creator60";
    const std::string lost =
        head + "optimizing AAC stream\n" + isMissing("mp4creator60.exe") + failed;
    const std::string faac = "faac -w -q 120 -c 17500 -o @o/tavlo-1.m4a @a.wav";
    const std::string first =
        "\nmp4creator60 -mpeg-version=4 -extract=1 @o/tavlo-1.m4a @o/tavlo-1.m4a.aac";
    const std::string second =
        "\nmp4creator60 -mpeg-version=4 -optimize -create=@o/tavlo-1.m4a.aac @o/tavlo-1.m4a";
    const std::string optimizes = head + "optimizing AAC stream\n";
    const std::pair<Row, std::string> rows[] = {
        {{"a.wav", "o", both, "give=#", Converted, "o/a.m4a=#.m4a", optimizes, toAac},
         faac + first + second},
        {{"a.wav", "o", "mp4creator60", "", Failed, "", head + isMissing("faac.exe") + failed,
          toAac},
         ""},
        {{"a.wav", "o", "faac", "give=#", Failed, "", lost, toAac}, faac},
        {{"a.wav", "o", both, "faac:give=#", Failed, "", lost, toAac}, faac + first},
        {{"a.wav", "o", both, "give=# garbage", Failed, "", failed, toAac}, faac + first + second},
    };
    for (const auto& [row, told] : rows) EXPECT_EQ(expectRow(row), told);
}

TEST(Converter, TagsOfAnMp3StayByteForByte) {
    const std::string title = textFrame(3, "TIT2", "Title"), other = frame(3, "XYZW", "unknown"),
                      picture = frame(3, "APIC", "\0image/png\0\3\0"s + "\x89PNG");
    const std::string behind = ApeTag{{apeItem("Artist", "Name"), apeItem("Own", "kept")}}.bytes() +
                               Id3v1{"Title", "Name", "", "", ""}.block();
    const std::string made = textFrame(
        3, "TXXX", "ENCODER_INFO\0lame.exe --preset standard (ReEncoded from MP3 128kbps )"s);
    for (const std::string folder : {"", "o"}) {
        Desk desk({{"a.mp3", tag(3, title + other + picture) + mp3 + behind}}, "lame", "give=#");
        desk.settings.bitrateRise = desk.settings.deletesCompressed = true;
        desk.prepare("#.mp3", vbrBytes(12, 64));
        EXPECT_EQ(desk.convert("a.mp3", folder), Converted);
        EXPECT_EQ(desk.changes(), folder.empty() ? "a.mp3=#.mp3" : "a.mp3=gone o/a.mp3=#.mp3");
        const std::string bytes = desk.folder.read(folder.empty() ? "a.mp3" : "o/a.mp3");
        for (const std::string& part : {title, other, picture, made}) {
            EXPECT_LT(bytes.find(part), bytes.find(cdHeader)) << part;
        }
        EXPECT_TRUE(bytes.ends_with(behind));
    }
}

// Less sound, tags that no reader knows, tags that are not wanted, another file in its place: the
// source neither goes nor gives way.
TEST(Converter, DoubtLetsTheSourceStay) {
    const std::string whole = tag(3, textFrame(3, "TIT2", "Title") + frame(3, "XYZW", "unknown"));
    const std::string lyrics1 = "LYRICSBEGINla la laLYRICSEND" + Id3v1{"T", "", "", "", ""}.block();
    const auto expectItStays = [](const std::string& bytes, bool writesTags, bool changes) {
        for (const std::string folder : {"", "o"}) {
            Desk desk({{"a.mp3", bytes}}, "lame", changes ? "sleep=250 give=#" : "give=#");
            desk.settings.bitrateRise = desk.settings.deletesCompressed = true;
            desk.settings.writesTags = writesTags;
            desk.tick = [&] {
                if (changes) desk.folder.write("a.mp3", bytes + "another");
            };
            desk.convert("a.mp3", folder);
            EXPECT_EQ(desk.folder.read("a.mp3"), bytes + (changes ? "another" : ""))
                << folder << "\n"
                << desk.log();
        }
    };
    for (const std::string& bytes :
         {vbrBytes(24, 128), mp3Bytes(24), whole + whole + mp3, std::string(100, 'x') + whole + mp3,
          std::string(100, '\0') + whole + mp3, ApeTag{{apeItem("Own", "x")}}.bytes() + whole + mp3,
          mp3 + lyrics1}) {
        expectItStays(bytes, true, false);
    }
    expectItStays(whole + mp3, false, false);
    expectItStays(whole + mp3, true, true);
}

TEST(Converter, WavPackMayNameItsOutputItself) {
    for (const std::string does : {"give=#", "beside give=#"}) {
        Desk desk({{"a.wav", wav}, {"a.wv", "other"}}, "wavpack", does);
        desk.settings.target = toWavPack;
        EXPECT_EQ(desk.convert("a.wav"), Converted);
        EXPECT_EQ(desk.changes(), "a (1).wv=#.wv");
    }
}

TEST(Converter, ProcessedSoundGivesWayToTheOldOne) {
    for (const auto& [does, keeps, changes] : {std::tuple("give=#", true, "a.mp3=#.mp3"),
                                               {"give=#", false, "a.mp3=#.mp3 a.wav=#.wav"},
                                               {"garbage", true, ""},
                                               {"garbage", false, ""}}) {
        Desk desk({{"a.wav", wav}}, "lame", does);
        desk.settings.keepsWavUnprocessed = keeps;
        desk.processWave = [&](const std::string& path, bool) {
            EXPECT_EQ(path, desk.folder.path("a.wav"));
            desk.folder.write("a.wav.bak", wav);
            desk.folder.write("a.wav", wav + "\x81");
            return true;
        };
        desk.convert("a.wav");
        EXPECT_EQ(desk.changes(), changes) << does;
    }
    Desk own({{"a.wav", wav}, {"a.wav.bak", "somebody's"}, {"a.ogg", ""}}, "lame oggdec", "give=#");
    int processed = 0;
    own.processWave = [&](const std::string&, bool) { return ++processed > 0; };
    own.convert("a.wav");
    own.convert("a.ogg", "o");
    EXPECT_EQ(own.changes(), "a.mp3=#.mp3 o/a.mp3=#.mp3");
    EXPECT_EQ(processed, 0);
}

TEST(Converter, EndsAfterTheProgramOrWithIt) {
    const std::string hangs = "garbage sleep=30000";
    for (const auto& [source, does, endsNow, program, result, changes, runs] :
         {std::tuple("a.ogg", "sleep=300 give=#"s, false, "oggdec ", Cancelled, "", 1),
          {"a.ogg", "sleep=300 give=#", false, "lame ", Converted, "a.mp3=#.mp3", 2},
          {"a.wav", "sleep=300 give=#", false, "lame ", Converted, "a.mp3=#.mp3", 1},
          {"a.wav", hangs, true, "lame ", Cancelled, "", 1},
          {"a.ogg", hangs, true, "oggdec ", Cancelled, "", 1},
          {"a.ogg", "oggdec:give=# lame:sleep=30000", true, "lame ", Cancelled, "", 2}}) {
        Desk desk({{source, sources.at(source)}}, "oggdec lame", does);
        desk.tick = [&, program = program, endsNow = endsNow] {
            if (desk.told().find(program) == std::string::npos) return;
            desk.cancel = true;
            desk.control.endsNow = endsNow;
        };
        EXPECT_EQ(desk.convert(source), result) << source << does << program;
        EXPECT_EQ(desk.changes(), changes) << source << does << program;
        EXPECT_EQ(std::ranges::count(desk.told(), '\n') + 1, runs) << desk.told();
    }
}

TEST(Converter, SlowDrivesGetTheFinishedFile) {
    Desk desk({{"a.wav", wav}}, "lame", "give=#");
    desk.isRemovable = [&](const std::string& path) { return path == desk.folder.path("o"); };
    EXPECT_EQ(desk.convert("a.wav", "o"), Converted);
    EXPECT_EQ(desk.changes(), "o/a.mp3=#.mp3");
    EXPECT_EQ(desk.told(), "lame --preset standard @a.wav @work/tavlo/tavlo-1.mp3");
}

TEST(Converter, NamesArriveAsOneArgument) {
    const bool isPosix = nativePathStyle() == PathStyle::Posix;
    const std::string name = std::string("-a $b %c% `d` 'e'") + (isPosix ? " \"f\" \\" : "");
    const std::string shown =
        std::string("-a%20$b%20%25c%25%20`d`%20'e'") + (isPosix ? "%20\"f\"%20\\" : "");
    const std::string flac = "flac -f -8 -o@100%25/tavlo-1.flac --tag=TITLE=" + shown +
                             " --tag=ENCODED%20BY=Desk%201 @" + shown + ".wav";
    const std::pair<ConversionTarget, std::string> rows[] = {
        {toMp3, "lame --preset standard @" + shown + ".wav @100%25/tavlo-1.mp3"},
        {{FileType::Flac, 8}, flac},
        {{FileType::Ogg, 8}, "oggenc -q8 -n@100%25%25/tavlo-1.ogg @" + shown + ".wav"},
    };
    for (const auto& [target, told] : rows) {
        Desk desk({{name + ".wav", wav}}, "lame flac oggenc", "exit=0");
        desk.settings.target = target;
        desk.settings.encoders.program = "Desk 1";
        desk.convert(name + ".wav", "100%");
        EXPECT_EQ(desk.told(), told);
    }
}

}  // namespace
}  // namespace tavlo::test
