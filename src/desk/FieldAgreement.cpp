#include "desk/FieldAgreement.h"

#include <algorithm>

#include "core/TextCase.h"
#include "platform/PlainText.h"
#include "platform/Utf8.h"
#include "tags/Genre.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::size_t blockText = 30, blockComment = 28;

// Programs put the plain letter for one with a mark, and plain signs for printers' ones; for
// letters of another alphabet there is only a sign that something is missing.
bool mayStandFor(char byte, char32_t point) {
    constexpr char32_t lastLatin = 0x24F;
    constexpr char32_t firstSign = 0x2000;
    constexpr char32_t lastSign = 0x206F;
    const bool isNear = point <= lastLatin || (point >= firstSign && point <= lastSign);
    const bool isAscii = static_cast<unsigned char>(byte) < 0x80;
    return byte == '?' || byte == '_' || (isNear && isAscii);
}

// Whether a block's field is as much of the text as has room in `width` bytes of the code page.
bool isCutOf(std::string_view field, std::string_view text, std::size_t width,
             const CodePage& ansi) {
    std::string bytes = ansi.fromUtf8(field).bytes;
    bytes.resize(std::max(width, bytes.size()), ' ');
    text = trimBlanks(text);
    std::size_t at = 0;
    while (!text.empty()) {
        const CodePoint point = firstCodePoint(text);
        const auto next = ansi.fromUtf8(text.substr(0, point.length));
        if (at + next.bytes.size() > width) break;
        const bool isSame =
            next.lossy ? mayStandFor(bytes[at], point.value)
                       : std::string_view(bytes).substr(at, next.bytes.size()) == next.bytes;
        if (!isSame) return false;
        at += next.bytes.size();
        text.remove_prefix(point.length);
    }
    return std::string_view(bytes).find_first_not_of(' ', at) == std::string_view::npos;
}

std::string plainLines(std::string text) {
    std::erase(text, '\r');
    return text;
}

bool sameText(std::string_view a, std::string_view b) {
    return plainLines(std::string(trimBlanks(a))) == plainLines(std::string(trimBlanks(b)));
}

bool agreeIn(std::size_t width, const FieldValue& a, const FieldValue& b, const CodePage& ansi) {
    if (sameText(a.text, b.text)) return true;
    if (a.isBlock == b.isBlock) return false;
    return a.isBlock ? isCutOf(a.text, b.text, width, ansi) : isCutOf(b.text, a.text, width, ansi);
}

bool areEqualWhereKnown(int a, int b) {
    return a == 0 || b == 0 || a == b;
}

int countBehindSlash(std::string_view text) {
    const std::size_t slash = text.find('/');
    return slash == std::string_view::npos ? 0 : leadingNumber(text.substr(slash + 1));
}
}  // namespace

bool textsAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi) {
    return agreeIn(blockText, a, b, ansi);
}

bool commentsAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi) {
    return agreeIn(blockText, a, b, ansi) || agreeIn(blockComment, a, b, ansi);
}

bool titlesAgree(const FieldValue& a, const FieldValue& b, const CodePage& ansi) {
    if (textsAgree(a, b, ansi)) return true;
    const auto whole = [](const FieldValue& value, std::string text) {
        return FieldValue{std::move(text), value.record, value.isBlock};
    };
    const bool isSplit = !a.record.GetMix().empty();
    // Where both are split the mix has a row of its own.
    if (isSplit == !b.record.GetMix().empty()) return false;
    const FieldValue& split = isSplit ? a : b;
    const FieldValue& other = isSplit ? b : a;
    const std::string titles[] = {split.record.GetTitleMix(), split.record.GetTitleMixV2()};
    return std::any_of(std::begin(titles), std::end(titles), [&](const std::string& title) {
        return textsAgree(whole(split, title), other, ansi);
    });
}

bool yearsAgree(const FieldValue& a, const FieldValue& b, const CodePage&) {
    return a.text.starts_with(b.text) || b.text.starts_with(a.text);
}

bool numbersAgree(const FieldValue& a, const FieldValue& b, const CodePage&) {
    constexpr int blockNumbers = 256;
    int first = leadingNumber(a.text);
    int second = leadingNumber(b.text);
    if (first == 0 && second == 0) return a.text == b.text;
    if (a.isBlock || b.isBlock) {
        first %= blockNumbers;
        second %= blockNumbers;
    }
    return areEqualWhereKnown(first, second) &&
           areEqualWhereKnown(countBehindSlash(a.text), countBehindSlash(b.text));
}

bool genresAgree(const FieldValue& a, const FieldValue& b, const CodePage&) {
    constexpr std::uint8_t other = 12;
    if (equalsNoCase(a.text, b.text)) return true;
    const std::uint8_t first = genreNumber(a.text);
    const std::uint8_t second = genreNumber(b.text);
    if (first == second) return first != noGenre;
    return (a.isBlock && first == other && second == noGenre) ||
           (b.isBlock && second == other && first == noGenre);
}

bool picturesAgree(const FieldValue& a, const FieldValue& b, const CodePage&) {
    return a.record.AlbumArt.Data == b.record.AlbumArt.Data;
}

}  // namespace tavlo
