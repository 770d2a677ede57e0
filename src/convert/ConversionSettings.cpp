#include "convert/ConversionSettings.h"

#include <algorithm>
#include <array>

namespace tavlo {

namespace {
struct PresetMode {
    EncoderWord encoder;
    std::string_view preset;
    int mode;
};

// An empty preset is the encoder's own choice. The average bit rate is the highest of the ladder.
constexpr auto presetModes = std::to_array<PresetMode>({
    {EncoderWord::Mp3, "vbr1", LameMedium},
    {EncoderWord::Mp3, "vbr2", LameStandard},
    {EncoderWord::Mp3, "vbr3", LameExtreme},
    {EncoderWord::Mp3, "abr", 100},
    {EncoderWord::Mp3, "s1", LameUser1},
    {EncoderWord::Mp3, "s2", LameUser1 + 1},
    {EncoderWord::Mp3, "s3", LameUser1 + 2},
    {EncoderWord::Ogg, "", 8},
    {EncoderWord::Ogg, "s1", OggUser1},
    {EncoderWord::Ogg, "s2", OggUser1 + 1},
    {EncoderWord::Ogg, "s3", OggUser1 + 2},
    {EncoderWord::Mpc, "", 3},
    {EncoderWord::Mpc, "thumb", 1},
    {EncoderWord::Mpc, "radio", 2},
    {EncoderWord::Mpc, "standard", 3},
    {EncoderWord::Mpc, "xtreme", 4},
    {EncoderWord::Mpc, "insane", 5},
    {EncoderWord::Mpc, "braindead", 6},
    {EncoderWord::Mpc, "above_braindead", 7},
    {EncoderWord::Mpc, "s1", MusepackUser1},
    {EncoderWord::Mpc, "s2", MusepackUser1 + 1},
    {EncoderWord::Mpc, "s3", MusepackUser1 + 2},
    {EncoderWord::Wma, "", WmaVbr128},
    {EncoderWord::Wma, "q10", 11},
    {EncoderWord::Wma, "q25", 12},
    {EncoderWord::Wma, "q50", 13},
    {EncoderWord::Wma, "q75", 14},
    {EncoderWord::Wma, "q90", 15},
    {EncoderWord::Wma, "q98", 16},
    {EncoderWord::Wma, "q100", WmaLossless},
    {EncoderWord::Wma, "lossless", WmaLossless},
    {EncoderWord::Wma, "s1", WmaUser1},
    {EncoderWord::Wma, "s2", WmaUser1 + 1},
    {EncoderWord::Wma, "s3", WmaUser1 + 2},
    {EncoderWord::Mp4, "alac", Alac},
    {EncoderWord::Flac, "", -1},
    {EncoderWord::WavPack, "", 0},
    {EncoderWord::Monkey, "", 0},
    {EncoderWord::Monkey, "fast", 1},
    {EncoderWord::Monkey, "normal", 2},
    {EncoderWord::Monkey, "high", 3},
    {EncoderWord::Monkey, "extra", 4},
    {EncoderWord::Monkey, "best", 4},
});

constexpr std::array<std::pair<EncoderWord, FileTypes>, 8> formats{{
    {EncoderWord::Mp3, FileType::Mp3},
    {EncoderWord::Ogg, FileType::Ogg},
    {EncoderWord::Mpc, FileType::Mpc},
    {EncoderWord::Wma, FileType::Wma},
    {EncoderWord::Mp4, FileType::Mp4},
    {EncoderWord::Flac, FileType::Flac},
    {EncoderWord::WavPack, FileType::Wv},
    {EncoderWord::Monkey, FileType::Ape},
}};

// A number that is no format's stands for MP3.
EncoderWord encoderOf(int format) {
    const auto* row =
        std::ranges::find(formats, format, &std::pair<EncoderWord, FileTypes>::second);
    return row == formats.end() ? EncoderWord::Mp3 : row->first;
}

FileTypes formatOf(EncoderWord encoder) {
    return std::ranges::find(formats, encoder, &std::pair<EncoderWord, FileTypes>::first)->second;
}

ConversionTarget targetOf(const JobOptions& options, const Settings& settings) {
    if (options.mode == RunMode::Decode) return {FileType::Wave, 0};
    const EncoderWord encoder =
        options.outputFormat ? encoderOf(*options.outputFormat) : options.encoder;
    const std::string_view preset =
        findPreset(encoder, options.preset).value_or(defaultPreset(encoder));
    const auto* row = std::ranges::find_if(presetModes, [&](const PresetMode& mode) {
        return mode.encoder == encoder && mode.preset == preset;
    });
    const int mode = row == presetModes.end() ? settings.number(Setting::FAACModeDef) : row->mode;
    return {formatOf(encoder), mode};
}

// The names and codes of an encoder's presets stand one behind the other.
UserPresets userPresets(const Settings& settings, Setting firstName) {
    UserPresets presets;
    int at = static_cast<int>(firstName);
    for (UserPreset& preset : presets) {
        preset.name = settings.text(static_cast<Setting>(at++));
        preset.code = settings.text(static_cast<Setting>(at++));
    }
    return presets;
}

EncoderSettings encoderSettings(const Settings& settings, const JobOptions& options) {
    EncoderSettings encoders;
    encoders.reduceLevel = options.reduceLevel.value_or(settings.flag(Setting::ReduceLevel));
    encoders.musepackStream8 = settings.flag(Setting::EnableMPCSV8);
    encoders.lame393 = settings.flag(Setting::EnableLAME393);
    encoders.separateMp3Decoder = settings.flag(Setting::SeparateMP3Decoder);
    encoders.monkeyLevel = settings.number(Setting::MonkeyModeDef);
    encoders.flacLevel = settings.number(Setting::FLACModeDef);
    encoders.lame = userPresets(settings, Setting::LamePreset1Name);
    encoders.ogg = userPresets(settings, Setting::OggPreset1Name);
    encoders.musepack = userPresets(settings, Setting::MpcPreset1Name);
    encoders.faac = userPresets(settings, Setting::FAACPreset1Name);
    encoders.nero = userPresets(settings, Setting::NeroPreset1Name);
    return encoders;
}
}  // namespace

ConversionSettings conversionSettings(const Settings& settings, const JobOptions& options,
                                      std::string program) {
    ConversionSettings result;
    result.isBeginner = settings.flag(Setting::BeginnerMode);
    result.encoders = encoderSettings(settings, options);
    result.encoders.program = std::move(program);
    result.target = targetOf(options, settings);
    result.bitrateRise = settings.flag(Setting::BitrateRise) && !result.isBeginner;
    result.deletesWaves = settings.flag(Setting::DeleteAfterCompress);
    result.deletesCompressed = settings.flag(Setting::DeleteAfterReCompress);
    result.usesRecycleBin = settings.flag(Setting::DeleteToRecycleBin);
    result.keepsWavUnprocessed =
        settings.flag(Setting::TemporaryWavProcessing) || result.isBeginner;
    result.writesTags = !options.noTags;
    result.encodesWindowsMedia = settings.flag(Setting::WMAEncoding);
    result.tags = tagSettings(settings);
    result.artist = options.artist.value_or("");
    result.album = options.album.value_or("");
    result.year = options.year.value_or("");
    result.genre = options.genre.value_or("");
    return result;
}

}  // namespace tavlo
