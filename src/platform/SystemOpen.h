#pragma once

#include <string>

namespace tavlo {

/// Opens a file or folder with the program that the system has for it. False when there is none,
/// as far as the system tells at once.
bool openWithSystem(const std::string& path);

/// Opens the folder that a file or folder lies in, with it selected where the system can.
bool showInFolder(const std::string& path);

/// Starts a program that goes on when this one ends and says nothing to it. The command line is
/// the whole one, the program's name first, by Windows' rules. False when it cannot be started.
bool startAndForget(const std::string& program, const std::string& commandLine);

}  // namespace tavlo
