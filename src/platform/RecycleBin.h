#pragma once

#include <string>

namespace tavlo {

/// Puts a file or folder where the user can get it back from. Where that is not possible it stays,
/// and the answer is false; it is never deleted.
bool moveToRecycleBin(const std::string& path);

}  // namespace tavlo
