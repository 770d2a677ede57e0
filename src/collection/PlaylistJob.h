#pragma once

#include "core/StartUp.h"

namespace tavlo {

/// Makes the playlist of every folder of the job: relative entries, or full paths with `/paths`;
/// with `/s` of the subfolders too, with `/u8` also a list in UTF-8. One line a list; with `json`
/// one object: Path, Files, NotHeld (entries that the code page cannot hold), Result ("planned",
/// "written", "failed") and, on failure, Message.
int makePlaylists(Services& services);

}  // namespace tavlo
