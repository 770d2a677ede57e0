#pragma once

#include <string>

#include "support/TagBytes.h"

namespace tavlo::test {

/// A WAV file of silence, 8 bits, mono, 1000 Hz.
inline std::string waveBytes(std::uint32_t seconds) {
    const std::uint32_t size = seconds * 1000;
    return "RIFF" + littleEndian(size + 36, 4) + "WAVEfmt " + littleEndian(16, 4) +
           littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(1000, 4) + littleEndian(1000, 4) +
           littleEndian(1, 2) + littleEndian(8, 2) + "data" + littleEndian(size, 4) +
           std::string(size, '\x80');
}

/// An MP3 stream of 128 kbit/s.
inline std::string mp3Bytes(std::uint32_t seconds) {
    return cdFrames(seconds * 44100 / 1152 + 1);
}

}  // namespace tavlo::test
