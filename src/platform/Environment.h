#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavlo {

/// What the process was called with, without the program's name: one line where the system keeps
/// one and paths begin with a drive (Windows), split arguments where paths may begin with "/".
struct CommandLine {
    std::optional<std::string> text;
    std::vector<std::string> arguments;
};

CommandLine programCommandLine(int argc, char** argv);

/// A variable of the process's environment; nothing when it is not set.
std::optional<std::string> environmentVariable(const std::string& name);

/// The full path of the program's own file; empty when not known.
std::string programFile();

/// The folder of the program's own file without a separator at the end; empty when not known.
std::string programFolder();

/// The user's folder for the program's own files; empty when not known. It need not be there.
std::string settingsFolder();

/// A folder in it for what runs leave to later ones; empty when not known.
std::string stateFolder(const std::string& name);

/// Where files that come and go may be made.
std::string temporaryFolder();

/// The current folder at the moment of the call; empty when it cannot be told.
std::string currentFolder();

/// The two-letter language of the user's texts, such as "ru"; empty when not known.
std::string systemLanguage();

/// True when windows can be shown.
bool hasDisplay();

}  // namespace tavlo
