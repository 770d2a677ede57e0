#pragma once

#include "core/StartUp.h"

namespace tavlo {

/// Renames the files of the job by their tags: by `/template`, else by `/fN`, else by the choice
/// that the settings keep; automatic renaming takes the default template, the second mode goes
/// through playlists. A dry run prints the plan. With `json` one object a file: Path, NewPath,
/// Result ("planned", "renamed", "unchanged", "skipped", "failed") and, on failure, Message.
int renameFiles(Services& services);

}  // namespace tavlo
