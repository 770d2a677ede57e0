#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tags/ID3tag.h"
#include "tags/TagWriting.h"

namespace tavlo {

/// The frames of a tag for the record's fields, with its picture and everything that was kept from
/// the tag that it was read from (ID3v2.3.0 and 2.4.0).
std::string encodeID3v2Frames(const ID3tag& record, const WriteContext& context);

/// Bytes that the tag needs for the record as it is now, without the 10-byte header.
std::uint32_t GetTagSize(const ID3tag& record, const WriteContext& context);

/// Bytes behind the header for a tag that is made or grows: a tenth more than the frames need.
std::uint64_t roomyTagSize(std::size_t framesSize);

/// The largest size that a header can tell.
inline constexpr std::uint64_t largestTagSize = (std::uint64_t{1} << 28U) - 1;

/// Header, frames and zeroes up to `bodySize` bytes behind the header.
std::string encodeID3v2Tag(std::string_view frames, std::uint64_t bodySize,
                           const TagSettings& settings);

}  // namespace tavlo
