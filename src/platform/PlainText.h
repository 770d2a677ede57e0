#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace tavlo {

/// Small helpers for UTF-8 text that know case only for the letters A to Z.
constexpr char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowerAscii(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = lowerAscii(c);
    return result;
}

inline bool sameAscii(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
}

/// The text without blanks at both ends.
constexpr std::string_view trimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Whether a code point does something to a terminal or to the order of the text around it instead
/// of being seen: control characters, marks of direction, separators of lines.
constexpr bool isUnseen(char32_t point) {
    return point < 0x20 || (point >= 0x7F && point < 0xA0) || point == 0x61C || point == 0x200E ||
           point == 0x200F || (point >= 0x2028 && point <= 0x202E) ||
           (point >= 0x2066 && point <= 0x2069);
}

/// Whether a text has any such character but those in `kept`.
bool hasUnseen(std::string_view text, std::string_view kept = {});

/// U+FFFD in place of each, a blank in that of tabs and ends of lines: a line that a terminal shows
/// as one.
std::string withoutControls(std::string text);

/// The same of finished output, in which those in `kept` lay it out.
std::string printable(std::string_view text, std::string_view kept);

/// Every occurrence, from the front on, once.
inline void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

/// Cuts the first line off the front; its end, "\n" and any "\r" before it, belongs to neither
/// part.
inline std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    while (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// True for a byte that continues a character, not for one that begins it.
constexpr bool isUtf8Continuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

inline std::size_t characterCount(std::string_view text) {
    return text.size() -
           static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isUtf8Continuation));
}

}  // namespace tavlo
