#pragma once

#include "core/StartUp.h"

namespace tavlo {

/// Sets the fields that the command line gives in every file of the job, or, as a dry run, says
/// what would change. Prints a summary, or with `json` one object for each change: Path, Field,
/// From, To, Result ("planned", "changed", "unchanged", "skipped" or "failed") and, where there is
/// something to be told, Message. Gives the exit code.
int changeTags(Services& services);

}  // namespace tavlo
