#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
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

/// With zeros in front where it has fewer characters than `least`.
inline std::string paddedNumber(std::int64_t number, std::size_t least) {
    std::string text = std::to_string(number);
    if (text.size() < least) text.insert(0, least - text.size(), '0');
    return text;
}

}  // namespace tavlo
