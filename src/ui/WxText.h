#pragma once

#include <wx/string.h>

#include <string>
#include <string_view>

namespace tavlo {

/// UTF-8 as the toolkit's text; bytes that are no UTF-8 are shown as U+FFFD, so what a person
/// sees is never a name to open a file by.
wxString toWx(std::string_view text);

/// The toolkit's text as UTF-8.
std::string fromWx(const wxString& text);

}  // namespace tavlo
