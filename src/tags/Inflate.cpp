#include "tags/Inflate.h"

#include <zlib.h>

namespace tavlo {

namespace {
constexpr std::uint32_t largestResult = 16U << 20U;
}

std::optional<std::vector<std::uint8_t>> inflateBytes(Bytes packed, std::uint32_t size) {
    if (size > largestResult) return std::nullopt;
    std::vector<std::uint8_t> plain(size);
    uLongf length = size;
    const int status =
        ::uncompress(plain.data(), &length, packed.data(), static_cast<uLong>(packed.size()));
    if (status != Z_OK || length != size) return std::nullopt;
    return plain;
}

}  // namespace tavlo
