#pragma once

#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Reads the ID3v2.2, 2.3 or 2.4 tag at the file's start into the record; false where there is
/// none. With `ReadDepth::List` the picture is noted without its bytes and frames that the
/// program does not interpret are passed over.
bool ReadID3v2Tag(File& file, ID3tag& record, const ReadContext& context);

/// What a genre frame's text means: "(17)", "17", "(4)Eurodisco", "Rock", "Unheard Of".
struct GenreText {
    std::uint8_t number = noGenre;
    std::string text;
};
GenreText parseGenreText(std::string_view text);

}  // namespace tavlo
