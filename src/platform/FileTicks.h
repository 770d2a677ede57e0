#pragma once

#include <cstdint>

namespace tavlo {

// A file's time as one number in the system's own ticks. Wherever it comes from it has to be the
// same one, for times are compared.

/// Of a time in seconds and nanoseconds.
constexpr std::int64_t nanosecondTicks(std::int64_t seconds, std::int64_t nanoseconds) {
    return seconds * 1'000'000'000 + nanoseconds;
}

/// Of a Windows time in two halves.
constexpr std::int64_t halvedTicks(std::uint32_t high, std::uint32_t low) {
    return static_cast<std::int64_t>(std::uint64_t{high} << 32U | low);
}

}  // namespace tavlo
