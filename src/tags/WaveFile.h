#pragma once

#include "platform/File.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// Reads length, rate, channels and sample width of a RIFF WAVE file into the record; false where
/// it is none.
bool readWave(File& file, ID3tag& record);

/// What a RIFF WAVE file is made of.
struct WaveContents {
    bool isWhole = false;      ///< it holds exactly as much sound as it says
    bool hasOnlySound = true;  ///< no tags, and nothing else that is not understood
};
WaveContents waveContents(const std::string& path);

}  // namespace tavlo
