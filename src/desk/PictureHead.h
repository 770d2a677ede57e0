#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/File.h"

namespace tavlo {

/// What the first bytes of a picture tell, whatever its tag calls it.
struct PictureHead {
    std::string_view name;    ///< "JPEG"
    std::string_view ending;  ///< of a file name: "jpg"
    std::uint32_t width = 0, height = 0;
};

/// Nothing where the bytes are no PNG, JPEG, GIF or BMP, or end before they tell their size.
std::optional<PictureHead> readPictureHead(Bytes bytes);

}  // namespace tavlo
