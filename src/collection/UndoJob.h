#pragma once

#include "core/StartUp.h"

namespace tavlo {

/// Takes the last renaming back: those of its files that are still what they were go to their old
/// names, and playlists name them so again. It may be broken off and run anew; only when nothing is
/// left that could be tried again does the batch leave the journal. Output as that of
/// `renameFiles`.
int undoRename(Services& services);

}  // namespace tavlo
