#pragma once

#include <string>
#include <string_view>

#include "tags/ID3tag.h"

namespace tavlo {

/// One file of a list: where it is, and its record (empty for a file that could not be read).
struct ListRow {
    std::string path;
    std::string subPath;  ///< below the listed folder
    ID3tag record;
};

}  // namespace tavlo
