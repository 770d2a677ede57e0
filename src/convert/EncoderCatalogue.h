#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "tags/FileType.h"

namespace tavlo {

/// A preset of the user's: its name and the options that it stands for.
struct UserPreset {
    std::string name, code;
};
using UserPresets = std::array<UserPreset, 3>;

/// What the settings say about encoders and decoders.
struct EncoderSettings {
    bool reduceLevel = false;
    bool musepackStream8 = false;     ///< "mpcenc.exe" instead of "mppenc.exe"
    bool lame393 = false;             ///< "lame393.exe" for the insane preset
    bool separateMp3Decoder = false;  ///< "lamedec.exe"
    int monkeyLevel = 2, flacLevel = 5;
    std::string lameVersion;  ///< empty where it is not known
    std::string program;      ///< this program's name and version, for tags that an encoder writes
    UserPresets lame, ogg, musepack, faac, nero;
};

/// Special mode codes; others are bit rates, qualities or numbers of presets, by format.
enum EncoderMode : int {
    LameMedium = 554,
    LameStandard = 555,
    LameExtreme = 556,
    LameUser1 = 9001,
    OggUser1 = 31,
    MusepackUser1 = 11,
    FaacUser1 = 901,
    NeroPreset1 = 1001,
    NeroUser1 = 1011,
    Alac = 1100,
    WmaVbr128 = 6,
    WmaLossless = 17,
    WmaUser1 = 18,
};

/// Where an encoder reads and writes: full paths.
struct EncodePaths {
    std::string wav;
    std::string result;
    std::string title;  ///< the result's name without extension, where an encoder writes tags
};

struct EncodeCommand {
    std::string executable;    ///< "lame.exe"; named when it is not found
    std::string line;          ///< the whole command line
    std::string description;   ///< of the encoder and its options, kept in a tag of the result
    std::string label;         ///< for the log; may be empty
    bool isRewrapped = false;  ///< its AAC stream goes through "mp4creator60.exe" afterwards
};

/// The command that makes a file of a format out of a WAV file. Nothing where the mode has none,
/// and for Windows Media, which has no command.
std::optional<EncodeCommand> encodeCommand(FileTypes format, int mode, const EncodePaths& paths,
                                           const EncoderSettings& settings);

/// The name of the profile that a mode of Windows Media has, also its file's without ".prx"; empty
/// for a mode that there is not.
std::string_view windowsMediaProfile(int mode);

/// The two commands that bring an AAC stream into its final shape; between them the result is
/// deleted, and after them the ".aac" beside it.
std::array<std::string, 2> rewrapCommands(const std::string& result);

struct DecodeCommand {
    std::string executable;
    std::string line;
};
/// The command that makes a WAV file of an encoded one; nothing where there is none. A format with
/// two decoders has them by `alternative`: for AAC the second is Nero's, for MPEG-4 the third is
/// that of ALAC, for Windows Media the second is "mplayer.exe", run in the folder of the WAV file.
std::optional<DecodeCommand> decodeCommand(FileTypes format, const std::string& source,
                                           const std::string& wav, const EncoderSettings& settings,
                                           int alternative = 0);

/// The alternative that is tried first.
int firstDecoder(FileTypes format, bool isLossless);

/// "3.100" out of what "lame --version" prints; empty where it is not in it.
std::string lameVersionIn(std::string_view output);

/// The bit rate in kbit/s that a mode aims at. 0 where that cannot be told; a lossless format's is
/// above every other.
int nominalBitrate(FileTypes format, int mode, const EncoderSettings& settings);

/// ".mp3"; MP3's for a format that is not known.
std::string_view outputExtension(FileTypes format);

/// FLAC, WavPack and Monkey's Audio.
bool IsLosslessType(FileTypes format);

/// The same, or the mode of MPEG-4 that is ALAC.
bool IsLosslessTarget(FileTypes format, int mode);

}  // namespace tavlo
