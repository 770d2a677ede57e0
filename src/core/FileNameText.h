#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/PathText.h"

namespace tavlo {

/// Turns any text into a name, or, with "\" between them, names of folders and a file, that every
/// system can hold: what Windows forbids in a name and control characters become "_", outer blanks
/// and last dots go, names of devices get a "_" behind, levels that are empty then are dropped.
/// Every level is cut to the file system's limit between two characters; the last one leaves
/// `extensionSize` bytes free. In the POSIX style a first dot, which would hide the file, is "_".
std::string cleanFileName(std::string_view text, PathStyle style, std::size_t extensionSize = 0);

/// The same for what was transliterated: nothing beyond ASCII is left.
std::string cleanAsciiFileName(std::string_view text, PathStyle style,
                               std::size_t extensionSize = 0);

}  // namespace tavlo
