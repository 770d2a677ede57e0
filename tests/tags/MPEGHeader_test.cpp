#include "tags/MPEGHeader.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace tavlo {

using namespace std::string_literals;
namespace {

struct Valid {
    std::array<unsigned char, 4> bytes;
    int version, layer, bitrate, sampleRate, mode, samples;
    std::uint32_t size;
};

std::string textOf(const std::array<unsigned char, 4>& bytes) {
    return {bytes.begin(), bytes.end()};
}

// The sizes come from the standard's formulas, worked out by hand.
constexpr Valid validHeaders[] = {
    {{0xFF, 0xFB, 0x90, 0x64}, 1, 3, 128, 44100, 1, 1152, 417},
    {{0xFF, 0xFB, 0x92, 0x64}, 1, 3, 128, 44100, 1, 1152, 418},
    {{0xFF, 0xFB, 0xE4, 0x00}, 1, 3, 320, 48000, 0, 1152, 960},
    {{0xFF, 0xFA, 0x18, 0xC0}, 1, 3, 32, 32000, 3, 1152, 144},
    {{0xFF, 0xFD, 0xA4, 0x80}, 1, 2, 192, 48000, 2, 1152, 576},
    {{0xFF, 0xFF, 0xC4, 0x40}, 1, 1, 384, 48000, 1, 384, 384},
    {{0xFF, 0xFF, 0xC0, 0x40}, 1, 1, 384, 44100, 1, 384, 416},
    {{0xFF, 0xFF, 0xC2, 0x40}, 1, 1, 384, 44100, 1, 384, 420},
    {{0xFF, 0xF3, 0x84, 0xC0}, 2, 3, 64, 24000, 3, 576, 192},
    {{0xFF, 0xF5, 0x84, 0x00}, 2, 2, 64, 24000, 0, 1152, 384},
    {{0xFF, 0xF7, 0x44, 0x00}, 2, 1, 64, 24000, 0, 384, 128},
    {{0xFF, 0xE3, 0x88, 0x00}, 25, 3, 64, 8000, 0, 576, 576},
    {{0xFF, 0xE2, 0x40, 0x00}, 25, 3, 32, 11025, 0, 576, 208},
};

TEST(MPEGHeader, ValidHeadersAreDecoded) {
    for (const Valid& v : validHeaders) {
        MPEGHeader header;
        const std::string bytes = textOf(v.bytes);
        ASSERT_TRUE(header.ParseHeader(bytes));
        SCOPED_TRACE(testing::PrintToString(v.bytes));
        EXPECT_TRUE(header.IsCorrect);
        EXPECT_EQ(header.Version, v.version);
        EXPECT_EQ(header.Layer, v.layer);
        EXPECT_EQ(header.Bitrate, v.bitrate);
        EXPECT_EQ(header.SampleRate, v.sampleRate);
        EXPECT_EQ(header.ChannelMode, v.mode);
        EXPECT_EQ(header.samplesPerFrame(), v.samples);
        EXPECT_EQ(header.frameSize(), v.size);
    }
}

TEST(MPEGHeader, BrokenHeadersAreRejected) {
    const std::string cases[] = {
        "",
        "\xFF\xFB\x90",
        "\xFF\xFB\x90\x64\x64",
        "\xFE\xFB\x90\x64",  // no sync
        "\xFF\xDB\x90\x64",  // its last bit is missing
        "\xFF\xEA\x90\x64",  // reserved version
        "\xFF\xF9\x90\x64",  // reserved layer
        "\xFF\xFB\xF0\x64",  // bad bit rate
        "\xFF\xE3\xF0\x64",
    };
    for (const std::string& bytes : cases) {
        MPEGHeader header;
        header.ParseHeader("\xFF\xFB\x90\x64");
        EXPECT_FALSE(header.ParseHeader(bytes)) << testing::PrintToString(bytes);
        EXPECT_FALSE(header.IsCorrect) << testing::PrintToString(bytes);
    }
}

TEST(MPEGHeader, FreeFormatAndReservedRateAreValidButTellNoFrameSize) {
    for (const std::string& bytes : {"\xFF\xFB\0\x64"s, "\xFF\xFB\x9C\x64"s}) {
        MPEGHeader header;
        EXPECT_TRUE(header.ParseHeader(bytes));
        EXPECT_EQ(header.frameSize(), 0U);
    }
}

}  // namespace
}  // namespace tavlo
