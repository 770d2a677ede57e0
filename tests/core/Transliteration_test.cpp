#include "core/Transliteration.h"

#include <gtest/gtest.h>

#include "core/TextCase.h"

namespace tavlo {
namespace {

TEST(Transliteration, LettersFollowTheTables) {
    constexpr auto gost = Transliteration::Gost, phonetic = Transliteration::Phonetic;
    constexpr std::string_view latin[][3] = {
        {"Щука Эхо", "Shhuka E`xo", "Schuka Ekho"},
        {"Цирк, цапля, ЦЯ, цэ", "Cirk, czaplya, CYA, ce`", "Tsirk, tsaplya, TSYA, tse"},
        {"объём МЫШЬ йод", "ob``yom MY`SH` jod", "obyom MYSH yod"},
        {"ПЛЮЩ Я Ж. Їґў\xFF", "PLYUSHH Ya Zh. Yig`u`\xFF", "PLYUSCH Ya Zh. Yigu\xFF"}};
    for (const auto& [text, byGost, byEar] : latin) {
        EXPECT_EQ(toLatin(text, gost), byGost);
        EXPECT_EQ(toLatin(text, phonetic), byEar);
    }
    constexpr std::string_view cyrillic[][3] = {
        {"SASHA Yuliya", "САША Юлия", "САША Юлия"},
        {"schuka Shh my", "счука Щ мy", "щука Шх мы"},
        {"cirk x` é\xFF", "цирк хь é\xFF", "кирк x` é\xFF"}};
    for (const auto& [text, byGost, byEar] : cyrillic) {
        EXPECT_EQ(toCyrillic(text, gost), byGost);
        EXPECT_EQ(toCyrillic(text, phonetic), byEar);
    }
}

// Every pair of letters that a word may have, in both cases. Behind these five no word has a sign,
// which GOST's own table would make a part of another letter.
TEST(Transliteration, GostLeadsBack) {
    const std::string letters = "ъьгеуабвдёжзийклмнопрстфхцчшщыэюя";
    constexpr std::size_t signs = 2 * 2, noSignBehind = 5 * 2, size = 33 * 2;  // bytes
    for (std::size_t i = 0; i < size * size / 2; i += 2) {
        const std::size_t first = i % size, second = i / size * 2;
        if (second < signs && first < noSignBehind) continue;
        const std::string front = (first < signs ? "о" : "") + letters.substr(first, 2);
        const std::string word = front + letters.substr(second, 2) + "т";
        const std::string words = word + " " + upperCase(word) + " " + capitalizeFirst(word);
        const std::string latin = toLatin(words, Transliteration::Gost);
        EXPECT_EQ(toCyrillic(latin, Transliteration::Gost), words) << latin;
    }
}

}  // namespace
}  // namespace tavlo
