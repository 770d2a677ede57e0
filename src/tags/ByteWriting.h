#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tavlo {

/// The counterparts of `ByteCursor`: numbers behind a byte string.
template <unsigned bits, bool mostFirst>
void appendNumber(std::string& out, std::uint32_t value, std::size_t count) {
    constexpr std::uint32_t mask = (1U << bits) - 1;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t place = mostFirst ? count - 1 - i : i;
        out += static_cast<char>(value >> (bits * place) & mask);
    }
}

/// The lowest `count` bytes (at most 4), most significant first.
inline void appendBigEndian(std::string& out, std::uint32_t value, std::size_t count) {
    appendNumber<8, true>(out, value, count);
}
inline void appendLittleEndian(std::string& out, std::uint32_t value, std::size_t count) {
    appendNumber<8, false>(out, value, count);
}
/// 4 bytes of 7 bits each, most significant first (ID3v2.4.0 structure, 6.2).
inline void appendSyncsafe(std::string& out, std::uint32_t value) {
    appendNumber<7, true>(out, value, 4);
}

}  // namespace tavlo
