#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/File.h"

namespace tavlo {

/// The 10 bytes that a tag begins with (ID3v2.3.0 and 2.4.0, section 3.1).
struct TagHeader {
    static constexpr std::size_t size = 10;
    std::uint8_t majorVersion = 0, minorVersion = 0, flags = 0;
    std::uint32_t bodySize = 0;  ///< bytes behind the header, a footer not counted
};
std::optional<TagHeader> parseTagHeader(Bytes bytes);

/// A frame's header: 6 bytes in version 2, 10 in 3 and 4.
struct FrameHeader {
    std::string id;              ///< 3 or 4 characters
    std::uint32_t bodySize = 0;  ///< bytes behind the header
    std::uint16_t flags = 0;
};
std::size_t frameHeaderSize(int majorVersion);
/// Nothing where the bytes are padding or too few. Sizes of version 4 are read as syncsafe.
std::optional<FrameHeader> parseFrameHeader(Bytes bytes, int majorVersion);
/// Puts a frame's header behind `out`; version 2 has no room for flags.
void appendFrameHeader(std::string& out, const FrameHeader& header, int majorVersion);
/// Whether the identifier is made of A..Z and 0..9, as the format asks for.
bool hasRegularId(const FrameHeader& header);

/// Where versions 3 and 4 keep the same flags of a frame.
struct FrameFlags {
    std::uint16_t grouped, compressed, encrypted, unsynchronised, hasLength;
    std::uint16_t status;  ///< the three that say what may be done with the frame
};
const FrameFlags& frameFlags(int majorVersion);

/// Whether the frame's bytes are the text itself: no compression, unsynchronisation or prefix.
bool isPlainFrame(const FrameHeader& header, int majorVersion);

/// The frame's content with compression and unsynchronisation undone and prefixes taken off;
/// nothing when it is encrypted or broken.
std::optional<std::vector<std::uint8_t>> decodeFrameBody(const FrameHeader& header,
                                                         int majorVersion, Bytes body);

/// Takes the zero out that stands behind every 0xFF (ID3v2.3.0, section 5).
std::vector<std::uint8_t> undoUnsynchronisation(Bytes bytes);

}  // namespace tavlo
