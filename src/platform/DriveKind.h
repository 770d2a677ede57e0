#pragma once

#include <string>
#include <string_view>

namespace tavlo {

/// Whether a path lies on a stick, a card or the like; false where that cannot be told. The file
/// itself need not be there.
bool isRemovableDrive(const std::string& path);

/// Whether a path begins with the name of a computer: "\\computer\folder".
constexpr bool isNetworkPath(std::string_view path) {
    return path.starts_with("\\\\");
}

}  // namespace tavlo
