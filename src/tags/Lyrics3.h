#pragma once

#include <cstdint>
#include <optional>

#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Reads title and artist of a Lyrics3 v2.00 block at the file's end, an ID3v1 block behind it or
/// not, and says where it lies; nothing where there is no such block.
std::optional<TagSpan> ReadLyrics3Block(File& file, ID3tag& record, const ReadContext& context);

/// Where the block begins that was read into the record.
std::optional<std::uint64_t> lyricsBegin(const File& file, const ID3tag& record);

}  // namespace tavlo
