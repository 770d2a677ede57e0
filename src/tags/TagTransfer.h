#pragma once

#include <string>

#include "platform/CodePage.h"
#include "platform/FileCalls.h"

namespace tavlo {

/// Gives a file the tags of another of its type, byte for byte, in place of its own. False, and no
/// change, where a tag does not lie where tags of that type do, or the disk refuses.
bool copyTags(const std::string& from, const std::string& to, const CodePage& ansi,
              FileCalls& calls = systemCalls());

/// Whether every tag of a file lies where a reader finds it.
bool hasKnownTagsOnly(const std::string& path, const CodePage& ansi);

}  // namespace tavlo
