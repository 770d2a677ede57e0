#include "platform/CodePage.h"

#include <algorithm>
#include <cstring>

#include "platform/CodePageSystem.h"
#include "platform/Utf16.h"
#include "platform/Utf8.h"

namespace tavlo {
namespace {

constexpr int fallbackPage = 1252;
constexpr int utf8Page = 65001;
constexpr char16_t replacement = 0xFFFD;
constexpr std::array multiBytePages{932, 936, 949, 950};

// Bytes 0x80..0x9F of page 1252; above them the page equals Unicode. Built in so that the fallback
// never depends on what the system has installed.
constexpr std::array<char16_t, 32> westernControls{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::array<char16_t, 128> westernUpperHalf() {
    std::array<char16_t, 128> half{};
    for (std::size_t i = 0; i < half.size(); ++i)
        half[i] = i < westernControls.size() ? westernControls[i] : static_cast<char16_t>(0x80 + i);
    return half;
}

std::string repairedUtf8(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const CodePoint next = firstCodePoint(bytes);
        appendUtf8(text, next.value);
        bytes.remove_prefix(next.length);
    }
    return text;
}

std::size_t asciiLength(std::string_view bytes) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t at = 0;
    for (std::uint64_t word = 0; at + sizeof word <= bytes.size(); at += sizeof word) {
        std::memcpy(&word, bytes.data() + at, sizeof word);
        if ((word & highBits) != 0) break;
    }
    while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) < 0x80) ++at;
    return at;
}

bool isMultiByte(int number) {
    return number == utf8Page ||
           (std::ranges::find(multiBytePages, number) != multiBytePages.end() &&
            systemHasMultiByte(number));
}

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

}  // namespace

CodePage::CodePage(int number) : number_(number) {
    if (isMultiByte(number)) {
        singleByte_ = false;
        return;
    }
    auto half = number == fallbackPage ? std::nullopt : systemUpperHalf(number);
    if (!half) number_ = fallbackPage;
    buildTables(half ? *half : westernUpperHalf());
}

void CodePage::buildTables(const std::array<char16_t, 128>& upperHalf) {
    for (std::size_t i = 0; i < upperHalf.size(); ++i) {
        char16_t character = upperHalf[i];
        if (character == replacement && i < 0x20) character = static_cast<char16_t>(0x80 + i);
        const std::string utf8 = utf8FromUtf16({&character, 1});
        glyphs_[i].length = static_cast<std::uint8_t>(utf8.copy(glyphs_[i].utf8.data(), 3));
        reverse_[i] = {character, static_cast<char>(0x80 + i)};
    }
    std::ranges::stable_sort(reverse_, {}, &Reverse::character);
}

std::string CodePage::toUtf8(std::string_view bytes) const {
    const std::size_t ascii = asciiLength(bytes);
    if (ascii == bytes.size()) return std::string(bytes);
    if (number_ == utf8Page) return repairedUtf8(bytes);
    if (!singleByte_) return systemDecode(number_, bytes);
    std::string text;
    text.reserve(bytes.size() * 2);
    text.append(bytes.substr(0, ascii));
    for (const char byte : bytes.substr(ascii)) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80) {
            text.push_back(byte);
        } else {
            const Glyph& glyph = glyphs_[value - 0x80U];
            text.append(glyph.utf8.data(), glyph.length);
        }
    }
    return text;
}

CodePage::Encoded CodePage::fromUtf8(std::string_view text) const {
    if (asciiLength(text) == text.size()) return {std::string(text), false};
    if (number_ == utf8Page) return {repairedUtf8(text), false};
    if (!singleByte_) return systemEncode(number_, text);
    Encoded result;
    const std::u16string units = utf16FromUtf8(text);
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] < 0x80) {
            result.bytes.push_back(static_cast<char>(units[i]));
            continue;
        }
        const auto* const found =
            std::ranges::lower_bound(reverse_, units[i], {}, &Reverse::character);
        if (units[i] != replacement && found != reverse_.end() && found->character == units[i]) {
            result.bytes.push_back(found->byte);
        } else {
            result.bytes.push_back('?');
            result.lossy = true;
            if (isHighSurrogate(units[i]) && i + 1 < units.size()) ++i;
        }
    }
    return result;
}

}  // namespace tavlo
