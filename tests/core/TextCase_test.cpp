#include "core/TextCase.h"

#include <gtest/gtest.h>

#include <utility>

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

}  // namespace
}  // namespace tavlo
