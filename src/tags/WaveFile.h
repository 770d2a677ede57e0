#pragma once

#include "platform/File.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// Reads length, rate, channels and sample width of a RIFF WAVE file into the record; false where
/// it is none.
bool readWave(File& file, ID3tag& record);

}  // namespace tavlo
