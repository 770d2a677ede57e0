#pragma once

#include <string>
#include <string_view>

namespace tavlo {

/// A path for the wide calls of Windows: UTF-16, and with the long-path prefix where it is long.
/// Only sources of Windows include this.
std::wstring widePath(std::string_view path);

}  // namespace tavlo
