#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "platform/CodePage.h"

namespace tavlo {

/// What CodePage asks of the system: the upper half of a single-byte page, U+FFFD where a byte is
/// undefined; nothing when the system does not know the page.
std::optional<std::array<char16_t, 128>> systemUpperHalf(int number);

/// True when the system converts this multi-byte page.
bool systemHasMultiByte(int number);

/// A multi-byte page as UTF-8; bad bytes become U+FFFD.
std::string systemDecode(int number, std::string_view bytes);

/// UTF-8 as a multi-byte page; "?" for what the page cannot hold.
CodePage::Encoded systemEncode(int number, std::string_view text);

}  // namespace tavlo
