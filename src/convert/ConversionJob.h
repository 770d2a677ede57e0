#pragma once

#include "core/StartUp.h"

namespace tavlo {

/// Encodes or decodes the files that the command line names, or, as a dry run, says how. The log
/// goes to the messages, a summary or one JSON object a file (Path, NewPath, Step, Result, Message)
/// to the output. Gives the exit code.
int convertFiles(Services& services);

}  // namespace tavlo
