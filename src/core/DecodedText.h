#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/CodePage.h"

namespace tavlo {

/// Bytes of a file's name or of the command line as text that a tag may hold: UTF-8 stays, all else
/// is read by the code page. Nothing where that has no character for a byte.
std::optional<std::string> decodedText(std::string_view bytes, const CodePage& ansi);

}  // namespace tavlo
