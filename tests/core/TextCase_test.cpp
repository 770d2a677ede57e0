#include "core/TextCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tavlo {
namespace {

TEST(TextCase, LettersOfTheUsualAlphabetsChange) {
    constexpr std::pair<std::string_view, std::string_view> pairs[] = {
        {"abcxyz", "ABCXYZ"}, {"éàþÿ", "ÉÀÞŸ"}, {"āčžłő", "ĀČŽŁŐ"},   {"абвэюя", "АБВЭЮЯ"},
        {"ёїў", "ЁЇЎ"},       {"αβγω", "ΑΒΓΩ"}, {"1 [~÷×", "1 [~÷×"}, {"日本", "日本"},
    };
    for (const auto& [lower, upper] : pairs) {
        EXPECT_EQ(upperCase(lower), upper);
        EXPECT_EQ(lowerCase(upper), lower);
        EXPECT_TRUE(equalsNoCase(lower, upper)) << lower;
        EXPECT_EQ(hashNoCase(lower), hashNoCase(upper)) << lower;
    }
}

TEST(TextCase, BytesThatAreNoTextStay) {
    const std::string bytes = "A\xFF\xD0Z\xC3";
    EXPECT_EQ(lowerCase(bytes), "a\xFF\xD0z\xC3");
    EXPECT_TRUE(equalsNoCase(bytes, "a\xFF\xD0z\xC3"));
    EXPECT_FALSE(equalsNoCase("a\xFF", "a\xFE"));
}

TEST(TextCase, NamesAreOrderedAsPeopleExpect) {
    // Each is before all that follow.
    // clang-format off
    constexpr std::string_view ordered[] = {
        "", "1 a", "2 a", "10 a", "010 b", "99999999999999999999998", "99999999999999999999999",
        "a", "a1", "a2b", "a2c", "a10", "B", "c"};
    // clang-format on
    constexpr std::size_t last = std::size(ordered) - 1;
    for (std::size_t i = 0; i < last; ++i) {
        for (std::size_t j = i + 1; j <= last; ++j) {
            EXPECT_TRUE(compareNatural(ordered[i], ordered[j]) < 0)
                << ordered[i] << ' ' << ordered[j];
            EXPECT_TRUE(compareNatural(ordered[j], ordered[i]) > 0)
                << ordered[i] << ' ' << ordered[j];
        }
    }
}

TEST(TextCase, OnlyEqualBytesCompareEqual) {
    EXPECT_TRUE(compareNatural("Track 7", "Track 7") == 0);
    EXPECT_TRUE(compareNatural("track 7", "Track 7") != 0);
    EXPECT_TRUE(compareNatural("Track 07", "Track 7") != 0);
    EXPECT_TRUE(compareNatural("track 7", "Track 8") < 0);
    EXPECT_TRUE(compareNatural("Track 07", "Track 8") < 0);
    EXPECT_TRUE(compareNatural("Track 7", "Track 08") < 0);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// What two texts have in common that a key holds equal.
std::string likeness(std::string_view text) {
    const std::string lower = lowerCase(text);
    std::string out;
    for (std::size_t i = 0; i < lower.size(); ++i) {
        const bool begins = out.empty() || !isDigit(out.back());
        const bool goesOn = i + 1 < lower.size() && isDigit(lower[i + 1]);
        if (lower[i] != '0' || !begins || !goesOn) out += lower[i];
    }
    return out;
}

std::vector<std::string> textsOfPieces(std::size_t count) {
    // clang-format off
    const std::vector<std::string> pieces{
        "0", "00", "1", "9", "10", "a", "A", "b", "Ж", "ж", "я", "Ё", "é", "É", " ", "/", ":", "-",
        "\xFF", "\xF8", "\xD0", "\x96", "\xED\xA0\x80", "\xF0\x9F\x8E\xB5", "\x01"};
    // clang-format on
    std::mt19937 random(7);
    const auto below = [&](std::size_t end) { return random() % end; };
    std::vector<std::string> texts;
    while (texts.size() < count) {
        std::string& text = texts.emplace_back();
        for (std::size_t left = below(6); left > 0; --left) text += pieces[below(pieces.size())];
    }
    return texts;
}

void expectKeysAgree(const std::vector<std::string>& texts) {
    std::vector<std::string> keys(texts.size()), alike;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        appendNaturalKey(keys[i], texts[i]);
        alike.push_back(likeness(texts[i]));
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        for (std::size_t j = 0; j < texts.size(); ++j) {
            const bool isEqual = alike[i] == alike[j];
            ASSERT_EQ(keys[i] == keys[j], isEqual) << texts[i] << " | " << texts[j];
            if (isEqual) continue;
            ASSERT_EQ(keys[i] < keys[j], std::is_lt(compareNatural(texts[i], texts[j])))
                << texts[i] << " | " << texts[j];
        }
    }
}

TEST(TextCase, KeysAreOrderedAsTextsAre) {
    std::vector<std::string> texts = textsOfPieces(400);
    const auto number = [](std::size_t length, char digit) { return std::string(length, digit); };
    for (const std::size_t length : {254U, 255U, 256U, 510U, 511U, 700U}) {
        for (const char* behind : {"", "a", "\xFF"}) {
            texts.push_back(number(length, '1') + behind);
            texts.push_back(number(length, '9') + behind);
            texts.push_back("00" + number(length, '1') + behind);
        }
    }
    expectKeysAgree(texts);
    std::string key = "before";
    appendNaturalKey(key, "a");
    EXPECT_EQ(key, "beforea");
}

TEST(TextCase, AppendedLowerCaseIsThatOfTheWholeText) {
    for (const std::string& text : textsOfPieces(300)) {
        std::string out = "Before ";
        appendLowerCase(out, text);
        EXPECT_EQ(out, "Before " + lowerCase(text)) << text;
    }
}

}  // namespace
}  // namespace tavlo
