#include "core/EncoderWords.h"

#include <array>

#include "platform/PlainText.h"

namespace tavlo {
namespace {

struct EncoderRow {
    std::string_view word;
    EncoderWord encoder;
};

struct PresetRow {
    EncoderWord encoder;
    std::string_view word;
    std::string_view preset;
};

using enum EncoderWord;

constexpr std::array encoderRows{
    EncoderRow{"mp3", Mp3},         EncoderRow{"ogg", Ogg},      EncoderRow{"mpc", Mpc},
    EncoderRow{"wma", Wma},         EncoderRow{"mp4", Mp4},      EncoderRow{"flac", Flac},
    EncoderRow{"wavpack", WavPack}, EncoderRow{"wv", WavPack},   EncoderRow{"ape", Monkey},
    EncoderRow{"mac", Monkey},      EncoderRow{"monkey", Monkey}};

constexpr PresetRow same(EncoderWord encoder, std::string_view word) {
    return {encoder, word, word};
}

constexpr std::array presetRows{same(Mp3, "vbr1"),
                                PresetRow{Mp3, "vbr-medium", "vbr1"},
                                same(Mp3, "vbr2"),
                                PresetRow{Mp3, "vbr-standard", "vbr2"},
                                PresetRow{Mp3, "vbr", "vbr2"},
                                same(Mp3, "vbr3"),
                                PresetRow{Mp3, "vbr-extreme", "vbr3"},
                                same(Mp3, "abr"),
                                same(Mp3, "s1"),
                                same(Mp3, "s2"),
                                same(Mp3, "s3"),
                                same(Ogg, "s1"),
                                same(Ogg, "s2"),
                                same(Ogg, "s3"),
                                same(Mpc, "s1"),
                                same(Mpc, "s2"),
                                same(Mpc, "s3"),
                                same(Mpc, "thumb"),
                                same(Mpc, "radio"),
                                same(Mpc, "standard"),
                                same(Mpc, "xtreme"),
                                same(Mpc, "insane"),
                                same(Mpc, "braindead"),
                                same(Mpc, "above_braindead"),
                                same(Wma, "s1"),
                                same(Wma, "s2"),
                                same(Wma, "s3"),
                                same(Wma, "q10"),
                                same(Wma, "q25"),
                                same(Wma, "q50"),
                                same(Wma, "q75"),
                                same(Wma, "q90"),
                                same(Wma, "q98"),
                                same(Wma, "q100"),
                                same(Wma, "lossless"),
                                same(Mp4, "alac"),
                                same(Monkey, "fast"),
                                same(Monkey, "normal"),
                                same(Monkey, "high"),
                                same(Monkey, "extra"),
                                same(Monkey, "best")};

/// The one preset whose case does not matter.
bool isAnyCaseAlac(const PresetRow& row, std::string_view word) {
    return row.encoder == Mp4 && sameAscii(row.word, word);
}

}  // namespace

std::optional<EncoderWord> findEncoder(std::string_view word) {
    for (const EncoderRow& row : encoderRows)
        if (row.word == word) return row.encoder;
    return std::nullopt;
}

std::optional<std::string_view> findPreset(EncoderWord encoder, std::string_view word) {
    for (const PresetRow& row : presetRows)
        if (row.encoder == encoder && (row.word == word || isAnyCaseAlac(row, word)))
            return row.preset;
    return std::nullopt;
}

std::string_view defaultPreset(EncoderWord encoder) {
    return encoder == Mp3 ? "vbr2" : "";
}

}  // namespace tavlo
