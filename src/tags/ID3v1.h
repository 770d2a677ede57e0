#pragma once

#include <cstdint>
#include <optional>

#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Finds the ID3v1 block at the file's end, or up to 32 bytes in front of it, and reads it into
/// the record (ID3v1 and ID3v1.1). Returns the block's offset in the file, nothing where there is
/// none. On a file open for writing, bytes behind the block are cut off.
std::optional<std::uint64_t> ReadID3v1Tag(File& file, ID3tag& record, const ReadContext& context);

}  // namespace tavlo
