#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/PathText.h"
#include "platform/CodePage.h"

namespace tavlo {

/// The files that an M3U playlist names, in its order, as full paths; nothing when the list cannot
/// be read. Entries may use "\" or "/"; relative ones start from the list's folder.
std::optional<std::vector<std::string>> readPlaylist(const std::string& path, const CodePage& ansi);

/// The entries of a playlist's bytes. `folder` is where relative entries start from.
std::vector<std::string> parsePlaylist(std::string_view bytes, std::string_view folder, bool isUtf8,
                                       const CodePage& ansi, PathStyle style);

}  // namespace tavlo
