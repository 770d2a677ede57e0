#include "core/DecodedText.h"

#include "core/PathText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
// What a code page gives for a byte that it does not have; no text has a control of that kind.
bool isUndecoded(char32_t point) {
    constexpr char32_t firstControl = 0x80, lastControl = 0x9F;
    return point == replacementCharacter || (point >= firstControl && point <= lastControl);
}
}  // namespace

std::optional<std::string> decodedText(std::string_view bytes, const CodePage& ansi) {
    if (isValidUtf8(bytes)) return std::string(bytes);
    // There only half a character can be in the way, which no code page knows.
    if (nativePathStyle() == PathStyle::Windows) return std::nullopt;
    std::string text = ansi.toUtf8(bytes);
    for (std::string_view rest = text; !rest.empty();) {
        const CodePoint point = firstCodePoint(rest);
        if (isUndecoded(point.value)) return std::nullopt;
        rest.remove_prefix(point.length);
    }
    return text;
}

}  // namespace tavlo
