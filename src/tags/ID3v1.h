#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/File.h"
#include "tags/FieldEdits.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Finds the ID3v1 block at the file's end, or up to 32 bytes in front of it, and reads it into
/// the record (ID3v1 and ID3v1.1). Says where it lies; nothing where there is none.
std::optional<TagSpan> ReadID3v1Tag(File& file, ID3tag& record, const ReadContext& context);

/// The text in `width` bytes of the code page: without outer blanks, cut between two characters,
/// filled up with NUL. What the page cannot hold is "?".
std::string FixedWidthText(std::string_view text, std::size_t width, const CodePage& ansi);

/// The 128 bytes of a block (ID3v1.1): the record's short fields, but the bytes of `old`, the block
/// that is replaced, where a field was not edited. `old` is empty where there was none and may lack
/// its last bytes.
std::string encodeID3v1Block(const TagChange& change, std::string_view old, const CodePage& ansi);

}  // namespace tavlo
