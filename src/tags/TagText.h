#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/ByteCursor.h"
#include "platform/CodePage.h"
#include "platform/PlainText.h"

namespace tavlo {

/// The number that a text begins with, blanks before it skipped; 0 where there is none or it does
/// not fit.
int leadingNumber(std::string_view text);

/// A fixed-width field as ID3v1 has it: decoded, trimmed, cut at the first NUL, trimmed again.
std::string fixedWidthText(Bytes field, const CodePage& ansi);

/// Text that ought to be UTF-8: taken so when it is, else decoded by the code page.
std::string utf8OrAnsi(std::string_view bytes, const CodePage& ansi);

/// Several values that stand in one text, with NUL between them, as one text with "; ".
std::string joinValues(std::string text);

/// The encoding byte of an ID3v2 text (ID3v2.4.0 structure, section 4).
enum class TextEncoding : std::uint8_t { Latin1 = 0, Utf16 = 1, Utf16BigEndian = 2, Utf8 = 3 };

/// Bytes of one unit: NUL is one byte or two.
std::size_t unitSize(TextEncoding encoding);

/// Decodes a text; 8-bit text goes through the code page, UTF-16 without a mark counts as
/// little-endian unless the encoding says otherwise. NULs inside stay.
std::string decodeText(TextEncoding encoding, Bytes text, const CodePage& ansi);

/// Little-endian UTF-16 with a mark in front of it and of each further value behind a NUL.
std::string utf16Text(std::string_view text);

/// Takes the text up to its NUL (an aligned one in UTF-16) and the NUL itself.
Bytes takeTerminated(ByteCursor& cursor, TextEncoding encoding);

}  // namespace tavlo
