#pragma once

#include <string>

#include "collection/RenameJournal.h"
#include "collection/cFilesRename.h"
#include "core/StartUp.h"

namespace tavlo {

// What renaming and taking back have in common.

/// The renamer's surroundings, by the settings.
RenameContext renameContext(Services& services, const CodePage& ansi);

/// Where the journal lies; empty when that is not known.
std::string journalFolder();

/// Keeps other runs out, but for a dry run. False, and told, when one is at work.
bool mayRename(Services& services, RenameJournal& journal);

}  // namespace tavlo
