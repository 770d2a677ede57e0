#pragma once

#include <span>
#include <string>
#include <string_view>

#include "collection/TagColumns.h"
#include "core/Transliteration.h"

namespace tavlo {

/// What can be done to a column of many rows at once. An empty cell stays empty.
enum class LetterCase {
    EveryWord,  ///< a capital at the front of every word
    FirstOnly   ///< one at the front of the text, small letters behind it
};
void changeCase(std::span<ID3tag> rows, const TagColumn& column, LetterCase choice);
void replaceText(std::span<ID3tag> rows, const TagColumn& column, std::string_view from,
                 std::string_view to);
void transliterate(std::span<ID3tag> rows, const TagColumn& column, Transliteration table,
                   bool back);
/// Numbers the rows from `first` on, in at least two digits.
void numberRows(std::span<ID3tag> rows, int first);

/// The track number that a file name tells, in two digits: "Track07.mp3", "07 - Song.mp3",
/// "007_Song.mp3"; empty for any other name.
std::string numberFromFileName(std::string_view name);

}  // namespace tavlo
