#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/File.h"

namespace tavlo {

/// Undoes zlib compression (RFC 1950); nothing when the bytes are broken or not `size` bytes long
/// when undone, or when `size` is above 16 MB.
std::optional<std::vector<std::uint8_t>> inflateBytes(Bytes packed, std::uint32_t size);

}  // namespace tavlo
