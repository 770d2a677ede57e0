#pragma once

#include <charconv>
#include <optional>
#include <string_view>

namespace tavlo {

/// The whole text as a decimal number, with or without a sign; nothing when it is none or too
/// large.
inline std::optional<int> parseInteger(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    int number = 0;
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc() || end != last) return std::nullopt;
    return number;
}

}  // namespace tavlo
