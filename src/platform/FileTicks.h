#pragma once

#include <array>
#include <cstdint>
#include <string>

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

/// "2024-05-03 14:05:09" in the local time; empty where the number is no time.
std::string localTimeText(std::int64_t ticks);

/// The same of its parts: month, day, hour, minute, second.
std::string timeText(int year, const std::array<int, 5>& parts);

}  // namespace tavlo
