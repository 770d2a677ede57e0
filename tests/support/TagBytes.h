#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/File.h"

namespace tavlo::test {

using namespace std::string_literals;

Bytes bytesOf(std::string_view text);

/// A number in `width` bytes, most or least significant first, or in 4 bytes of 7 bits.
std::string bigEndian(std::uint64_t value, std::size_t width);
std::string littleEndian(std::uint64_t value, std::size_t width);
std::string syncsafe(std::uint32_t value);

/// UTF-16 code units without a mark.
std::string utf16le(std::u16string_view text);
std::string utf16be(std::u16string_view text);

struct Id3v1 {
    std::string title, artist, album, year, comment;
    std::uint8_t zero = 0, track = 0;  ///< the comment's last two bytes
    std::uint8_t genre = 255;

    /// 128 bytes; short fields are filled with `filler`.
    std::string block(char filler = '\0') const;
};

/// A frame of ID3v2.2, 2.3 or 2.4; 2.4 sizes are syncsafe.
std::string frame(int version, std::string_view id, std::string_view body, std::uint16_t flags = 0);
/// A frame whose body is the encoding byte and the text.
std::string textFrame(int version, std::string_view id, std::string_view text, int encoding = 0);
/// The header and the body, `flags` written as they are.
std::string tag(int version, std::string_view body, std::uint8_t flags = 0);
/// The tag's last 10 bytes where its flags say so.
std::string tagFooter(std::string_view body, std::uint8_t flags);
/// A zero behind each 0xFF.
std::string unsynchronised(std::string_view bytes);
std::string zlibPacked(std::string_view bytes);

struct ApeTag {
    std::vector<std::string> items;
    std::uint32_t version = 2000;
    bool header = true;
    int sizeLie = 0, countLie = 0;  ///< added to the footer's fields
    std::string headerMark = "APETAGEX";

    std::string bytes() const;
};
std::string apeItem(std::string_view key, std::string_view value, std::uint32_t flags = 0);

/// A Lyrics3 v2.00 block; `fields` stand between the begin marker and the size.
std::string lyrics3(std::string_view fields);
std::string lyricsField(std::string_view id, std::string_view text);

/// MPEG-1 layer III, 128 kbit/s, 48000 Hz, joint stereo: each frame has 384 bytes.
inline const std::string usualHeader = "\xFF\xFB\x94\x64";
constexpr std::size_t usualFrameSize = 384;
/// The same at 44100 Hz, where a frame has 417 or, padded, 418 bytes.
inline const std::string cdHeader = "\xFF\xFB\x90\x64";
constexpr std::size_t cdFrameSize = 417;

/// A header and zeroes up to `size` bytes, `count` times.
std::string mpegFrames(std::size_t count, std::string_view header = usualHeader,
                       std::size_t size = usualFrameSize);

std::string cdFrames(std::size_t count);

struct XingFrame {
    std::string marker = "Xing";
    std::uint32_t flags = 0x0F;  ///< 1 frames, 2 bytes, 4 seek table, 8 quality
    std::uint32_t frames = 0, bytes = 0;
    std::string encoder = {};

    /// A frame at 44100 Hz with the marker behind 32 bytes of side information.
    std::string frame() const;
};

}  // namespace tavlo::test
