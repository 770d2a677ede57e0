#pragma once

#include "core/QuietWork.h"
#include "core/StartUp.h"

namespace tavlo {

/// Opens the main window on what the command line or the settings name, and stays until it is
/// closed. `told` is where `services.errors` puts its lines. Gives the process's exit code.
int openMainWindow(Services& services, KeptLines& told);

/// The options alone.
int openSetup(Services& services, KeptLines& told);

/// The command-line help in a window, for where nobody sees a terminal.
void openHelp(const std::string& page, const Texts& texts);

/// What a job without a window told, for the same place.
void openMessages(const std::vector<std::string>& lines, const Texts& texts);

}  // namespace tavlo
