#pragma once

#include <cstdint>
#include <optional>

#include "platform/File.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// Finds the first MPEG audio frame and fills the record's stream fields from its header and from
/// the VBR header in it (Xing/"Info" with LAME's extension, or VBRI). `audioEnd` is where the tags
/// behind the audio begin. Where no frame is found the fields stay empty.
void readMpegStream(File& file, ID3tag& record, std::uint64_t audioEnd);

/// The playing time in whole seconds by walking over every frame, for which all of the file is
/// read; nothing where a frame does not tell its size.
std::optional<std::int32_t> countMpegSeconds(File& file);

}  // namespace tavlo
