#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileCalls.h"

namespace tavlo {

/// A picture's pixels, row by row from the top.
struct PixelImage {
    std::uint32_t width = 0, height = 0;
    std::vector<std::uint8_t> rgb;    ///< 3 bytes a pixel
    std::vector<std::uint8_t> alpha;  ///< 1 byte a pixel, 255 = opaque; empty where all are
};

/// More are not brought into memory: three bytes each.
inline constexpr std::uint64_t largestPicturePixels = 40'000'000;

/// Decodes a picture by what the system has for it; nothing where it has nothing, or where the
/// picture is broken or too large. May be called from any thread.
std::optional<PixelImage> decodePicture(Bytes bytes);

/// The picture as a PNG file; empty where the system cannot make one.
std::string encodePng(const PixelImage& image);

}  // namespace tavlo
