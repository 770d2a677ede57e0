#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/ExternalTools.h"
#include "core/Texts.h"

namespace tavlo {

/// An external program and what needs it.
struct ToolUse {
    std::string_view tool;  ///< such as "lame.exe"
    Text enables;
};

/// One for each of `externalTools`.
std::span<const ToolUse> toolUses();

struct MissingTool {
    std::string name;  ///< of its file on this kind of system
    Text enables;
};

std::vector<MissingTool> missingToolUses(const ToolPlaces& places);

}  // namespace tavlo
