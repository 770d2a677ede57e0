#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavlo {

/// What stands for a byte or a unit that is no text.
inline constexpr char32_t replacementCharacter = 0xFFFD;

struct CodePoint {
    char32_t value = replacementCharacter;
    std::size_t length = 1;  ///< bytes taken
    bool valid = false;
};

/// The first code point of a text that is not empty. A byte that begins none (overlong forms,
/// surrogates and values above U+10FFFF included) counts as one U+FFFD of length 1, not valid.
CodePoint firstCodePoint(std::string_view text);

bool isValidUtf8(std::string_view text);

/// The front of a text, at most so many bytes, cut between two characters.
std::string_view utf8Head(std::string_view text, std::size_t most);

/// Appends a code point; a lone surrogate gets its three-byte form.
void appendUtf8(std::string& out, char32_t point);

}  // namespace tavlo
