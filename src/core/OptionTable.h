#pragma once

#include <array>
#include <string_view>
#include <variant>

#include "core/Options.h"
#include "core/Texts.h"

namespace tavlo {

struct SetMode {
    RunMode mode;
};
struct SetMark {
    bool JobOptions::*mark;
};
struct SetSwitch {
    std::optional<bool> JobOptions::*target;
    bool value;
};
struct SetPriority {
    PriorityClass priority;
};
struct TakeText {
    std::optional<std::string> JobOptions::*target;
    bool trimmed = true;
};
struct TakeNumber {
    std::optional<int> JobOptions::*target;
};
/// The options that need more than one row can say.
enum class TakeSpecial { Playlist, DiscMask, Encoder, Language, Limits };

using OptionAction =
    std::variant<SetMode, SetMark, SetSwitch, SetPriority, TakeText, TakeNumber, TakeSpecial>;

struct OptionRow {
    std::array<std::string_view, 3> names;  ///< unused ones are empty
    OptionAction action;
    Text group;
    Text help;
};

inline constexpr std::array optionTable{
    OptionRow{{"/agent"}, SetMark{&JobOptions::agent}, Text::GroupProgram, Text::HelpAgent},
    OptionRow{{"/compress_audio_cd", "/cdda"},
              SetMode{RunMode::AudioCd},
              Text::GroupJobs,
              Text::HelpAudioCd},
    OptionRow{{"/setup"}, SetMode{RunMode::Setup}, Text::GroupProgram, Text::HelpSetup},
    OptionRow{{"/help", "/h", "/?"}, SetMode{RunMode::Help}, Text::GroupProgram, Text::HelpHelp},
    OptionRow{
        {"/makelist", "/mpl"}, SetMode{RunMode::MakeLists}, Text::GroupJobs, Text::HelpMakeLists},
    OptionRow{{"/rename", "/r"}, SetMode{RunMode::Rename}, Text::GroupJobs, Text::HelpRename},
    OptionRow{{"/rename2", "/r2"}, SetMode{RunMode::Rename2}, Text::GroupJobs, Text::HelpRename2},
    OptionRow{{"/autorename", "/ar"},
              SetMode{RunMode::AutoRename},
              Text::GroupJobs,
              Text::HelpAutoRename},
    OptionRow{{"/change", "/ch"}, SetMode{RunMode::Change}, Text::GroupJobs, Text::HelpChange},
    OptionRow{{"/copy"}, TakeSpecial::Playlist, Text::GroupJobs, Text::HelpCopy},
    OptionRow{
        {"/makemxc", "/mxc"}, TakeSpecial::DiscMask, Text::GroupJobs, Text::HelpMakeDiscFiles},
    OptionRow{{"/encode", "/e"}, TakeSpecial::Encoder, Text::GroupJobs, Text::HelpEncode},
    OptionRow{{"/decode", "/d"}, SetMode{RunMode::Decode}, Text::GroupJobs, Text::HelpDecode},
    OptionRow{{"/showexec", "/show"},
              SetSwitch{&JobOptions::showExec, true},
              Text::GroupConversion,
              Text::HelpShowExec},
    OptionRow{{"/dontshowexec", "/hide"},
              SetSwitch{&JobOptions::showExec, false},
              Text::GroupConversion,
              Text::HelpHideExec},
    OptionRow{{"/reducelevel", "/rdl"},
              SetSwitch{&JobOptions::reduceLevel, true},
              Text::GroupWave,
              Text::HelpReduceLevel},
    OptionRow{{"/nordl", "/rdl-"},
              SetSwitch{&JobOptions::reduceLevel, false},
              Text::GroupWave,
              Text::HelpNoReduceLevel},
    OptionRow{{"/normalize", "/norm"},
              SetSwitch{&JobOptions::normalize, true},
              Text::GroupWave,
              Text::HelpNormalize},
    OptionRow{{"/norm-"},
              SetSwitch{&JobOptions::normalize, false},
              Text::GroupWave,
              Text::HelpNoNormalize},
    OptionRow{{"/trim"}, SetSwitch{&JobOptions::trim, true}, Text::GroupWave, Text::HelpTrim},
    OptionRow{{"/notrim", "/trim-"},
              SetSwitch{&JobOptions::trim, false},
              Text::GroupWave,
              Text::HelpNoTrim},
    OptionRow{{"/paths"}, SetMark{&JobOptions::keepPaths}, Text::GroupFiles, Text::HelpPaths},
    OptionRow{{"/compilation", "/cmpl"},
              SetMark{&JobOptions::compilation},
              Text::GroupTags,
              Text::HelpCompilation},
    OptionRow{{"/notags", "/disabletags"},
              SetMark{&JobOptions::noTags},
              Text::GroupTags,
              Text::HelpNoTags},
    OptionRow{
        {"/wavetrim", "/wt"}, SetMark{&JobOptions::waveTrim}, Text::GroupWave, Text::HelpWaveTrim},
    OptionRow{
        {"/nf", "/noformat"}, SetMark{&JobOptions::noFormat}, Text::GroupFiles, Text::HelpNoFormat},
    OptionRow{
        {"/nb", "/nobackup"}, SetMark{&JobOptions::noBackup}, Text::GroupFiles, Text::HelpNoBackup},
    OptionRow{{"/raw"}, SetMark{&JobOptions::raw}, Text::GroupConversion, Text::HelpRaw},
    OptionRow{{"/z"}, SetMark{&JobOptions::z}, Text::GroupWave, Text::HelpLimits},
    OptionRow{{"/zx"}, SetMark{&JobOptions::zx}, Text::GroupWave, Text::HelpLimits},
    OptionRow{{"/zxx"}, TakeSpecial::Limits, Text::GroupWave, Text::HelpLimits},
    OptionRow{{"/before"}, TakeNumber{&JobOptions::before}, Text::GroupWave, Text::HelpBefore},
    OptionRow{{"/after"}, TakeNumber{&JobOptions::after}, Text::GroupWave, Text::HelpAfter},
    OptionRow{{"/norm_level"},
              TakeNumber{&JobOptions::normalizeLevel},
              Text::GroupWave,
              Text::HelpNormalizeLevel},
    OptionRow{{"/norm_above"},
              TakeNumber{&JobOptions::normalizeAbove},
              Text::GroupWave,
              Text::HelpNormalizeAbove},
    OptionRow{{"/norm_below"},
              TakeNumber{&JobOptions::normalizeBelow},
              Text::GroupWave,
              Text::HelpNormalizeBelow},
    OptionRow{{"/norm_sep", "/norm_separately"},
              SetMark{&JobOptions::normalizeSeparately},
              Text::GroupWave,
              Text::HelpNormalizeSeparately},
    OptionRow{{"/folder"}, TakeText{&JobOptions::folder}, Text::GroupFiles, Text::HelpFolder},
    OptionRow{{"/a", "/artist"}, TakeText{&JobOptions::artist}, Text::GroupTags, Text::HelpArtist},
    OptionRow{{"/t", "/title"}, TakeText{&JobOptions::title}, Text::GroupTags, Text::HelpTitle},
    OptionRow{{"/l", "/album"}, TakeText{&JobOptions::album}, Text::GroupTags, Text::HelpAlbum},
    OptionRow{{"/y", "/year"}, TakeText{&JobOptions::year}, Text::GroupTags, Text::HelpYear},
    OptionRow{{"/m", "/mix"}, TakeText{&JobOptions::mix}, Text::GroupTags, Text::HelpMix},
    OptionRow{{"/tn", "/track_number"},
              TakeText{&JobOptions::trackNumber},
              Text::GroupTags,
              Text::HelpTrackNumber},
    OptionRow{{"/g", "/genre"}, TakeText{&JobOptions::genre}, Text::GroupTags, Text::HelpGenre},
    OptionRow{{"/to", "/target"},
              TakeText{&JobOptions::targetFolder},
              Text::GroupFiles,
              Text::HelpTarget},
    OptionRow{{"/offset", "/start", "/start_offset"},
              TakeNumber{&JobOptions::startOffset},
              Text::GroupWave,
              Text::HelpStart},
    OptionRow{{"/end", "/end_offset"},
              TakeNumber{&JobOptions::endOffset},
              Text::GroupWave,
              Text::HelpEnd},
    OptionRow{{"/template"},
              TakeText{&JobOptions::nameTemplate, false},
              Text::GroupFiles,
              Text::HelpTemplate},
    OptionRow{{"/idle"}, SetPriority{PriorityClass::Idle}, Text::GroupProgram, Text::HelpPriority},
    OptionRow{
        {"/normal"}, SetPriority{PriorityClass::Normal}, Text::GroupProgram, Text::HelpPriority},
    OptionRow{{"/high"}, SetPriority{PriorityClass::High}, Text::GroupProgram, Text::HelpPriority},
    OptionRow{{"/s"}, SetMark{&JobOptions::subfolders}, Text::GroupFiles, Text::HelpSubfolders},
    OptionRow{{"/lng"}, TakeSpecial::Language, Text::GroupProgram, Text::HelpLanguage},
    OptionRow{{"/scan"}, SetMode{RunMode::Scan}, Text::GroupJobs, Text::HelpScan},
    OptionRow{{"/json"}, SetMark{&JobOptions::json}, Text::GroupFiles, Text::HelpJson},
    OptionRow{{"/version"}, SetMode{RunMode::Version}, Text::GroupProgram, Text::HelpVersion},
};

/// The row that has this word among its names, compared exactly; null when there is none.
const OptionRow* findOption(std::string_view word);

}  // namespace tavlo
