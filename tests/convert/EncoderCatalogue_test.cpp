#include "convert/EncoderCatalogue.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavlo::test {
namespace {

EncoderSettings someSettings() {
    EncoderSettings settings;
    settings.lameVersion = "3.100";
    settings.program = "Tavlo Audio Desk 1";
    settings.lame[1] = {"Two", "-b 192"};
    settings.ogg[0] = {"One", "-b 96"};
    settings.musepack[2] = {"Three", "--quality 4"};
    settings.faac[1] = {"F", "-q 90"};
    settings.nero[0] = {"N", "-br 64000"};
    return settings;
}

struct Row {
    FileTypes format;
    int mode;
    std::string line, label;
    bool isRewrapped = false;
};

const std::string io = R"( "i n.wav" "o ut")";

// Every rung by its first and its last mode.
const std::vector<Row> rows = {
    {FileType::Mp3, 0, "lame.exe -m m -h --lowpass 11 --resample 22 --abr 0 " + io,
     "VBR/ABR 0kbps"},
    {FileType::Mp3, 48, "lame.exe -m m -h --lowpass 11 --resample 22 --abr 48 " + io,
     "VBR/ABR 48kbps"},
    {FileType::Mp3, 49, "lame.exe -m m -h --lowpass 15.5 --resample 32 --abr 49 " + io,
     "VBR/ABR 49kbps"},
    {FileType::Mp3, 79, "lame.exe -m m -h --lowpass 15.5 --resample 32 --abr 79 " + io,
     "VBR/ABR 79kbps"},
    {FileType::Mp3, 80, "lame.exe -m j -h --lowpass 15.5 --resample 44 --abr 80 " + io,
     "VBR/ABR 80kbps"},
    {FileType::Mp3, 100, "lame.exe -m j -h --lowpass 15.5 --resample 44 --abr 100 " + io,
     "VBR/ABR 100kbps"},
    {FileType::Mp3, 101, "lame.exe -V 6 -m j -h --lowpass 16.0  " + io, "VBR/ABR 101kbps"},
    {FileType::Mp3, 120, "lame.exe -V 6 -m j -h --lowpass 16.0  " + io, "VBR/ABR 120kbps"},
    {FileType::Mp3, 121, "lame.exe -V 5 -m j -h --lowpass 16.5  " + io, "VBR/ABR 121kbps"},
    {FileType::Mp3, 145, "lame.exe -V 5 -m j -h --lowpass 16.5  " + io, "VBR/ABR 145kbps"},
    {FileType::Mp3, 146, "lame.exe -V 4 -m j -h --lowpass 18.0  " + io, "VBR/ABR 146kbps"},
    {FileType::Mp3, 175, "lame.exe -V 4 -m j -h --lowpass 18.0  " + io, "VBR/ABR 175kbps"},
    {FileType::Mp3, 176, "lame.exe -V 2 -m j -h --lowpass 19.0  " + io, "VBR/ABR 176kbps"},
    {FileType::Mp3, 210, "lame.exe -V 2 -m j -h --lowpass 19.0  " + io, "VBR/ABR 210kbps"},
    {FileType::Mp3, 211, "lame.exe -V 1 -m j -h --lowpass 19.5  " + io, "VBR/ABR 211kbps"},
    {FileType::Mp3, 230, "lame.exe -V 1 -m j -h --lowpass 19.5  " + io, "VBR/ABR 230kbps"},
    {FileType::Mp3, 231, "lame.exe -V 0 -m s -h --lowpass 20.0  " + io, "VBR/ABR 231kbps"},
    {FileType::Mp3, 300, "lame.exe -V 0 -m s -h --lowpass 20.0  " + io, "VBR/ABR 300kbps"},
    {FileType::Mp3, 301, "lame.exe --preset insane -m s -h --lowpass 20.0  " + io,
     "VBR/ABR 301kbps"},
    {FileType::Mp3, 315, "lame.exe --preset insane -m s -h --lowpass 20.0  " + io, ""},
    {FileType::Mp3, 320, "lame.exe --preset insane -m s -h --lowpass 20.0  " + io, "CBR 320kbps"},
    {FileType::Mp3, 554, "lame.exe --preset medium  " + io, "VBR medium preset"},
    {FileType::Mp3, 555, "lame.exe --preset standard  " + io, "VBR standard preset"},
    {FileType::Mp3, 556, "lame.exe --preset extreme  " + io, "VBR extreme preset"},
    {FileType::Mp3, 9002, "lame.exe -b 192 " + io, "user preset #2 Two"},
    {FileType::Ogg, 0, R"(oggenc.exe -q0 -n"o ut" "i n.wav")", "Q mode 0"},
    {FileType::Ogg, 10, R"(oggenc.exe -q10 -n"o ut" "i n.wav")", "Q mode 10"},
    {FileType::Ogg, 20, R"(oggenc.exe -q8 -n"o ut" "i n.wav")", "Q mode 8"},
    {FileType::Ogg, 31, R"(oggenc.exe -b 96 -n"o ut" "i n.wav")", "user preset #1 One"},
    {FileType::Mpc, 1, "mppenc.exe --verbose --overwrite  --thumb  " + io, "MPC preset thumb"},
    {FileType::Mpc, 6, "mppenc.exe --verbose --overwrite  --braindead  " + io,
     "MPC preset braindead"},
    {FileType::Mpc, 7, "mppenc.exe --verbose --overwrite  --quality 10 --xlevel  " + io,
     "MPC preset above braindead"},
    {FileType::Mpc, 9, "mppenc.exe --verbose --overwrite  --standard  " + io,
     "MPC preset standard"},
    {FileType::Mpc, 13,
     "mppenc.exe --verbose --overwrite mppenc.exe --verbose --overwrite --quality 4 " + io,
     "MPC preset user preset #3 Three"},
    {FileType::Mp4, 1100, R"(ffmpeg.exe -i "i n.wav"  -f ipod -acodec alac -y  "o ut")", "ALAC"},
    {FileType::Mp4, 1001, R"(neroaacenc.exe -q 0.15 -if "i n.wav" -of "o ut")",
     "NERO: VBR 15% (30-40 kbps)", true},
    {FileType::Mp4, 1010, R"(neroaacenc.exe -q 0.80 -if "i n.wav" -of "o ut")",
     "NERO: VBR 80% (300-330 kbps)", true},
    {FileType::Mp4, 1011, R"(neroaacenc.exe -br 64000 -if "i n.wav" -of "o ut")",
     R"(NERO: user preset #1 "N")", true},
    {FileType::Mp4, 1, R"(faac.exe -w  -q 30 -o "o ut" "i n.wav")", "FAAC: -q 30", true},
    {FileType::Mp4, 5, R"(faac.exe -w  -q 120 -c 17500 -o "o ut" "i n.wav")", "FAAC: -q 120", true},
    {FileType::Mp4, 10, R"(faac.exe -w  -q 300 -c 20000 -o "o ut" "i n.wav")", "FAAC: -q 300",
     true},
    {FileType::Mp4, 98, R"(faac.exe -w  -q 98 -o "o ut" "i n.wav")", "FAAC: -q 98", true},
    {FileType::Mp4, 99, R"(faac.exe -w  -q 99 -c 16500 -o "o ut" "i n.wav")", "FAAC: -q 99", true},
    {FileType::Mp4, 114, R"(faac.exe -w  -q 114 -c 16500 -o "o ut" "i n.wav")", "FAAC: -q 114",
     true},
    {FileType::Mp4, 115, R"(faac.exe -w  -q 115 -c 17500 -o "o ut" "i n.wav")", "FAAC: -q 115",
     true},
    {FileType::Mp4, 199, R"(faac.exe -w  -q 199 -c 18500 -o "o ut" "i n.wav")", "FAAC: -q 199",
     true},
    {FileType::Mp4, 200, R"(faac.exe -w  -q 200 -c 19000 -o "o ut" "i n.wav")", "FAAC: -q 200",
     true},
    {FileType::Mp4, 400, R"(faac.exe -w  -q 400 -o "o ut" "i n.wav")", "FAAC: -q 400", true},
    {FileType::Mp4, 600, R"(faac.exe -w  -q 120 -c 17500 -o "o ut" "i n.wav")", "FAAC: -q 120",
     true},
    {FileType::Mp4, 902, R"(faac.exe -w -q 90 -o "o ut" "i n.wav")", R"(FAAC: user preset #2 "F")",
     true},
    {FileType::Flac, 8,
     R"(flac.exe -f -8 -o"o ut" --tag=TITLE="A B"  --tag="ENCODED BY"="Tavlo Audio Desk 1" "i n.wav")",
     ""},
    {FileType::Flac, 9,
     R"(flac.exe -f -5 -o"o ut" --tag=TITLE="A B"  --tag="ENCODED BY"="Tavlo Audio Desk 1" "i n.wav")",
     ""},
    {FileType::Wv, 0, "wavpack.exe -h -m -y" + io, ""},
    {FileType::Ape, 4, "mac.exe" + io + " -c4000", ""},
    {FileType::Ape, 0, "mac.exe" + io + " -c2000", ""},
};

TEST(EncoderCatalogue, EveryModeHasItsCommand) {
    const EncoderSettings settings = someSettings();
    for (const Row& row : rows) {
        const auto command =
            encodeCommand(row.format, row.mode, {"i n.wav", "o ut", "A B"}, settings);
        ASSERT_TRUE(command) << row.line;
        EXPECT_EQ(command->line, row.line);
        const bool isLame = row.format == FileType::Mp3 && !row.label.empty();
        EXPECT_EQ(command->label, row.label + (isLame ? " (LAME v3.100)" : "")) << row.line;
        EXPECT_EQ(command->isRewrapped, row.isRewrapped) << row.line;
        EXPECT_TRUE(command->line.starts_with(command->executable)) << row.line;
    }
    for (const auto& [format, mode] : {std::pair(FileType::Mp3, 321),
                                       {FileType::Mp3, -1},
                                       {FileType::Mp3, 9004},
                                       {FileType::Mp4, 904},
                                       {FileType::Mp4, 0},
                                       {FileType::Wma, 1}}) {
        EXPECT_FALSE(encodeCommand(format, mode, {}, settings)) << format << " " << mode;
    }
}

TEST(EncoderCatalogue, SettingsChangeCommands) {
    EncoderSettings settings = someSettings();
    settings.reduceLevel = settings.lame393 = settings.musepackStream8 = true;
    const EncodePaths paths{"i", "o", "t"};
    const auto insane = encodeCommand(FileType::Mp3, 320, paths, settings);
    EXPECT_EQ(insane->line,
              "lame393.exe --preset insane -m s -h --lowpass 20.0   --scale 0.95  \"i\" \"o\"");
    EXPECT_EQ(insane->executable, "lame393.exe");
    EXPECT_EQ(insane->label, "CBR 320kbps (LAME v3.93)");
    EXPECT_EQ(encodeCommand(FileType::Mp3, 192, paths, settings)->description,
              "lame.exe -V 2 -m j -h --lowpass 19.0 (v3.100)");
    EXPECT_EQ(encodeCommand(FileType::Mpc, 3, paths, settings)->line,
              "mpcenc.exe --verbose --overwrite  --standard   --scale 0.95  \"i\" \"o\"");
    settings.lameVersion.clear();
    EXPECT_EQ(encodeCommand(FileType::Mp3, 128, paths, settings)->label, "VBR/ABR 128kbps");
}

TEST(EncoderCatalogue, DecodersAndRewrapping) {
    EncoderSettings settings;
    const std::tuple<FileTypes, int, std::string_view> decoders[] = {
        {FileType::Mp3, 0, R"(lame.exe --mp3input --decode "i")"},
        {FileType::Ogg, 0, R"(oggdec.exe "i")"},
        {FileType::Mpc, 0, R"(mpcdec.exe "i" "o.wav")"},
        {FileType::Mp4, 0, R"(faad.exe -d "i" -o "o.wav")"},
        {FileType::Aac, 1, R"(neroaacdec.exe -if "i" -of "o.wav")"},
        {FileType::Mp4, 2, R"(alacdec.exe -f "o.wav" "i")"},
        {FileType::Wma, 0, R"(wmal2pcm.exe "i" "o.wav")"},
        {FileType::Wma, 1, R"(mplayer.exe -slave -nojoystick -ao pcm:waveheader:file="o.wav" "i")"},
        {FileType::Flac, 0, R"(flac.exe -d -f -F  -o"o.wav" "i")"},
        {FileType::Wv, 0, R"(wvunpack.exe -y -w "i" "o.wav")"},
        {FileType::Ape, 0, R"(mac.exe "i" "o.wav"  -d )"},
    };
    for (const auto& [format, alternative, line] : decoders) {
        EXPECT_EQ(decodeCommand(format, "i", "o.wav", settings, alternative)->line, line);
    }
    settings.separateMp3Decoder = true;
    EXPECT_EQ(decodeCommand(FileType::Mp3, "i", "o", settings)->line,
              R"(lamedec.exe --decode "i")");
    EXPECT_FALSE(decodeCommand(FileType::Wave, "i", "o", settings));
    const auto [extract, create] = rewrapCommands("a b.m4a");
    EXPECT_EQ(extract, R"(mp4creator60.exe -mpeg-version=4 -extract=1 "a b.m4a" "a b.m4a.aac")");
    EXPECT_EQ(create,
              R"(mp4creator60.exe -mpeg-version=4 -optimize -create="a b.m4a.aac" "a b.m4a")");
}

TEST(EncoderCatalogue, ModesAimAtBitrates) {
    EncoderSettings settings = someSettings();
    settings.lame[0].code = "-V 2 --abr 100";
    settings.ogg[1].code = "-V2 -b96";
    settings.lame[2].code = "--preset radio";
    constexpr int lossless = std::numeric_limits<int>::max();
    const std::tuple<FileTypes, int, int> aims[] = {
        {FileType::Mp3, 192, 192}, {FileType::Mp3, 554, 165},     {FileType::Mp3, 555, 190},
        {FileType::Mp3, 556, 245}, {FileType::Mp3, 9002, 192},    {FileType::Mp3, 9003, 0},
        {FileType::Ogg, 0, 64},    {FileType::Ogg, 10, 500},      {FileType::Ogg, 20, 256},
        {FileType::Ogg, 32, 190},  {FileType::Mpc, 1, 90},        {FileType::Mpc, 7, 350},
        {FileType::Mpc, 8, 180},   {FileType::Mp4, 1006, 190},    {FileType::Mp4, 6, 150},
        {FileType::Mp4, 600, 120}, {FileType::Flac, 0, lossless}, {FileType::Mp4, 1100, lossless},
    };
    for (const auto& [format, mode, bitrate] : aims) {
        EXPECT_EQ(nominalBitrate(format, mode, settings), bitrate) << format << " " << mode;
    }
}

}  // namespace
}  // namespace tavlo::test
