#pragma once

#include <string>

#include "platform/CodePage.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// A field as one tag tells it.
struct FieldValue {
    std::string text;  ///< not empty
    const ID3tag& record;
    bool isBlock = false;  ///< of an ID3v1 block, with room for 30 bytes of the code page
};

// Whether two tags of a file mean the same; kinds of fields differ in what counts as that.

bool textsAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi);
/// ID3v1 has room for 28 bytes where a track number stands behind it.
bool commentsAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi);
/// A title with its mix behind it, as tags have it that do not split them, is the same as the two
/// apart, or as the title alone.
bool titlesAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi);
/// "2007" and "2007-05-03" are the same.
bool yearsAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi);
/// "3", "03" and "3/12" are the same; ID3v1 keeps the lowest 8 bits.
bool numbersAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi);
/// "Other" of ID3v1 stands for every genre that its list lacks.
bool genresAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi);
bool picturesAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi);

}  // namespace tavlo
