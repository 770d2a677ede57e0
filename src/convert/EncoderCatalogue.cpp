#include "convert/EncoderCatalogue.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "core/PathText.h"
#include "platform/PlainText.h"
#include "platform/Process.h"

namespace tavlo {

namespace {
// A row counts up to its mode, from behind the one before.
struct LadderRow {
    int last;
    std::string_view text;
    bool endsInMode = false;
};

template <std::size_t size>
const LadderRow* rungOf(const std::array<LadderRow, size>& ladder, int mode) {
    const auto row = std::find_if(ladder.begin(), ladder.end(),
                                  [mode](const LadderRow& rung) { return mode <= rung.last; });
    return row == ladder.end() ? nullptr : &*row;
}

constexpr int lastLamePreset = 320;

constexpr auto lameLadder = std::to_array<LadderRow>({
    {48, "lame.exe -m m -h --lowpass 11 --resample 22 --abr ", true},
    {79, "lame.exe -m m -h --lowpass 15.5 --resample 32 --abr ", true},
    {100, "lame.exe -m j -h --lowpass 15.5 --resample 44 --abr ", true},
    {120, "lame.exe -V 6 -m j -h --lowpass 16.0 "},
    {145, "lame.exe -V 5 -m j -h --lowpass 16.5 "},
    {175, "lame.exe -V 4 -m j -h --lowpass 18.0 "},
    {210, "lame.exe -V 2 -m j -h --lowpass 19.0 "},
    {230, "lame.exe -V 1 -m j -h --lowpass 19.5 "},
    {300, "lame.exe -V 0 -m s -h --lowpass 20.0 "},
    {lastLamePreset, "lame.exe --preset insane -m s -h --lowpass 20.0 "},
});
constexpr int firstInsane = 301;

struct NamedPreset {
    int mode;
    std::string_view text, label;
    int bitrate;
};

constexpr auto lamePresets = std::to_array<NamedPreset>({
    {LameMedium, "lame.exe --preset medium ", "VBR medium preset", 165},
    {LameStandard, "lame.exe --preset standard ", "VBR standard preset", 190},
    {LameExtreme, "lame.exe --preset extreme ", "VBR extreme preset", 245},
});

constexpr auto musepackPresets = std::to_array<NamedPreset>({
    {1, " --thumb ", "thumb", 90},
    {2, " --radio ", "radio", 130},
    {3, " --standard ", "standard", 180},
    {4, " --xtreme ", "xtreme", 210},
    {5, " --insane ", "insane", 240},
    {6, " --braindead ", "braindead", 270},
    {7, " --quality 10 --xlevel ", "above braindead", 350},
});
constexpr std::size_t standardMusepack = 2;  // index

// The bit rates are the upper figures of the labels.
constexpr auto neroPresets = std::to_array<NamedPreset>({
    {1001, "neroaacenc.exe -q 0.15 ", "VBR 15% (30-40 kbps)", 40},
    {1002, "neroaacenc.exe -q 0.25 ", "VBR 25% (50-70 kbps)", 70},
    {1003, "neroaacenc.exe -q 0.30 ", "VBR 30% (70-90 kbps)", 90},
    {1004, "neroaacenc.exe -q 0.40 ", "VBR 40% (120-140 kbps)", 140},
    {1005, "neroaacenc.exe -q 0.45 ", "VBR 45% (140-170 kbps)", 170},
    {1006, "neroaacenc.exe -q 0.50 ", "VBR 50% (160-190 kbps)", 190},
    {1007, "neroaacenc.exe -q 0.55 ", "VBR 55% (190-220 kbps)", 220},
    {1008, "neroaacenc.exe -q 0.60 ", "VBR 60% (210-240 kbps) ", 240},
    {1009, "neroaacenc.exe -q 0.70 ", "VBR 70% (250-280 kbps)", 280},
    {1010, "neroaacenc.exe -q 0.80 ", "VBR 80% (300-330 kbps)", 330},
});

constexpr int losslessBitrate = std::numeric_limits<int>::max();

// Qualities aim at no bit rate.
constexpr auto windowsMediaProfiles = std::to_array<NamedPreset>({
    {1, "TAVLO_CBR_024", "", 24},
    {2, "TAVLO_CBR_032", "", 32},
    {3, "TAVLO_VBR_048", "", 48},
    {4, "TAVLO_VBR_064", "", 64},
    {5, "TAVLO_VBR_096", "", 96},
    {WmaVbr128, "TAVLO_VBR_128", "", 128},
    {7, "TAVLO_VBR_160", "", 160},
    {8, "TAVLO_VBR_192", "", 192},
    {9, "TAVLO_CBR_256", "", 256},
    {10, "TAVLO_CBR_320", "", 320},
    {11, "TAVLO_VBR_Q10", "", 0},
    {12, "TAVLO_VBR_Q25", "", 0},
    {13, "TAVLO_VBR_Q50", "", 0},
    {14, "TAVLO_VBR_Q75", "", 0},
    {15, "TAVLO_VBR_Q90", "", 0},
    {16, "TAVLO_VBR_Q98", "", 0},
    {WmaLossless, "TAVLO_LOSSLESS", "", losslessBitrate},
    {WmaUser1, "TAVLO_USERPRESET1", "", 0},
    {WmaUser1 + 1, "TAVLO_USERPRESET2", "", 0},
    {WmaUser1 + 2, "TAVLO_USERPRESET3", "", 0},
});

template <std::size_t size>
const NamedPreset* findPreset(const std::array<NamedPreset, size>& presets, int mode) {
    const auto row = std::ranges::find(presets, mode, &NamedPreset::mode);
    return row == presets.end() ? nullptr : &*row;
}

// FAAC's qualities of the modes from 1 on, and its bandwidths from a quality on.
constexpr std::array<int, 10> faacQualities{30, 50, 75, 99, 120, 150, 175, 200, 250, 300};
constexpr int faacUsual = 120, lastFaacQuality = 500, lastFaacMode = 900;
constexpr auto faacBandwidths = std::to_array<LadderRow>({
    {98, ""},
    {114, " -c 16500"},
    {149, " -c 17500"},
    {199, " -c 18500"},
    {249, " -c 19000"},
    {399, " -c 20000"},
});

constexpr std::array<int, 11> oggBitrates{64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 500};
constexpr int oggUsual = 8;

std::string quoted(std::string_view text) {
    return quotedArgument(text);
}

std::string number(int value) {
    return std::to_string(value);
}

// The user's preset of a mode, and its number from 1 on.
struct ChosenPreset {
    const UserPreset* preset = nullptr;
    int number = 0;
};
ChosenPreset chosen(const UserPresets& presets, int mode, int first) {
    const int index = mode - first;
    if (index < 0 || index >= static_cast<int>(presets.size())) return {};
    return {&presets[static_cast<std::size_t>(index)], index + 1};
}

std::string presetLabel(const ChosenPreset& preset) {
    return "user preset #" + number(preset.number) + " " + preset.preset->name;
}
std::string quotedPresetLabel(const ChosenPreset& preset) {
    return "user preset #" + number(preset.number) + " " + quoted(preset.preset->name);
}

std::string scaleOption(const EncoderSettings& settings) {
    return settings.reduceLevel ? " --scale 0.95 " : "";
}

std::string throughPaths(const EncodePaths& paths) {
    return " " + quoted(paths.wav) + " " + quoted(paths.result);
}

// --- MP3 -----------------------------------------------------------------------------------------

std::string lameLabel(int mode, const ChosenPreset& user) {
    if (user.preset != nullptr) return presetLabel(user);
    if (const NamedPreset* preset = findPreset(lamePresets, mode))
        return std::string(preset->label);
    if (mode == lastLamePreset) return "CBR 320kbps";
    constexpr int lastLabelled = 310;
    return mode <= lastLabelled ? "VBR/ABR " + number(mode) + "kbps" : std::string();
}

std::optional<EncodeCommand> lameCommand(int mode, const EncodePaths& paths,
                                         const EncoderSettings& settings) {
    EncodeCommand command;
    command.executable = "lame.exe";
    const ChosenPreset user = chosen(settings.lame, mode, LameUser1);
    std::string text;
    if (user.preset != nullptr) {
        text = "lame.exe " + user.preset->code;
    } else if (const NamedPreset* preset = findPreset(lamePresets, mode)) {
        text = preset->text;
    } else if (const LadderRow* rung = mode < 0 ? nullptr : rungOf(lameLadder, mode)) {
        text = std::string(rung->text) + (rung->endsInMode ? number(mode) : "");
    } else {
        return std::nullopt;
    }
    const bool is393 = settings.lame393 && mode >= firstInsane && mode <= lastLamePreset;
    if (is393) {
        command.executable = "lame393.exe";
        text.replace(0, std::string_view("lame.exe").size(), command.executable);
    }
    command.line = text + " " + scaleOption(settings) + throughPaths(paths);
    command.description = text;
    command.description.resize(text.find_last_not_of(' ') + 1);
    std::string suffix;
    if (!settings.lameVersion.empty()) {
        command.description += " (v" + settings.lameVersion + ")";
        suffix = " (LAME v" + settings.lameVersion + ")";
    }
    if (is393) suffix = " (LAME v3.93)";
    command.label = lameLabel(mode, user);
    if (!command.label.empty()) command.label += suffix;
    return command;
}

// --- Ogg Vorbis, Musepack ------------------------------------------------------------------------

EncodeCommand oggCommand(int mode, const EncodePaths& paths, const EncoderSettings& settings) {
    EncodeCommand command;
    command.executable = "oggenc.exe";
    const ChosenPreset user = chosen(settings.ogg, mode, OggUser1);
    if (user.preset != nullptr) {
        command.description = "oggenc.exe " + user.preset->code;
        command.label = presetLabel(user);
    } else {
        const bool isQuality = mode >= 0 && mode < static_cast<int>(oggBitrates.size());
        const std::string quality = number(isQuality ? mode : oggUsual);
        command.description = "oggenc.exe -q" + quality;
        command.label = "Q mode " + quality;
    }
    std::string name = paths.result;
    replaceAll(name, "%", "%%");  // oggenc puts tags in where a name has "%"
    command.line = command.description + " -n" + quoted(name) + " " + quoted(paths.wav);
    return command;
}

EncodeCommand musepackCommand(int mode, const EncodePaths& paths, const EncoderSettings& settings) {
    EncodeCommand command;
    command.executable = settings.musepackStream8 ? "mpcenc.exe" : "mppenc.exe";
    const ChosenPreset user = chosen(settings.musepack, mode, MusepackUser1);
    const NamedPreset* preset = findPreset(musepackPresets, mode);
    if (preset == nullptr) preset = &musepackPresets[standardMusepack];
    // The prefix stands twice with a preset of the user's.
    const std::string options = user.preset != nullptr
                                    ? "mppenc.exe --verbose --overwrite " + user.preset->code
                                    : std::string(preset->text);
    command.label =
        "MPC preset " + (user.preset != nullptr ? presetLabel(user) : std::string(preset->label));
    command.description = command.executable + " --verbose --overwrite " + options;
    command.line = command.description + " " + scaleOption(settings) + throughPaths(paths);
    return command;
}

// --- MPEG-4 --------------------------------------------------------------------------------------

EncodeCommand alacCommand(const EncodePaths& paths) {
    return {
        "ffmpeg.exe",
        "ffmpeg.exe -i " + quoted(paths.wav) + "  -f ipod -acodec alac -y  " + quoted(paths.result),
        "ALAC", "ALAC", false};
}

EncodeCommand neroCommand(const std::string& text, const std::string& label,
                          const EncodePaths& paths) {
    return {"neroaacenc.exe", text + "-if " + quoted(paths.wav) + " -of " + quoted(paths.result),
            label, label, true};
}

int faacQuality(int mode) {
    if (mode >= 1 && mode <= static_cast<int>(faacQualities.size())) {
        return faacQualities[static_cast<std::size_t>(mode - 1)];
    }
    return mode <= lastFaacQuality ? mode : faacUsual;
}

EncodeCommand faacCommand(const std::string& options, const std::string& label,
                          const EncodePaths& paths) {
    return {"faac.exe",
            "faac.exe -w " + options + " -o " + quoted(paths.result) + " " + quoted(paths.wav),
            label, label, true};
}

std::optional<EncodeCommand> mpeg4Command(int mode, const EncodePaths& paths,
                                          const EncoderSettings& settings) {
    if (mode == Alac) return alacCommand(paths);
    if (const NamedPreset* preset = findPreset(neroPresets, mode)) {
        return neroCommand(std::string(preset->text), "NERO: " + std::string(preset->label), paths);
    }
    if (const ChosenPreset user = chosen(settings.nero, mode, NeroUser1); user.preset != nullptr) {
        return neroCommand("neroaacenc.exe " + user.preset->code + " ",
                           "NERO: " + quotedPresetLabel(user), paths);
    }
    if (const ChosenPreset user = chosen(settings.faac, mode, FaacUser1); user.preset != nullptr) {
        return faacCommand(user.preset->code, "FAAC: " + quotedPresetLabel(user), paths);
    }
    if (mode < 1 || mode > lastFaacMode) return std::nullopt;
    const int quality = faacQuality(mode);
    const LadderRow* bandwidth = rungOf(faacBandwidths, quality);
    return faacCommand(
        " -q " + number(quality) + std::string(bandwidth == nullptr ? "" : bandwidth->text),
        "FAAC: -q " + number(quality), paths);
}

// --- Lossless formats ----------------------------------------------------------------------------

EncodeCommand flacCommand(int mode, const EncodePaths& paths, const EncoderSettings& settings) {
    constexpr int strongest = 8;
    const int level = mode >= 0 && mode <= strongest ? mode : settings.flacLevel;
    return {"flac.exe",
            "flac.exe -f -" + number(level) + " -o" + quoted(paths.result) +
                " --tag=TITLE=" + quoted(paths.title) +
                "  --tag=\"ENCODED BY\"=" + quoted(settings.program) + " " + quoted(paths.wav),
            "Lossless FLAC", "", false};
}

EncodeCommand monkeyCommand(int mode, const EncodePaths& paths, const EncoderSettings& settings) {
    constexpr int strongest = 4;
    const int level = mode >= 1 && mode <= strongest ? mode : settings.monkeyLevel;
    return {"mac.exe", "mac.exe" + throughPaths(paths) + " -c" + number(level) + "000",
            "Lossless Monkey's Audio", "", false};
}
}  // namespace

std::optional<EncodeCommand> encodeCommand(FileTypes format, int mode, const EncodePaths& paths,
                                           const EncoderSettings& settings) {
    switch (format) {
        case FileType::Ogg:
            return oggCommand(mode, paths, settings);
        case FileType::Mpc:
            return musepackCommand(mode, paths, settings);
        case FileType::Wma:
            return std::nullopt;
        case FileType::Mp4:
            return mpeg4Command(mode, paths, settings);
        case FileType::Flac:
            return flacCommand(mode, paths, settings);
        case FileType::Wv:
            return EncodeCommand{"wavpack.exe", "wavpack.exe -h -m -y" + throughPaths(paths),
                                 "Lossless WavPack", "", false};
        case FileType::Ape:
            return monkeyCommand(mode, paths, settings);
        default:
            return lameCommand(mode, paths, settings);
    }
}

std::string_view windowsMediaProfile(int mode) {
    const NamedPreset* profile = findPreset(windowsMediaProfiles, mode);
    return profile == nullptr ? std::string_view() : profile->text;
}

std::array<std::string, 2> rewrapCommands(const std::string& result) {
    const std::string stream = quoted(result + ".aac");
    return {"mp4creator60.exe -mpeg-version=4 -extract=1 " + quoted(result) + " " + stream,
            "mp4creator60.exe -mpeg-version=4 -optimize -create=" + stream + " " + quoted(result)};
}

std::optional<DecodeCommand> decodeCommand(FileTypes format, const std::string& source,
                                           const std::string& wav, const EncoderSettings& settings,
                                           int alternative) {
    const std::string in = quoted(source);
    const std::string out = quoted(wav);
    const auto command = [](std::string_view executable, const std::string& options) {
        return DecodeCommand{std::string(executable), std::string(executable) + options};
    };
    switch (format) {
        case FileType::Mp3:
            return settings.separateMp3Decoder ? command("lamedec.exe", " --decode " + in)
                                               : command("lame.exe", " --mp3input --decode " + in);
        case FileType::Ogg:
            return command("oggdec.exe", " " + in);
        case FileType::Mpc:
            return command("mpcdec.exe", " " + in + " " + out);
        case FileType::Aac:
        case FileType::Mp4:
            if (alternative == 1) return command("neroaacdec.exe", " -if " + in + " -of " + out);
            if (alternative == 2) return command("alacdec.exe", " -f " + out + " " + in);
            return command("faad.exe", " -d " + in + " -o " + out);
        case FileType::Wma:
            if (alternative == 0) return command("wmal2pcm.exe", " " + in + " " + out);
            return command("mplayer.exe", " -slave -nojoystick -ao pcm:waveheader:file=" +
                                              quoted(fileNameOf(wav, nativePathStyle())) + " " +
                                              in);
        case FileType::Flac:
            return command("flac.exe", " -d -f -F  -o" + out + " " + in);
        case FileType::Wv:
            return command("wvunpack.exe", " -y -w " + in + " " + out);
        case FileType::Ape:
            return command("mac.exe", " " + in + " " + out + "  -d ");
        default:
            return std::nullopt;
    }
}

int firstDecoder(FileTypes format, bool isLossless) {
    constexpr int alac = 2;
    return format == FileType::Mp4 && isLossless ? alac : 0;
}

std::string lameVersionIn(std::string_view output) {
    constexpr std::string_view word = " version ";
    const std::size_t at = output.find(word);
    if (at == std::string_view::npos) return {};
    const std::string_view rest = output.substr(at + word.size());
    return std::string(rest.substr(0, rest.find_first_of(" \r\n(")));
}

namespace {
// Behind the last of the options that give one, with or without a blank; 0 where none does.
int bitrateOption(std::string_view code) {
    constexpr std::array<int, 10> vbrBitrates{245, 225, 190, 175, 165, 130, 115, 100, 85, 65};
    const std::string words = " " + std::string(code);
    int found = 0;
    for (const std::string_view option : {" -b", " --abr", " -V"}) {
        const std::size_t at = words.rfind(option);
        if (at == std::string::npos) continue;
        const std::string_view rest =
            trimBlanks(std::string_view(words).substr(at + option.size()));
        int value = -1;
        std::from_chars(rest.data(), rest.data() + rest.size(), value);
        const bool isQuality = option == " -V";
        if (value < 0 || (isQuality && value >= static_cast<int>(vbrBitrates.size()))) continue;
        found = isQuality ? vbrBitrates[static_cast<std::size_t>(value)] : value;
    }
    return found;
}

int bitrateOf(const ChosenPreset& user) {
    return bitrateOption(user.preset->code);
}

template <std::size_t size>
int bitrateOf(const std::array<NamedPreset, size>& presets, int mode, int otherwise) {
    const NamedPreset* preset = findPreset(presets, mode);
    return preset == nullptr ? otherwise : preset->bitrate;
}

int mpeg4Bitrate(int mode, const EncoderSettings& settings) {
    if (const ChosenPreset user = chosen(settings.nero, mode, NeroUser1); user.preset != nullptr) {
        return bitrateOf(user);
    }
    if (const ChosenPreset user = chosen(settings.faac, mode, FaacUser1); user.preset != nullptr) {
        return bitrateOf(user);
    }
    return bitrateOf(neroPresets, mode, faacQuality(mode));
}
}  // namespace

int nominalBitrate(FileTypes format, int mode, const EncoderSettings& settings) {
    if (IsLosslessTarget(format, mode)) return losslessBitrate;
    if (format == FileType::Wma) return bitrateOf(windowsMediaProfiles, mode, 0);
    if (format == FileType::Ogg) {
        if (const auto user = chosen(settings.ogg, mode, OggUser1); user.preset != nullptr) {
            return bitrateOf(user);
        }
        const bool isQuality = mode >= 0 && mode < static_cast<int>(oggBitrates.size());
        return oggBitrates[static_cast<std::size_t>(isQuality ? mode : oggUsual)];
    }
    if (format == FileType::Mpc) {
        const auto user = chosen(settings.musepack, mode, MusepackUser1);
        return user.preset != nullptr
                   ? bitrateOf(user)
                   : bitrateOf(musepackPresets, mode, musepackPresets[standardMusepack].bitrate);
    }
    if (format == FileType::Mp4) return mpeg4Bitrate(mode, settings);
    const auto user = chosen(settings.lame, mode, LameUser1);
    return user.preset != nullptr ? bitrateOf(user) : bitrateOf(lamePresets, mode, mode);
}

std::string_view outputExtension(FileTypes format) {
    constexpr std::array<std::pair<FileTypes, std::string_view>, 7> extensions{{
        {FileType::Ogg, ".ogg"},
        {FileType::Mpc, ".mpc"},
        {FileType::Wma, ".wma"},
        {FileType::Mp4, ".m4a"},
        {FileType::Flac, ".flac"},
        {FileType::Wv, ".wv"},
        {FileType::Ape, ".ape"},
    }};
    const auto* row =
        std::ranges::find(extensions, format, &std::pair<FileTypes, std::string_view>::first);
    return row == extensions.end() ? ".mp3" : row->second;
}

bool IsLosslessType(FileTypes format) {
    return (format & FileType::Lossless) != 0;
}

bool IsLosslessTarget(FileTypes format, int mode) {
    return IsLosslessType(format) || (format == FileType::Mp4 && mode == Alac);
}

}  // namespace tavlo
