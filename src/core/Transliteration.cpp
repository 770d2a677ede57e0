#include "core/Transliteration.h"

#include <algorithm>
#include <array>
#include <span>

#include "core/TextCase.h"
#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
struct Letter {
    char32_t cyrillic;  // small
    std::string_view latin;
    bool leadsBack = true;
};

// A letter's first row counts in both directions, further ones only back.
constexpr auto gostLetters = std::to_array<Letter>({
    {U'а', "a"},         {U'б', "b"},         {U'в', "v"},         {U'г', "g"},
    {U'д', "d"},         {U'е', "e"},         {U'ё', "yo"},        {U'ж', "zh"},
    {U'з', "z"},         {U'и', "i"},         {U'й', "j"},         {U'к', "k"},
    {U'л', "l"},         {U'м', "m"},         {U'н', "n"},         {U'о', "o"},
    {U'п', "p"},         {U'р', "r"},         {U'с', "s"},         {U'т', "t"},
    {U'у', "u"},         {U'ф', "f"},         {U'х', "x"},         {U'ц', "cz"},
    {U'ч', "ch"},        {U'ш', "sh"},        {U'щ', "shh"},       {U'ъ', "``"},
    {U'ы', "y`"},        {U'ь', "`"},         {U'э', "e`"},        {U'ю', "yu"},
    {U'я', "ya"},        {U'і', "i"},         {U'ї', "yi"},        {U'є', "ye"},
    {U'ґ', "g`"},        {U'ў', "u`"},        {U'ц', "c"},         {U'ѓ', "g`", false},
    {U'ќ', "k`", false}, {U'љ', "l`", false}, {U'њ', "n`", false}, {U'џ', "dh", false},
    {U'ѕ', "z`", false}, {U'ѣ', "ye", false}, {U'ѳ', "fh", false}, {U'ѵ', "yh", false},
    {U'ј', "j", false},  {U'ђ', "dj", false}, {U'ћ', "ch", false},
});

constexpr auto phoneticLetters = std::to_array<Letter>({
    {U'а', "a"},         {U'б', "b"},         {U'в', "v"},         {U'г', "g"},
    {U'д', "d"},         {U'е', "e"},         {U'ё', "yo"},        {U'ж', "zh"},
    {U'з', "z"},         {U'и', "i"},         {U'й', "y"},         {U'к', "k"},
    {U'л', "l"},         {U'м', "m"},         {U'н', "n"},         {U'о', "o"},
    {U'п', "p"},         {U'р', "r"},         {U'с', "s"},         {U'т', "t"},
    {U'у', "u"},         {U'ф', "f"},         {U'х', "kh"},        {U'ц', "ts"},
    {U'ч', "ch"},        {U'ш', "sh"},        {U'щ', "sch"},       {U'ъ', ""},
    {U'ы', "y"},         {U'ь', ""},          {U'э', "e"},         {U'ю', "yu"},
    {U'я', "ya"},        {U'і', "i"},         {U'ї', "yi"},        {U'є', "ye"},
    {U'ґ', "g"},         {U'ў', "u"},         {U'х', "h"},         {U'к', "c"},
    {U'к', "q"},         {U'в', "w"},         {U'й', "j"},         {U'ѓ', "g", false},
    {U'ќ', "k", false},  {U'љ', "lj", false}, {U'њ', "nj", false}, {U'џ', "dz", false},
    {U'ѕ', "dz", false}, {U'ѣ', "e", false},  {U'ѳ', "f", false},  {U'ѵ', "i", false},
    {U'ј', "y", false},  {U'ђ', "dj", false}, {U'ћ', "c", false},
});

std::span<const Letter> lettersOf(Transliteration table) {
    if (table == Transliteration::Gost) return gostLetters;
    return phoneticLetters;
}

bool isCapital(char32_t point) {
    return lowerCase(point) != point;
}

bool isSmall(char32_t point) {
    return upperCase(point) != point;
}

const Letter* findLetter(char32_t point, Transliteration table) {
    for (const Letter& letter : lettersOf(table)) {
        if (letter.cyrillic == lowerCase(point)) return &letter;
    }
    return nullptr;
}

// The letter at the front; the replacement character stands for the end and for what is no text.
char32_t frontOf(std::string_view text) {
    return text.empty() ? replacementCharacter : firstCodePoint(text).value;
}

// GOST writes "c" in front of i, e, y and j, "cz" elsewhere.
std::string_view latinOf(const Letter& letter, char32_t next, Transliteration table) {
    const Letter* following = findLetter(next, table);
    const bool isSoft =
        following != nullptr && !following->latin.empty() &&
        std::string_view("ieyj").find(following->latin[0]) != std::string_view::npos;
    return letter.latin == "cz" && isSoft ? "c" : letter.latin;
}

std::string capitalized(std::string_view latin, bool whole) {
    const std::size_t first = whole ? latin.size() : std::min<std::size_t>(latin.size(), 1);
    return upperCase(latin.substr(0, first)) + std::string(latin.substr(first));
}

// The row whose Latin letters the text begins with; the longest one.
const Letter* findLatin(std::string_view text, Transliteration table) {
    const Letter* best = nullptr;
    for (const Letter& letter : lettersOf(table)) {
        const std::size_t size = letter.latin.size();
        if (!letter.leadsBack || size == 0 || text.size() < size ||
            (best != nullptr && best->latin.size() >= size)) {
            continue;
        }
        if (sameAscii(text.substr(0, size), letter.latin)) best = &letter;
    }
    return best;
}

bool isVowel(char32_t point) {
    return std::u32string_view(U"аеёиоуыэюяіїє").find(lowerCase(point)) !=
           std::u32string_view::npos;
}
}  // namespace

std::string toLatin(std::string_view text, Transliteration table) {
    std::string out;
    char32_t before = replacementCharacter;
    while (!text.empty()) {
        const CodePoint point = firstCodePoint(text);
        const std::string_view bytes = text.substr(0, point.length);
        text.remove_prefix(point.length);
        const char32_t next = frontOf(text);
        const Letter* letter = point.valid ? findLetter(point.value, table) : nullptr;
        if (letter == nullptr) {
            out += bytes;
        } else if (!isCapital(point.value)) {
            out += latinOf(*letter, next, table);
        } else {
            // A word in capitals stays one.
            const bool endsWord = findLetter(next, table) == nullptr;
            const bool isShouted = isCapital(next) || (endsWord && isCapital(before));
            out += capitalized(latinOf(*letter, next, table), isShouted);
        }
        before = point.value;
    }
    return out;
}

std::string toCyrillic(std::string_view text, Transliteration table) {
    std::string out;
    char32_t before = replacementCharacter;
    while (!text.empty()) {
        const Letter* letter = findLatin(text, table);
        const CodePoint point = firstCodePoint(text);
        if (letter == nullptr) {
            out += text.substr(0, point.length);
            text.remove_prefix(point.length);
            before = point.value;
            continue;
        }
        char32_t small = letter->cyrillic;
        if (letter->latin == "y" && !isVowel(before)) small = U'ы';
        text.remove_prefix(letter->latin.size());
        // The signs have no case of their own.
        const bool isSign = letter->latin[0] == '`';
        const bool isLarge =
            isSign ? isCapital(before) && !isSmall(frontOf(text)) : isCapital(point.value);
        before = isLarge ? upperCase(small) : small;
        appendUtf8(out, before);
    }
    return out;
}

}  // namespace tavlo
