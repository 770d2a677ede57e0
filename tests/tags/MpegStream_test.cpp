#include "tags/MpegStream.h"

#include <gtest/gtest.h>

#include "support/ReadBytes.h"

namespace tavlo::test {
namespace {

ID3tag streamOf(std::string_view bytes) {
    return readBytes(bytes);
}

TEST(MpegStream, ConstantRateIsCountedFromTheBytes) {
    struct Case {
        std::string_view header;
        std::size_t size, count;
        int version, layer, bitrate, sampleRate, seconds;
    };
    // Seconds: count x 26.125 ms x 44100 / rate; half of it for a layer III frame of MPEG-2 and
    // 2.5, a third for layer I. Each pair lies on both sides of a whole second.
    const Case cases[] = {
        {"\xFF\xFB\x94\x64", 384, 124, 1, 3, 128, 48000, 2},
        {"\xFF\xFB\x94\x64", 384, 125, 1, 3, 128, 48000, 3},
        {"\xFF\xFD\xA4\x80", 576, 124, 1, 2, 192, 48000, 2},
        {"\xFF\xFD\xA4\x80", 576, 125, 1, 2, 192, 48000, 3},
        {"\xFF\xFF\xC4\x40", 384, 374, 1, 1, 384, 48000, 2},
        {"\xFF\xFF\xC4\x40", 384, 375, 1, 1, 384, 48000, 3},
        {"\xFF\xF3\x84\xC0", 192, 124, 2, 3, 64, 24000, 2},
        {"\xFF\xF3\x84\xC0", 192, 125, 2, 3, 64, 24000, 3},
        {"\xFF\xE3\x88\x40", 576, 41, 25, 3, 64, 8000, 2},
        {"\xFF\xE3\x88\x40", 576, 42, 25, 3, 64, 8000, 3},
        {"\xFF\xF5\x84\x40", 384, 62, 2, 2, 64, 24000, 2},
        {"\xFF\xF5\x84\x40", 384, 63, 2, 2, 64, 24000, 3},
        {"\xFF\xF7\x44\x40", 128, 187, 2, 1, 64, 24000, 2},
        {"\xFF\xF7\x44\x40", 128, 188, 2, 1, 64, 24000, 3},
    };
    for (const Case& c : cases) {
        const ID3tag record = streamOf(mpegFrames(c.count, c.header, c.size));
        SCOPED_TRACE(testing::PrintToString(c.header) + std::to_string(c.count));
        EXPECT_EQ(record.Frames, c.count);
        EXPECT_EQ(record.Seconds, c.seconds);
        EXPECT_EQ(record.Bitrate, c.bitrate);
        EXPECT_EQ(record.SampleRate, c.sampleRate);
        EXPECT_EQ(record.MpegVersion, c.version);
        EXPECT_EQ(record.Layer, c.layer);
        EXPECT_FALSE(record.VBR);
        EXPECT_EQ(record.Encoder, "");
    }
}

TEST(MpegStream, ChannelModesAndChannels) {
    constexpr std::pair<char, int> cases[] = {{'\x00', 2}, {'\x40', 2}, {'\x80', 2}, {'\xC0', 1}};
    int mode = 0;
    for (const auto& [byte, channels] : cases) {
        const ID3tag record = streamOf(mpegFrames(4, "\xFF\xFB\x90"s + byte));
        EXPECT_EQ(record.ChannelMode, mode++);
        EXPECT_EQ(record.Channels, channels);
    }
}

TEST(MpegStream, TagsAroundTheAudioAreNotCounted) {
    const std::string behind[] = {
        "", Id3v1{}.block(), ApeTag{{apeItem("Note", std::string(900, 'n'))}}.bytes(),
        lyrics3(lyricsField("LYR", std::string(900, 'l'))) + Id3v1{}.block()};
    for (const std::string& end : behind) {
        EXPECT_EQ(streamOf(tag(3, std::string(3000, '\0')) + mpegFrames(50) + end).Frames, 50U);
    }
}

constexpr std::size_t smallestFrame = 104;  // 32 kbit/s at 44100 Hz

TEST(MpegStream, FrameCountOfTheHeaderWins) {
    struct Case {
        std::string_view marker;
        std::uint32_t frames;
        int seconds;
        bool vbr;
    };
    constexpr Case cases[] = {
        {"Xing", 2296, 59, true},
        {"Xing", 2297, 60, true},
        {"Info", 2297, 60, false},
        {"Xing", 11292, 295, true},  // 294 at 1152 / 44100 s a frame
    };
    for (const Case& c : cases) {
        XingFrame first{std::string(c.marker)};
        first.frames = c.frames;
        first.bytes = 417 * c.frames;
        std::string audio = first.frame() + cdFrames(9);
        audio.resize(smallestFrame * c.frames, '\0');
        const ID3tag record = streamOf(audio);
        EXPECT_EQ(record.Frames, c.frames);
        EXPECT_EQ(record.Seconds, c.seconds);
        EXPECT_EQ(record.VBR, c.vbr) << c.marker;
    }
    XingFrame noCount{"Xing", 0x0E};
    EXPECT_EQ(streamOf(noCount.frame() + cdFrames(9) + std::string(10, '\0')).Frames, 10U);
}

TEST(MpegStream, FrameCountThatTheFileCannotHoldIsNotBelieved) {
    for (const std::uint32_t frames : {1000U, 2000U, 0xFFFFFFFFU}) {
        XingFrame first{"Xing", 1, frames};
        std::string audio = first.frame() + cdFrames(9);
        audio.resize(smallestFrame * 1000, '\0');
        const bool isBelieved = frames == 1000;
        const ID3tag record = streamOf(audio);
        const auto estimated = static_cast<std::uint32_t>(smallestFrame * 1000 / 417.96 + 0.5);
        EXPECT_EQ(record.Frames, isBelieved ? frames : estimated);
        EXPECT_EQ(record.Seconds, isBelieved ? 26 : 6);
        EXPECT_EQ(record.TimeIsGuessed, !isBelieved);
    }
}

TEST(MpegStream, AverageRateOfVbrIsRoundedToNearest) {
    // 491.3 bytes a frame x 8 / 26.125 ms = 150.45 kbit/s; 491.6 make 150.54.
    constexpr std::pair<std::uint32_t, int> cases[] = {{4913, 150}, {4916, 151}};
    for (const auto& [bytes, bitrate] : cases) {
        for (const std::uint32_t flags : {0x0FU, 0x0DU}) {
            XingFrame first{"Xing", flags, 10, bytes};
            std::string audio = first.frame() + cdFrames(9);
            audio.resize(bytes, '\0');
            EXPECT_EQ(streamOf(audio).Bitrate, bitrate) << flags;
        }
    }
}

TEST(MpegStream, VbriHeaderTellsTheFrameCount) {
    std::string first = cdHeader + std::string(32, '\0') + "VBRI" + bigEndian(1, 2) +
                        bigEndian(0, 2) + bigEndian(75, 2) + bigEndian(4916, 4) + bigEndian(10, 4);
    first.resize(cdFrameSize, '\0');
    std::string audio = first + cdFrames(9);
    audio.resize(4916, '\0');
    const ID3tag record = streamOf(audio);
    EXPECT_EQ(record.Frames, 10U);
    EXPECT_TRUE(record.VBR);
    EXPECT_EQ(record.Bitrate, 151);
}

TEST(MpegStream, ConfirmedFrameIsPreferredToAnEarlierHeader) {
    const std::string other = mpegFrames(20, "\xFF\xFD\xA4\x80", 576);
    const std::string falseStarts[] = {
        usualHeader + std::string(60, 'x'),
        "\xFF\xFE" + utf16le(u"Снег"),
        std::string("\xFF\xFB\x9C\x64") + std::string(60, 'x'),  // sampling index 3
        "\xFF\xFF\xFF",
    };
    for (const std::string& start : falseStarts) {
        const ID3tag record = streamOf(start + other);
        EXPECT_EQ(record.Layer, 2) << testing::PrintToString(start);
        EXPECT_EQ(record.Bitrate, 192) << testing::PrintToString(start);
    }
    // A text with its mark in the last bytes of a tag, where the search begins already.
    const std::string text = "\x01\xFF\xFE" + utf16le(u"@D");
    EXPECT_EQ(streamOf(tag(3, frame(3, "TALB", text)) + mpegFrames(20)).Layer, 3);
}

TEST(MpegStream, FirstValidHeaderIsTakenWhereNoneIsConfirmed) {
    const std::string lone = usualHeader + std::string(300, 'x');
    const std::string second = "\xFF\xFD\xA4\x80" + std::string(900, 'x');
    EXPECT_EQ(streamOf(lone + second).Layer, 3);
    EXPECT_EQ(streamOf("\xFF\xFB\x9C\x64" + std::string(50, 'x') + second).Layer, 2);
}

TEST(MpegStream, SearchEndsAfter40960Bytes) {
    const std::string frames = mpegFrames(20);
    EXPECT_EQ(streamOf(std::string(40959, '\0') + frames).Bitrate, 128);
    EXPECT_EQ(streamOf(std::string(40961, '\0') + frames).Bitrate, 0);
    const std::string body(100000, '\0');
    EXPECT_EQ(streamOf(tag(3, body) + std::string(40940, '\0') + frames).Bitrate, 128);
    const ID3tag none = streamOf(tag(3, body) + std::string(40961, '\0') + frames);
    EXPECT_EQ(none.Bitrate, 0);
    EXPECT_EQ(none.Layer, 0);
    EXPECT_EQ(none.Seconds, 0);
    EXPECT_EQ(none.Frames, 0U);
}

TEST(MpegStream, LastBytesOfTheFileAreNotSearched) {
    const std::string before(1000, '\0');
    EXPECT_EQ(streamOf(before + usualHeader + std::string(128, '\0')).Layer, 3);
    EXPECT_EQ(streamOf(before + usualHeader + std::string(124, '\0')).Layer, 0);
}

TEST(MpegStream, EncoderTextOfTheMarkerWinsThenTheFirstThenTheTail) {
    const std::string behind = std::string(200, '\0') + "LAME3.97\0x"s;
    const std::string tail = std::string(6000, '\0') + "LAME3.93\0x"s + std::string(600, '\0');
    struct Case {
        std::string marker;
        std::string behind, tail;
        std::string_view expected;
    };
    const Case cases[] = {
        {"LAME3.100 \0\0\0"s, behind, tail, "LAME3.100"},
        {"Lavc59.37\0\0"s, behind, tail, "Lavc59.37"},
        {"A\0B\x01\x7F\x80"s, "", "", "AB"},
        {"", behind, tail, "LAME3.97"},
        {"", "", tail, "LAME3.93"},
        {"", "", "", ""},
    };
    for (const Case& c : cases) {
        XingFrame first;
        first.frames = 20;
        first.encoder = c.marker;
        const ID3tag record =
            streamOf(first.frame() + cdFrames(3) + c.behind + cdFrames(3) + c.tail);
        EXPECT_EQ(record.Encoder, c.expected) << c.marker;
    }
    EXPECT_EQ(streamOf(mpegFrames(3) + behind).Encoder, "LAME3.97");
}

}  // namespace
}  // namespace tavlo::test
