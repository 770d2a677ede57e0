#pragma once

#include <string>
#include <vector>

#include "convert/ConversionSettings.h"
#include "core/PathText.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// What is to be done with a file.
enum class ConversionStep {
    Encode,    ///< a WAV goes to the encoder
    ReEncode,  ///< decoded first
    Decode,    ///< to a WAV
    Copy,      ///< it would not get smaller, but is wanted elsewhere
    Skip,      ///< it would not get smaller, and is where it is wanted
    Done,      ///< its result is there already
    Fail
};

/// One file of a conversion.
struct Conversion {
    std::string source;
    std::string folder;  ///< of the result; empty for the source's
    std::string target;  ///< full path of the result
    ConversionStep step = ConversionStep::Fail;
    FileTypes type = FileType::None;
    bool isLossless = false;     ///< the source
    int bitrate = 0;             ///< kbit/s; 0 = unknown
    std::int32_t seconds = 0;    ///< 0 = unknown
    std::uint64_t size = 0;      ///< bytes
    std::int64_t modified = 0;   ///< of the source, as `FileInfo` has it
    bool isTimeGuessed = false;  ///< from one frame; all of them have to be counted
    bool isCut = false;          ///< the source holds less sound than it promises
    bool isOwnSource = false;    ///< the result takes the source's place
};

/// Kinds of files whose tags can be read and written.
inline constexpr FileTypes typesWithTags = FileType::Mp3 | FileType::Ape2Only;

/// Decides for every file what is to be done, and gives each result a name of its own: one that is
/// no other source's, no other result's, and no file's that is there, but for an earlier result.
std::vector<Conversion> planConversions(std::vector<Conversion> sources,
                                        const ConversionSettings& settings, const CodePage& ansi);

/// Replaces a guessed playing time by that of all frames, for which the source is read.
void countTime(Conversion& row);

/// Gives a row the next name that nothing has, for its own was taken meanwhile.
bool takeFreeName(Conversion& row);

/// Where the source lies if it is kept as it is.
std::string unchangedTarget(const Conversion& row);

/// The second file of a WavPack file that has one; empty for every other type.
std::string correctionFile(const Conversion& row);

/// Whether a file of this type and bit rate would not get smaller by aiming at the target.
bool wouldNotShrink(FileTypes type, int bitrate, const ConversionTarget& target,
                    const EncoderSettings& settings);

/// Whether a new bit rate saves less than a quarter of the old one.
bool savesTooLittle(int oldBitrate, int newBitrate);

/// Whether two playing times are those of the same sound: 1 s or 1 % apart at most.
bool sameTime(std::int32_t seconds, std::int32_t others);

/// Whether two paths name one file: the same folder, however it is reached, and the same name,
/// letters compared without case.
bool samePath(std::string_view left, std::string_view right);

}  // namespace tavlo
