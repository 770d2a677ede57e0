#pragma once

#include <optional>
#include <string>

#include "core/Texts.h"

namespace tavlo {

/// The bytes of a language file; nothing when it cannot be read or is larger than 4 MB.
std::optional<std::string> readLanguageFile(const std::string& file);

/// Writes all texts as tavlo.lng in the folder, under the first free name of "tavlo.lng",
/// "tavlo (1).lng" and so on; the path, or nothing when it could not be written.
std::optional<std::string> writeLanguageTemplate(const Texts& texts, const std::string& folder);

}  // namespace tavlo
