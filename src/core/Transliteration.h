#pragma once

#include <string>
#include <string_view>

namespace tavlo {

enum class Transliteration {
    Gost,     ///< GOST 7.79-2000, system B, with the letters of all its languages
    Phonetic  ///< plain letters as a reader of English would say them
};

/// Cyrillic letters in Latin ones; everything else stays.
std::string toLatin(std::string_view text, Transliteration table);

/// Back: the longest run of Latin letters that stands for one Cyrillic letter first.
std::string toCyrillic(std::string_view text, Transliteration table);

}  // namespace tavlo
