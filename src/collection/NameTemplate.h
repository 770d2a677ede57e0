#pragma once

#include <string>
#include <string_view>

#include "core/PathText.h"
#include "core/Transliteration.h"
#include "tags/ID3tag.h"

namespace tavlo {

struct NameRules {
    PathStyle style = nativePathStyle();
    Transliteration transliteration = Transliteration::Phonetic;
    std::size_t extensionSize = 0;  ///< bytes that a name leaves free for its extension
};

/// A file's new name by its tags, without extension, with "\" between folders: %A artist, %T title,
/// %M mix, %Z title with mix, %Y year, %L and %C album, %G genre, %N3 and %N track number in three
/// and two digits, %BS and %B bit rate (%BS a multiple of 32), %R transliterates, %W transliterates
/// to plain ASCII. One pass a placeholder, in this order: a value may hold a later one.
std::string nameByTemplate(const ID3tag& record, std::string_view nameTemplate,
                           const NameRules& rules);

/// The templates of the numbered formats; 6 stands for the free template, an unknown number for 2.
std::string_view formatTemplate(int format, std::string_view freeTemplate);

}  // namespace tavlo
