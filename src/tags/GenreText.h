#pragma once

#include <string>
#include <string_view>

#include "tags/Genre.h"

namespace tavlo {

/// What a genre frame's text means: "(17)", "17", "(4)Eurodisco", "Rock", "((Live)" (ID3v2.3.0,
/// 4.2.1, TCON).
struct GenreText {
    std::uint8_t number = noGenre;
    std::string text;
    bool operator==(const GenreText&) const = default;
};
GenreText parseGenreText(std::string_view text);

/// The text that `parseGenreText` understands as this genre; empty for none.
std::string formatGenreText(std::uint8_t number, std::string_view text);

}  // namespace tavlo
