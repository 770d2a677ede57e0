#pragma once

#include "core/StartUp.h"

namespace tavlo {

/// Takes the kinds of tags that the command line names off every file of the job, or, as a dry run,
/// says which would go. Prints a summary, or with `json` one object for each file: Path, Tags (an
/// array of "ID3v1", "ID3v2", "APEv2"), Result ("planned", "changed", "unchanged" or "failed") and,
/// where there is something to be told, Message. Gives the exit code.
int removeTags(Services& services);

}  // namespace tavlo
