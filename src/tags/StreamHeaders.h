#pragma once

#include <cstdint>

#include "platform/File.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// Reads playing time, rates and the like of a file whose type is `record.FileType`, for every kind
/// but MP3 and WAVE. `audioEnd` is where the tags behind the sound begin. False, with the record as
/// it was, where the file is not of that type or lacks sound that its headers promise. A playing
/// time that they do not tell is 0.
bool readStream(File& file, ID3tag& record, std::uint64_t audioEnd);

}  // namespace tavlo
