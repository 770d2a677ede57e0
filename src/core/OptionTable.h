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
enum class TakeSpecial { Playlist, DiscMask, Encoder, Language, Limits, TagKinds };

using OptionAction =
    std::variant<SetMode, SetMark, SetSwitch, SetPriority, TakeText, TakeNumber, TakeSpecial>;

struct OptionRow {
    std::array<std::string_view, 3> names;  ///< unused ones are empty
    OptionAction action;
    Text group;
    Text help;
};

inline constexpr auto optionTable = std::to_array<OptionRow>({
    {{"/agent"}, SetMark{&JobOptions::agent}, Text::GroupProgram, Text::HelpAgent},
    {{"/compress_audio_cd", "/cdda"},
     SetMode{RunMode::AudioCd},
     Text::GroupJobs,
     Text::HelpAudioCd},
    {{"/setup"}, SetMode{RunMode::Setup}, Text::GroupProgram, Text::HelpSetup},
    {{"/help", "/h", "/?"}, SetMode{RunMode::Help}, Text::GroupProgram, Text::HelpHelp},
    {{"/makelist", "/mpl"}, SetMode{RunMode::MakeLists}, Text::GroupJobs, Text::HelpMakeLists},
    {{"/rename", "/r"}, SetMode{RunMode::Rename}, Text::GroupJobs, Text::HelpRename},
    {{"/rename2", "/r2"}, SetMode{RunMode::Rename2}, Text::GroupJobs, Text::HelpRename2},
    {{"/autorename", "/ar"}, SetMode{RunMode::AutoRename}, Text::GroupJobs, Text::HelpAutoRename},
    {{"/change", "/ch"}, SetMode{RunMode::Change}, Text::GroupJobs, Text::HelpChange},
    {{"/removetags"}, TakeSpecial::TagKinds, Text::GroupJobs, Text::HelpRemoveTags},
    {{"/copy"}, TakeSpecial::Playlist, Text::GroupJobs, Text::HelpCopy},
    {{"/makemxc", "/mxc"}, TakeSpecial::DiscMask, Text::GroupJobs, Text::HelpMakeDiscFiles},
    {{"/encode", "/e"}, TakeSpecial::Encoder, Text::GroupJobs, Text::HelpEncode},
    {{"/decode", "/d"}, SetMode{RunMode::Decode}, Text::GroupJobs, Text::HelpDecode},
    {{"/showexec", "/show"},
     SetSwitch{&JobOptions::showExec, true},
     Text::GroupConversion,
     Text::HelpShowExec},
    {{"/dontshowexec", "/hide"},
     SetSwitch{&JobOptions::showExec, false},
     Text::GroupConversion,
     Text::HelpHideExec},
    {{"/reducelevel", "/rdl"},
     SetSwitch{&JobOptions::reduceLevel, true},
     Text::GroupWave,
     Text::HelpReduceLevel},
    {{"/nordl", "/rdl-"},
     SetSwitch{&JobOptions::reduceLevel, false},
     Text::GroupWave,
     Text::HelpNoReduceLevel},
    {{"/normalize", "/norm"},
     SetSwitch{&JobOptions::normalize, true},
     Text::GroupWave,
     Text::HelpNormalize},
    {{"/norm-"}, SetSwitch{&JobOptions::normalize, false}, Text::GroupWave, Text::HelpNoNormalize},
    {{"/trim"}, SetSwitch{&JobOptions::trim, true}, Text::GroupWave, Text::HelpTrim},
    {{"/notrim", "/trim-"}, SetSwitch{&JobOptions::trim, false}, Text::GroupWave, Text::HelpNoTrim},
    {{"/paths"}, SetMark{&JobOptions::keepPaths}, Text::GroupFiles, Text::HelpPaths},
    {{"/outside"}, SetMark{&JobOptions::outside}, Text::GroupFiles, Text::HelpOutside},
    {{"/compilation", "/cmpl"},
     SetMark{&JobOptions::compilation},
     Text::GroupTags,
     Text::HelpCompilation},
    {{"/notags", "/disabletags"}, SetMark{&JobOptions::noTags}, Text::GroupTags, Text::HelpNoTags},
    {{"/force"}, SetMark{&JobOptions::force}, Text::GroupTags, Text::HelpForce},
    {{"/wavetrim", "/wt"}, SetMark{&JobOptions::waveTrim}, Text::GroupWave, Text::HelpWaveTrim},
    {{"/nf", "/noformat"}, SetMark{&JobOptions::noFormat}, Text::GroupFiles, Text::HelpNoFormat},
    {{"/nb", "/nobackup"}, SetMark{&JobOptions::noBackup}, Text::GroupFiles, Text::HelpNoBackup},
    {{"/jobs"}, TakeNumber{&JobOptions::jobsAtOnce}, Text::GroupConversion, Text::HelpJobsAtOnce},
    {{"/log"}, TakeText{&JobOptions::logFile, false}, Text::GroupConversion, Text::HelpLog},
    {{"/raw"}, SetMark{&JobOptions::raw}, Text::GroupConversion, Text::HelpRaw},
    {{"/z"}, SetMark{&JobOptions::z}, Text::GroupWave, Text::HelpLimits},
    {{"/zx"}, SetMark{&JobOptions::zx}, Text::GroupWave, Text::HelpLimits},
    {{"/zxx"}, TakeSpecial::Limits, Text::GroupWave, Text::HelpLimits},
    {{"/before"}, TakeNumber{&JobOptions::before}, Text::GroupWave, Text::HelpBefore},
    {{"/after"}, TakeNumber{&JobOptions::after}, Text::GroupWave, Text::HelpAfter},
    {{"/norm_level"},
     TakeNumber{&JobOptions::normalizeLevel},
     Text::GroupWave,
     Text::HelpNormalizeLevel},
    {{"/norm_above"},
     TakeNumber{&JobOptions::normalizeAbove},
     Text::GroupWave,
     Text::HelpNormalizeAbove},
    {{"/norm_below"},
     TakeNumber{&JobOptions::normalizeBelow},
     Text::GroupWave,
     Text::HelpNormalizeBelow},
    {{"/norm_sep", "/norm_separately"},
     SetMark{&JobOptions::normalizeSeparately},
     Text::GroupWave,
     Text::HelpNormalizeSeparately},
    {{"/folder"}, TakeText{&JobOptions::folder}, Text::GroupFiles, Text::HelpFolder},
    {{"/a", "/artist"}, TakeText{&JobOptions::artist}, Text::GroupTags, Text::HelpArtist},
    {{"/t", "/title"}, TakeText{&JobOptions::title}, Text::GroupTags, Text::HelpTitle},
    {{"/l", "/album"}, TakeText{&JobOptions::album}, Text::GroupTags, Text::HelpAlbum},
    {{"/y", "/year"}, TakeText{&JobOptions::year}, Text::GroupTags, Text::HelpYear},
    {{"/m", "/mix"}, TakeText{&JobOptions::mix}, Text::GroupTags, Text::HelpMix},
    {{"/tn", "/track_number"},
     TakeText{&JobOptions::trackNumber},
     Text::GroupTags,
     Text::HelpTrackNumber},
    {{"/g", "/genre"}, TakeText{&JobOptions::genre}, Text::GroupTags, Text::HelpGenre},
    {{"/to", "/target"}, TakeText{&JobOptions::targetFolder}, Text::GroupFiles, Text::HelpTarget},
    {{"/offset", "/start", "/start_offset"},
     TakeNumber{&JobOptions::startOffset},
     Text::GroupWave,
     Text::HelpStart},
    {{"/end", "/end_offset"}, TakeNumber{&JobOptions::endOffset}, Text::GroupWave, Text::HelpEnd},
    {{"/template"},
     TakeText{&JobOptions::nameTemplate, false},
     Text::GroupFiles,
     Text::HelpTemplate},
    {{"/idle"}, SetPriority{PriorityClass::Idle}, Text::GroupProgram, Text::HelpPriority},
    {{"/normal"}, SetPriority{PriorityClass::Normal}, Text::GroupProgram, Text::HelpPriority},
    {{"/high"}, SetPriority{PriorityClass::High}, Text::GroupProgram, Text::HelpPriority},
    {{"/s"}, SetMark{&JobOptions::subfolders}, Text::GroupFiles, Text::HelpSubfolders},
    {{"/lng"}, TakeSpecial::Language, Text::GroupProgram, Text::HelpLanguage},
    {{"/scan"}, SetMode{RunMode::Scan}, Text::GroupJobs, Text::HelpScan},
    {{"/json"}, SetMark{&JobOptions::json}, Text::GroupFiles, Text::HelpJson},
    {{"/undo"}, SetMode{RunMode::Undo}, Text::GroupJobs, Text::HelpUndo},
    {{"/u8"}, SetMark{&JobOptions::utf8List}, Text::GroupFiles, Text::HelpUtf8List},
    {{"/dryrun"}, SetMark{&JobOptions::dryRun}, Text::GroupFiles, Text::HelpDryRun},
    {{"/version"}, SetMode{RunMode::Version}, Text::GroupProgram, Text::HelpVersion},
});

/// The row that has this word among its names, compared exactly; null when there is none.
const OptionRow* findOption(std::string_view word);

}  // namespace tavlo
