#include "platform/Utf8.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace tavlo {

namespace {
struct Form {
    unsigned mask, lead;  // the lead byte's fixed bits
    char32_t least;       // smaller values are overlong
};
constexpr std::array<Form, 3> longForms{{
    {0xE0, 0xC0, 0x80},
    {0xF0, 0xE0, 0x800},
    {0xF8, 0xF0, 0x10000},
}};

constexpr unsigned byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

CodePoint longCodePoint(std::string_view text) {
    const unsigned lead = byteAt(text, 0);
    for (std::size_t i = 0; i < longForms.size(); ++i) {
        const Form& form = longForms[i];
        if ((lead & form.mask) != form.lead) continue;
        const std::size_t length = i + 2;
        if (text.size() < length) return {};
        char32_t value = lead & ~form.mask;
        for (std::size_t at = 1; at < length; ++at) {
            if ((byteAt(text, at) & 0xC0U) != 0x80) return {};
            value = value << 6U | (byteAt(text, at) & 0x3FU);
        }
        const bool surrogate = value >= 0xD800 && value < 0xE000;
        if (value < form.least || surrogate || value > 0x10FFFF) return {};
        return {value, length, true};
    }
    return {};
}

bool isAsciiWord(std::string_view text) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), sizeof word);
    return (word & 0x8080808080808080U) == 0;
}
}  // namespace

CodePoint firstCodePoint(std::string_view text) {
    const unsigned lead = byteAt(text, 0);
    if (lead < 0x80) return {lead, 1, true};
    return longCodePoint(text);
}

bool isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        if (text.size() >= 8 && isAsciiWord(text)) {
            text.remove_prefix(8);
            continue;
        }
        const CodePoint next = firstCodePoint(text);
        if (!next.valid) return false;
        text.remove_prefix(next.length);
    }
    return true;
}

std::string_view utf8Head(std::string_view text, std::size_t most) {
    if (text.size() <= most) return text;
    while (most > 0 && (byteAt(text, most) & 0xC0U) == 0x80) --most;
    return text.substr(0, most);
}

void appendUtf8(std::string& out, char32_t point) {
    const auto tail = [&](unsigned shift) {
        out += static_cast<char>(0x80U | ((point >> shift) & 0x3FU));
    };
    if (point < 0x80) {
        out += static_cast<char>(point);
    } else if (point < 0x800) {
        out += static_cast<char>(0xC0U | point >> 6U);
        tail(0);
    } else if (point < 0x10000) {
        out += static_cast<char>(0xE0U | point >> 12U);
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0U | point >> 18U);
        tail(12);
        tail(6);
        tail(0);
    }
}

}  // namespace tavlo
