#pragma once

#include <cstdint>
#include <string_view>

namespace tavlo {

/// The 4-byte header of an MPEG audio frame (ISO/IEC 11172-3 and 13818-3, MPEG-2.5 included).
class MPEGHeader {
 public:
    int Version = 0;  ///< 1, 2, or 25 for MPEG-2.5
    int Layer = 0;    ///< 1 to 3
    int BitrateIndex = 0;
    int Bitrate = 0;  ///< kbit/s; 0 = free format
    int SampleRateIndex = 0;
    int SampleRate = 0;  ///< Hz; 0 for the reserved index 3
    bool Padding = false;
    int ChannelMode = 0;  ///< 0 stereo, 1 joint stereo, 2 dual channel, 3 single channel
    bool IsCorrect = false;

    /// Takes exactly 4 bytes; returns `IsCorrect`. The other values hold only when it is true.
    bool ParseHeader(std::string_view bytes);

    /// Samples that a frame of this kind plays for each channel.
    [[nodiscard]] int samplesPerFrame() const;
    /// The lowest bit rate of such frames, kbit/s.
    [[nodiscard]] int lowestBitrate() const;
    /// Length of this frame with its header in bytes; 0 where the bit rate does not tell it.
    [[nodiscard]] std::uint32_t frameSize() const;
};

}  // namespace tavlo
