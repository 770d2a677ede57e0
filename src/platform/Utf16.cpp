#include "platform/Utf16.h"

#include "platform/Utf8.h"

namespace tavlo {

namespace {
constexpr bool isHigh(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLow(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

// A surrogate in its three-byte form, ED A0..BF 80..BF; 0 when `text` does not begin with one.
char32_t leadingSurrogate(std::string_view text) {
    if (text.size() < 3 || text[0] != '\xED') return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    const auto third = static_cast<unsigned char>(text[2]);
    if (second < 0xA0 || second > 0xBF || (third & 0xC0U) != 0x80) return 0;
    return 0xD000U | (second & 0x3FU) << 6U | (third & 0x3FU);
}
}  // namespace

std::string utf8FromUtf16(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = text[i];
        if (isHigh(point) && i + 1 < text.size() && isLow(text[i + 1])) {
            point = 0x10000U + ((point - 0xD800U) << 10U) + (text[++i] - 0xDC00U);
        }
        appendUtf8(out, point);
    }
    return out;
}

std::u16string utf16FromUtf8(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    while (!text.empty()) {
        if (const char32_t surrogate = leadingSurrogate(text)) {
            out += static_cast<char16_t>(surrogate);
            text.remove_prefix(3);
            continue;
        }
        const CodePoint next = firstCodePoint(text);
        if (next.value >= 0x10000) {
            out += static_cast<char16_t>(0xD800U + ((next.value - 0x10000U) >> 10U));
            out += static_cast<char16_t>(0xDC00U + (next.value & 0x3FFU));
        } else {
            out += static_cast<char16_t>(next.value);
        }
        text.remove_prefix(next.length);
    }
    return out;
}

}  // namespace tavlo
