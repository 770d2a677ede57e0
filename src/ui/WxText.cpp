#include "ui/WxText.h"

#include "platform/Utf8.h"

namespace tavlo {

wxString toWx(std::string_view text) {
    if (isValidUtf8(text)) return wxString::FromUTF8(text.data(), text.size());
    std::string shown;
    while (!text.empty()) {
        const CodePoint next = firstCodePoint(text);
        appendUtf8(shown, next.value);
        text.remove_prefix(next.length);
    }
    return wxString::FromUTF8(shown.data(), shown.size());
}

std::string fromWx(const wxString& text) {
    return text.utf8_string();
}

}  // namespace tavlo
