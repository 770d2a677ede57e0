#pragma once

#include "core/StartUp.h"

namespace tavlo {

/// Copies the files of a playlist into the target folder, with `/paths` into the folders that they
/// lie in below the playlist's; never over a file that is there. A dry run prints the plan. With
/// `json` one object a file: Path, NewPath, Result ("planned", "copied", "there", "failed",
/// "cancelled") and, on failure, Message.
int copyPlaylist(Services& services);

}  // namespace tavlo
