#pragma once

#include <cstdint>
#include <string_view>

namespace tavlo {

inline constexpr int lastGenre = 147;
inline constexpr std::uint8_t noGenre = 255;

/// The number of a genre's name, without case and outer blanks; `noGenre` for any other name.
std::uint8_t genreNumber(std::string_view name);

/// The name of genre 0 to `lastGenre`; empty for any other number.
std::string_view genreName(int number);

}  // namespace tavlo
