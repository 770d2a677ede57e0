#pragma once

#include <string>
#include <string_view>

namespace tavlo {

/// UTF-16 as the system's text; a lone surrogate stands as its three-byte form in the result.
std::string utf8FromUtf16(std::u16string_view text);

/// The way back: bytes that are no UTF-8 become U+FFFD, three-byte surrogates become themselves.
std::u16string utf16FromUtf8(std::string_view text);

}  // namespace tavlo
