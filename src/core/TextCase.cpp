#include "core/TextCase.h"

#include <algorithm>
#include <array>

#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
// A run of capitals; `distance` leads to the small letter. With `paired` capitals and small
// letters take turns, the capital first.
struct CaseRange {
    char32_t first, last;
    std::int32_t distance;
    bool paired;
};

constexpr std::array<CaseRange, 23> caseRanges{{
    {'A', 'Z', 32, false},     {0xC0, 0xD6, 32, false},     {0xD8, 0xDE, 32, false},
    {0x100, 0x12F, 1, true},   {0x132, 0x137, 1, true},     {0x139, 0x148, 1, true},
    {0x14A, 0x177, 1, true},   {0x178, 0x178, -121, false}, {0x179, 0x17E, 1, true},
    {0x218, 0x21B, 1, true},   {0x386, 0x386, 38, false},   {0x388, 0x38A, 37, false},
    {0x38C, 0x38C, 64, false}, {0x38E, 0x38F, 63, false},   {0x391, 0x3A1, 32, false},
    {0x3A3, 0x3AB, 32, false}, {0x400, 0x40F, 80, false},   {0x410, 0x42F, 32, false},
    {0x460, 0x481, 1, true},   {0x48A, 0x4BF, 1, true},     {0x4D0, 0x52F, 1, true},
    {0x1E00, 0x1E95, 1, true}, {0x1EA0, 0x1EFF, 1, true},
}};

constexpr bool isCapital(const CaseRange& range, char32_t point) {
    return point >= range.first && point <= range.last &&
           (!range.paired || (point - range.first) % 2 == 0);
}

constexpr char32_t moved(char32_t point, std::int32_t distance) {
    return static_cast<char32_t>(static_cast<std::int32_t>(point) + distance);
}

struct Folded {
    char32_t value;
    std::size_t length;
};

// A byte that is no text is a value of its own beyond all letters.
Folded firstFoldedBeyondAscii(std::string_view text) {
    const CodePoint next = firstCodePoint(text);
    if (!next.valid) return {0x110000U + static_cast<unsigned char>(text[0]), 1};
    return {lowerCase(next.value), next.length};
}

// The first letter in lower case.
inline Folded firstFolded(std::string_view text) {
    const auto byte = static_cast<unsigned char>(text[0]);
    if (byte >= 0x80) return firstFoldedBeyondAscii(text);
    return {byte >= 'A' && byte <= 'Z' ? byte + 32U : byte, 1};
}

template <typename Convert>
std::string converted(std::string_view text, Convert convert) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const CodePoint next = firstCodePoint(text);
        if (next.valid) {
            appendUtf8(out, convert(next.value));
        } else {
            out += text[0];
        }
        text.remove_prefix(next.length);
    }
    return out;
}

bool startsWithDigit(std::string_view text) {
    return !text.empty() && text[0] >= '0' && text[0] <= '9';
}

// Takes a number off the text's front and gives its digits without leading zeros.
std::string_view takeNumber(std::string_view& text) {
    while (text.starts_with('0')) text.remove_prefix(1);
    std::size_t length = 0;
    while (startsWithDigit(text.substr(length))) ++length;
    const std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    return digits;
}

// Takes the number off both texts and compares it by value, however many digits it has.
std::strong_ordering compareNumbers(std::string_view& a, std::string_view& b) {
    const std::string_view first = takeNumber(a);
    const std::string_view second = takeNumber(b);
    if (first.size() != second.size()) return first.size() <=> second.size();
    return first.compare(second) <=> 0;
}

// How many bytes two texts begin with in common, short of a letter or number that is cut there.
std::size_t commonFront(std::string_view a, std::string_view b) {
    const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    auto front = static_cast<std::size_t>(differ.first - a.begin());
    const auto cutsLetter = [&](std::string_view text) {
        return front < text.size() && isUtf8Continuation(text[front]);
    };
    while (front > 0 && (cutsLetter(a) || cutsLetter(b))) --front;
    while (front > 0 && startsWithDigit(a.substr(front - 1))) --front;
    return front;
}

// In bytes of which the last one is not full, so that a longer length comes behind a shorter one.
void appendLength(std::string& key, std::size_t length) {
    constexpr std::size_t full = 255;
    key.append(length / full, '\xFF');
    key += static_cast<char>(length % full);
}

std::strong_ordering compareFolded(std::string_view a, std::string_view b) {
    const std::size_t front = commonFront(a, b);
    a.remove_prefix(front);
    b.remove_prefix(front);
    while (!a.empty() && !b.empty()) {
        if (startsWithDigit(a) && startsWithDigit(b)) {
            if (const auto order = compareNumbers(a, b); std::is_neq(order)) return order;
            continue;
        }
        const Folded first = firstFolded(a);
        const Folded second = firstFolded(b);
        if (first.value != second.value) return first.value <=> second.value;
        a.remove_prefix(first.length);
        b.remove_prefix(second.length);
    }
    return a.size() <=> b.size();
}
}  // namespace

