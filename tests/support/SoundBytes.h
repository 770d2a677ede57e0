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

/// An MP3 stream that says how long it is, and that it has another bit rate on an average.
inline std::string vbrBytes(std::uint32_t seconds, std::uint32_t kilobits) {
    const std::uint32_t frames = seconds * 44100 / 1152 + 1;
    const std::uint32_t bytes = kilobits * 125 * frames / 100 * 1152 / 441;
    return XingFrame{"Xing", 3, frames, bytes}.frame() + cdFrames(frames);
}

/// A WavPack file of one block, mono, 8000 Hz.
inline std::string wavPackBytes(std::uint32_t seconds) {
    constexpr std::uint32_t bits16 = 1, mono = 4, only = 0x1800, rate = 1U << 23U;
    const std::uint32_t samples = seconds * 8000;
    return "wvpk" + littleEndian(24 + samples, 4) + littleEndian(0x410, 4) +
           littleEndian(samples, 4) + littleEndian(0, 4) + littleEndian(samples, 4) +
           littleEndian(bits16 | mono | only | rate, 4) + littleEndian(0, 4) +
           std::string(samples, '\0');
}

/// An MPEG-4 file with one AAC track.
inline std::string mp4Bytes(std::uint32_t seconds) {
    const auto atom = [](std::string_view type, const std::string& body) {
        return bigEndian(8 + body.size(), 4) + std::string(type) + body;
    };
    const std::string nothing(12, '\0');
    const std::string times = nothing + bigEndian(1000, 4) + bigEndian(seconds * 1000, 4);
    const std::string sound = nothing + bigEndian(0, 4) + bigEndian(0x20010, 4) + bigEndian(0, 4) +
                              bigEndian(8000U << 16U, 4);
    const std::string tables = atom("stbl", atom("stsd", bigEndian(1, 8) + atom("mp4a", sound)));
    const std::string media =
        atom("mdhd", times) + atom("hdlr", std::string(8, '\0') + "soun") + atom("minf", tables);
    return atom("ftyp", "M4A ") + atom("mdat", std::string(5000, '\0')) +
           atom("moov", atom("mvhd", times) + atom("trak", atom("mdia", media)));
}

}  // namespace tavlo::test
