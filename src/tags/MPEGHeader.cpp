#include "tags/MPEGHeader.h"

#include <array>
#include <optional>

namespace tavlo {

namespace {
enum VersionRow : std::uint8_t { Mpeg1, Mpeg2, Mpeg25 };

struct Version {
    int number;  // 0 = reserved
    VersionRow row;
};
// By the header's two version bits.
constexpr std::array<Version, 4> versions{{{25, Mpeg25}, {0, Mpeg1}, {2, Mpeg2}, {1, Mpeg1}}};

// By version row (MPEG-2 and 2.5 share the second), layer less 1, and index; kbit/s.
constexpr int bitrates[2][3][15] = {
    {
        {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    },
    {
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
    },
};
constexpr int lastBitrateIndex = 14;

// By version row and index; Hz. Index 3 is reserved.
constexpr int sampleRates[3][4] = {
    {44100, 48000, 32000, 0}, {22050, 24000, 16000, 0}, {11025, 12000, 8000, 0}};

// By version row (as above) and layer less 1.
constexpr int frameSamples[2][3] = {{384, 1152, 1152}, {384, 1152, 576}};

std::size_t bitrateRow(int version) {
    return version == 1 ? 0 : 1;
}
}  // namespace

bool MPEGHeader::ParseHeader(std::string_view bytes) {
    IsCorrect = false;
    if (bytes.size() != 4) return false;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    if (byte(0) != 0xFF || (byte(1) & 0xE0U) != 0xE0) return false;
    const auto [version, row] = versions[(byte(1) >> 3U) & 3U];
    const auto layerBits = static_cast<int>((byte(1) >> 1U) & 3U);
    if (version == 0 || layerBits == 0) return false;
    // 15 and 63 as divisors: the indices 1 to 14 stay themselves and the forbidden 15 becomes 16.
    BitrateIndex = (byte(2) & 0xF0) / 15;
    if (BitrateIndex > lastBitrateIndex) return false;
    Version = version;
    Layer = 4 - layerBits;
    Bitrate = bitrates[bitrateRow(version)][Layer - 1][BitrateIndex];
    SampleRateIndex = (byte(2) & 12) >> 2;
    SampleRate = sampleRates[row][SampleRateIndex];
    Padding = (byte(2) & 2U) != 0;
    ChannelMode = (byte(3) & 0xC0) / 63;
    IsCorrect = true;
    return true;
}

int MPEGHeader::samplesPerFrame() const {
    return frameSamples[bitrateRow(Version)][Layer - 1];
}

int MPEGHeader::lowestBitrate() const {
    return bitrates[bitrateRow(Version)][Layer - 1][1];
}

std::uint32_t MPEGHeader::frameSize() const {
    if (SampleRate == 0 || Bitrate == 0) return 0;
    const int slot = Layer == 1 ? 4 : 1;  // bytes that padding adds
    const int slots = samplesPerFrame() / 8 / slot * Bitrate * 1000 / SampleRate;
    return static_cast<std::uint32_t>((slots + (Padding ? 1 : 0)) * slot);
}

}  // namespace tavlo
