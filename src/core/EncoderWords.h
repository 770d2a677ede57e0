#pragma once

#include <optional>
#include <string_view>

namespace tavlo {

enum class EncoderWord { Mp3, Ogg, Mpc, Wma, Mp4, Flac, WavPack, Monkey };

/// The encoder that a command-line word names, compared exactly.
std::optional<EncoderWord> findEncoder(std::string_view word);

/// The preset of this encoder that a word names, aliases brought to one spelling; nothing when
/// the encoder has no such preset.
std::optional<std::string_view> findPreset(EncoderWord encoder, std::string_view word);

/// What is used when no preset is named: "vbr2" for MP3, empty for the others.
std::string_view defaultPreset(EncoderWord encoder);

}  // namespace tavlo
