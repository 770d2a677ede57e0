#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavlo {

/// Case of Latin, Greek and Cyrillic letters, the same on every system and in every locale. Bytes
/// that are no UTF-8 stay as they are.
char32_t lowerCase(char32_t point);
char32_t upperCase(char32_t point);
std::string lowerCase(std::string_view text);
std::string upperCase(std::string_view text);

/// A capital at the front of every word, all else in lower case; a word begins behind a blank, a
/// bracket, a hyphen and the like, not behind an apostrophe.
std::string capitalizeWords(std::string_view text);
/// A capital at the front, all else in lower case.
std::string capitalizeFirst(std::string_view text);

bool equalsNoCase(std::string_view a, std::string_view b);

/// A hash that is equal for texts that `equalsNoCase` holds equal.
std::uint64_t hashNoCase(std::string_view text);

/// The order in which people expect names: without case, digits as numbers ("2" before "10").
/// Texts that differ only in case or leading zeros are ordered by their bytes.
std::strong_ordering compareNatural(std::string_view a, std::string_view b);

/// Bytes whose plain order is that of `compareNatural`, but for what only differs in case or
/// leading zeros: they are equal. For sorting many texts. Appended to `key`.
void appendNaturalKey(std::string& key, std::string_view text);

/// The text in lower case, appended; made for searching many texts.
void appendLowerCase(std::string& out, std::string_view text);

}  // namespace tavlo
