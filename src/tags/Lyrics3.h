#pragma once

#include <cstdint>
#include <optional>

#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Reads title and artist of a Lyrics3 v2.00 block at the file's end, an ID3v1 block behind it or
/// not. Returns the offset of its begin marker, nothing where there is no such block.
std::optional<std::uint64_t> ReadLyrics3Block(File& file, ID3tag& record,
                                              const ReadContext& context);

}  // namespace tavlo
