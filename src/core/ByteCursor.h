#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "platform/File.h"

namespace tavlo {

/// Reads numbers and texts off a span. A read beyond the end fails and moves nothing.
class ByteCursor {
 public:
    explicit ByteCursor(Bytes bytes) : rest_(bytes) {}

    [[nodiscard]] Bytes rest() const { return rest_; }
    [[nodiscard]] std::size_t left() const { return rest_.size(); }

    std::optional<Bytes> take(std::size_t count) {
        if (count > rest_.size()) return std::nullopt;
        const Bytes taken = rest_.first(count);
        rest_ = rest_.subspan(count);
        return taken;
    }
    std::optional<std::uint8_t> u8() {
        const auto taken = take(1);
        return taken ? std::optional(taken->front()) : std::nullopt;
    }
    /// `count` bytes (at most 4), most significant first.
    std::optional<std::uint32_t> bigEndian(std::size_t count) { return number<8, true>(count); }
    std::optional<std::uint32_t> littleEndian(std::size_t count) { return number<8, false>(count); }
    /// 4 bytes of 7 bits each, most significant first (ID3v2.4.0 structure, 6.2).
    std::optional<std::uint32_t> syncsafe() { return number<7, true>(4); }
    /// Whether the next bytes are `text`; takes them if so.
    bool takeIf(std::string_view text) {
        if (!textOf(rest_).starts_with(text)) return false;
        rest_ = rest_.subspan(text.size());
        return true;
    }
    /// The bytes before the next `end`, which is taken too; all the rest where there is none.
    Bytes takeUntil(std::uint8_t end) {
        const void* found = rest_.empty() ? nullptr : std::memchr(rest_.data(), end, rest_.size());
        if (found == nullptr) return *take(rest_.size());
        const auto length =
            static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - rest_.data());
        const Bytes taken = rest_.first(length);
        rest_ = rest_.subspan(length + 1);
        return taken;
    }

 private:
    template <unsigned bits, bool mostFirst>
    std::optional<std::uint32_t> number(std::size_t count) {
        const auto taken = take(count);
        if (!taken) return std::nullopt;
        constexpr std::uint32_t mask = (1U << bits) - 1;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            value = value << bits | ((*taken)[mostFirst ? i : count - 1 - i] & mask);
        }
        return value;
    }

    Bytes rest_;
};

}  // namespace tavlo
