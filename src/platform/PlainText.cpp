#include "platform/PlainText.h"

#include <algorithm>

#include "platform/Utf8.h"

namespace tavlo {

namespace {
// A byte of 0x80 to 0x9F that is no UTF-8 is a control character to some terminals.
char32_t seenBy(std::string_view text, const CodePoint& next) {
    return next.valid ? next.value : static_cast<unsigned char>(text[0]);
}

bool isReplaced(char32_t point, std::string_view kept) {
    return isUnseen(point) &&
           (point >= 0x80 || kept.find(static_cast<char>(point)) == std::string_view::npos);
}

constexpr bool isBlank(char32_t point) {
    return point == '\t' || point == '\n' || point == '\r';
}

// The length of the front that is plain ASCII, which most text is.
std::size_t plainSize(std::string_view text) {
    const auto isPlain = [](char c) { return c >= 0x20 && c < 0x7F; };
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isPlain) - text.begin());
}

std::string replaced(std::string_view text, std::string_view kept) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        std::size_t size = plainSize(text);
        if (size == 0) {
            const CodePoint next = firstCodePoint(text);
            size = next.length;
            if (const char32_t point = seenBy(text, next); isReplaced(point, kept)) {
                appendUtf8(out, isBlank(point) ? U' ' : replacementCharacter);
                text.remove_prefix(size);
                continue;
            }
        }
        out.append(text.substr(0, size));
        text.remove_prefix(size);
    }
    return out;
}
}  // namespace

bool hasUnseen(std::string_view text, std::string_view kept) {
    while (true) {
        text.remove_prefix(plainSize(text));
        if (text.empty()) return false;
        const CodePoint next = firstCodePoint(text);
        if (isReplaced(seenBy(text, next), kept)) return true;
        text.remove_prefix(next.length);
    }
}

std::string withoutControls(std::string text) {
    return hasUnseen(text) ? replaced(text, {}) : text;
}

std::string printable(std::string_view text, std::string_view kept) {
    return hasUnseen(text, kept) ? replaced(text, kept) : std::string(text);
}

}  // namespace tavlo