char32_t lowerCase(char32_t point) {
    if (point < 0x80) return point >= 'A' && point <= 'Z' ? point + 32 : point;
    constexpr char32_t firstSmallCyrillic = 0x430;
    constexpr char32_t lastSmallCyrillic = 0x45F;
    if (point >= firstSmallCyrillic && point <= lastSmallCyrillic) return point;  // mostly so
    for (const CaseRange& range : caseRanges) {
        if (isCapital(range, point)) return moved(point, range.distance);
    }
    return point;
}

char32_t upperCase(char32_t point) {
    for (const CaseRange& range : caseRanges) {
        const char32_t capital = moved(point, -range.distance);
        if (isCapital(range, capital)) return capital;
    }
    return point;
}

std::string lowerCase(std::string_view text) {
    return converted(text, [](char32_t point) { return lowerCase(point); });
}

std::string upperCase(std::string_view text) {
    return converted(text, [](char32_t point) { return upperCase(point); });
}

std::string capitalizeWords(std::string_view text) {
    bool begins = true;
    return converted(text, [&](char32_t point) {
        const char32_t letter = begins ? upperCase(point) : lowerCase(point);
        begins = std::u32string_view(U" \t_-–—.,;:/\\&+()[]{}<>\"«»“”!?").find(point) !=
                 std::u32string_view::npos;
        return letter;
    });
}

std::string capitalizeFirst(std::string_view text) {
    bool begins = true;
    return converted(text, [&](char32_t point) {
        const char32_t letter = begins ? upperCase(point) : lowerCase(point);
        begins = false;
        return letter;
    });
}

bool equalsNoCase(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        const Folded first = firstFolded(a);
        const Folded second = firstFolded(b);
        if (first.value != second.value) return false;
        a.remove_prefix(first.length);
        b.remove_prefix(second.length);
    }
    return a.empty() && b.empty();
}

std::uint64_t hashNoCase(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;  // FNV-1a over code points
    while (!text.empty()) {
        const Folded next = firstFolded(text);
        hash = (hash ^ next.value) * 0x100000001B3U;
        text.remove_prefix(next.length);
    }
    return hash ^ hash >> 32U;
}

std::strong_ordering compareNatural(std::string_view a, std::string_view b) {
    if (const auto order = compareFolded(a, b); std::is_neq(order)) return order;
    return a.compare(b) <=> 0;
}

void appendNaturalKey(std::string& key, std::string_view text) {
    constexpr char32_t noText = 0x110000;  // where bytes that are no text begin
    while (!text.empty()) {
        if (startsWithDigit(text)) {
            const std::string_view digits = takeNumber(text);
            key += '0';
            appendLength(key, digits.size());
            key += digits;
            continue;
        }
        const Folded next = firstFolded(text);
        if (next.value < 0x80) {
            key += static_cast<char>(next.value);
        } else if (next.value < noText) {
            appendUtf8(key, next.value);
        } else {
            key += '\xF8';
            key += static_cast<char>(next.value - noText);
        }
        text.remove_prefix(next.length);
    }
}

// Plain letters and capitals of Russian are so many of all letters that they go without tables.
void appendLowerCase(std::string& out, std::string_view text) {
    const std::size_t start = out.size();
    out.resize(start + text.size());
    char* to = out.data() + start;
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text[0]);
        if (first < 0x80) {
            *to++ = lowerAscii(text[0]);
            text.remove_prefix(1);
            continue;
        }
        const auto second = static_cast<unsigned char>(text.size() > 1 ? text[1] : 0);
        const bool isSmall = (first == 0xD0 && second >= 0xB0 && second <= 0xBF) ||
                             (first == 0xD1 && second >= 0x80 && second <= 0x8F);
        if (isSmall) {
            *to++ = text[0];
            *to++ = text[1];
            text.remove_prefix(2);
            continue;
        }
        const CodePoint next = firstCodePoint(text);
        std::string letter(text.substr(0, next.length));
        if (next.valid) {
            letter.clear();
            appendUtf8(letter, lowerCase(next.value));
        }
        // A small letter that is longer than its capital moves the rest on.
        if (letter.size() > next.length) {
            const auto done = static_cast<std::size_t>(to - out.data());
            out.resize(out.size() + letter.size() - next.length);
            to = out.data() + done;
        }
        to = std::copy(letter.begin(), letter.end(), to);
        text.remove_prefix(next.length);
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
}

}  // namespace tavlo
