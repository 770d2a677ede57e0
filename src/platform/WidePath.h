#pragma once

#include <string>
#include <string_view>

namespace tavlo {

/// Paths for the wide calls of Windows. Only sources of Windows include this.

/// For the system's own calls: full, and taken to the letter however short it is.
std::wstring widePath(std::string_view path);

/// For other programs, the shell and folders to start in: full, without a mark that they may not
/// understand.
std::wstring plainWidePath(std::string_view path);

/// Text as it is.
std::wstring wideText(std::string_view text);

}  // namespace tavlo
