#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tavlo {

/// The files whose names are wanted in a folder, or in it and all below it: a folder's own in the
/// order of their names, then those of each subfolder. A folder that links lead
/// to is taken once.
std::vector<std::string> filesIn(const std::string& folder, bool subfolders,
                                 const std::function<bool(std::string_view name)>& isWanted);

}  // namespace tavlo
