#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/File.h"

namespace tavlo {

/// The bytes between the tags of a file.
struct SoundSpan {
    std::uint64_t begin = 0, end = 0;

    /// Whether `size` bytes from `at` on lie inside.
    [[nodiscard]] bool holds(std::uint64_t at, std::uint64_t size) const {
        return at >= begin && at <= end && size <= end - at;
    }
};

/// What the headers of a stream tell.
struct StreamFacts {
    std::uint64_t length = 0;  ///< playing time in 1/`timeScale` seconds; 0 = not told
    std::uint32_t timeScale = 0;
    std::uint32_t sampleRate = 0;
    std::uint32_t channels = 0;
    std::uint32_t bitsPerSample = 0;  ///< 0 where the format has none
    std::uint64_t audioBytes = 0;
    std::uint32_t usualBitrate = 0;  ///< bit/s, for where the playing time is not told; 0 = none
    bool isLossless = false, isFloat = false;
    bool isCut = false;  ///< less sound than was promised; `length` is what is there
    std::string encoder;
};

/// One reader per format; nothing where the file is none of it or lacks sound that is promised.
std::optional<StreamFacts> readAdts(File& file, SoundSpan span);
std::optional<StreamFacts> readAsf(File& file, SoundSpan span);
std::optional<StreamFacts> readFlac(File& file, SoundSpan span);
std::optional<StreamFacts> readMonkey(File& file, SoundSpan span);
std::optional<StreamFacts> readMp4(File& file, SoundSpan span);
std::optional<StreamFacts> readMusepack(File& file, SoundSpan span);
std::optional<StreamFacts> readOggVorbis(File& file, SoundSpan span);
std::optional<StreamFacts> readWavPack(File& file, SoundSpan span);

/// Sampling rates by their index in AAC's headers (ISO/IEC 14496-3, table 1.18).
inline constexpr std::array<std::uint32_t, 13> aacRates{
    96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};

/// Looks for the last place where `mark` stands and `accept` agrees. Only the span's last
/// `searchedEnd` bytes are looked at; `accept` gets the place and the bytes from there on, at least
/// `headSize` of them unless the span ends.
std::optional<std::uint64_t> findLast(File& file, SoundSpan span, std::string_view mark,
                                      std::size_t headSize,
                                      const std::function<bool(std::uint64_t, Bytes)>& accept);

}  // namespace tavlo
