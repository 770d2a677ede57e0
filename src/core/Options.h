#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/CommandString.h"
#include "core/EncoderWords.h"
#include "platform/PriorityClass.h"

namespace tavlo {

/// What the program is to do; 0 opens the main window, every other value is one job.
enum class RunMode : int {
    MainWindow = 0,
    Rename = 1,
    Rename2 = 2,
    AutoRename = 3,
    Change = 4,
    Encode = 5,
    Decode = 6,
    AudioCd = 7,
    MakeLists = 8,
    Help = 10,
    Setup = 11,
    Copy = 12,
    MakeDiscFiles = 16,
    LanguageTemplate = 17,
    Scan = 18,
    Undo = 19,
    RemoveTags = 20,
    Version = 100,
};

/// What one command line asks for. An empty optional means that the option was not given or had no
/// value, so that the setting decides; an empty text is a value.
struct JobOptions {
    RunMode mode = RunMode::MainWindow;
    std::string modeWord;               ///< the option that set the mode, as the table spells it
    std::string secondJob;              ///< one that asks for another job than one before it
    std::string startFolder;            ///< current folder when the command line was read
    std::optional<std::string> folder;  ///< the last one named
    std::vector<std::string> paths;     ///< every bare word that is no mask
    std::string mask = "*.*";
    bool subfolders = false;
    bool agent = false;
    bool json = false;
    bool dryRun = false;
    bool utf8List = false;

    std::optional<bool> showExec;
    std::optional<PriorityClass> priority;
    std::optional<std::string> languageFile;
    bool noLanguageFile = false;

    std::optional<std::string> artist;
    std::optional<std::string> title;
    std::optional<std::string> album;
    std::optional<std::string> year;
    std::optional<std::string> mix;
    std::optional<std::string> trackNumber;
    std::optional<std::string> genre;
    bool compilation = false;
    bool noTags = false;
    bool force = false;
    std::optional<std::string> tagKinds;  ///< as they were given

    std::optional<std::string> targetFolder;
    std::optional<std::string> nameTemplate;
    std::optional<std::string> playlist;
    bool keepPaths = false;
    bool outside = false;
    bool noFormat = false;
    bool noBackup = false;

    EncoderWord encoder = EncoderWord::Mp3;
    std::string preset = "vbr2";
    std::optional<int> outputFormat;
    std::optional<int> jobsAtOnce;
    std::optional<std::string> logFile;
    bool raw = false;

    std::optional<bool> reduceLevel;
    std::optional<bool> normalize;
    std::optional<int> normalizeLevel;  // percent, as the two below
    std::optional<int> normalizeAbove;
    std::optional<int> normalizeBelow;
    bool normalizeSeparately = false;
    std::optional<bool> trim;
    bool waveTrim = false;
    std::optional<int> before;
    std::optional<int> after;
    std::optional<int> startOffset;
    std::optional<int> endOffset;
    bool z = false;
    bool zx = false;
    int lowLimit = 0;
    int highLimit = 0;

    std::vector<std::string> ignored;    ///< words that look like options and are none
    std::vector<std::string> valueless;  ///< options without the text that they take
};

/// True for a word of the option table and for "/f" and digits.
bool isOptionWord(std::string_view word);

/// Reads every argument once, from first to last; of options that contradict each other the last
/// one counts.
JobOptions readOptions(const CommandString& line, std::string startFolder);

}  // namespace tavlo
