#pragma once

#include <cstdint>
#include <string>

#include "tags/FieldEdits.h"
#include "tags/ID3v2.h"
#include "tags/Pieces.h"
#include "tags/TagWriting.h"

namespace tavlo {

/// The frames of a new tag.
struct NewFrames {
    Pieces pieces;
    bool isChanged = false;  ///< they are not those of the file, byte for byte
    bool isExact = false;    ///< zeroes behind them would be read as a part of what they end with
};

/// The frames of a tag (ID3v2.3.0 and 2.4.0): those of the file in their order, each as it is
/// unless its field was edited; the frame of a field that was emptied goes, and so do further ones
/// of an edited field. Behind them those of fields that the tag did not tell, in the order of
/// `fieldFrames`. `found` is empty for a file without a tag.
NewFrames encodeID3v2Frames(const TagChange& change, File& file, const FoundFrames& found,
                            const WriteContext& context);

/// The version that the settings ask for.
int writtenVersion(const TagSettings& settings);

/// Bytes behind the header for a tag that is made or grows: a tenth more than the frames need.
std::uint64_t roomyTagSize(std::uint64_t framesSize);

/// The largest size that a header can tell.
inline constexpr std::uint64_t largestTagSize = (std::uint64_t{1} << 28U) - 1;

/// The 10 bytes in front of `bodySize` bytes of frames and padding.
std::string encodeID3v2Header(std::uint64_t bodySize, const TagSettings& settings);

}  // namespace tavlo
