#include "core/WildcardMask.h"

#include <gtest/gtest.h>

namespace tavlo {
namespace {

TEST(WildcardMask, NamesAreComparedWithTheMask) {
    struct Case {
        std::string_view mask, name;
        bool matches;
    };
    const Case cases[] = {
        {"*.*", "song.mp3", true},
        {"*.*", "no extension", true},
        {"*", "", true},
        {"*.mp3", "song.MP3", true},
        {"*.MP3", "song.mp3", true},
        {"*.mp3", "song.mp3.bak", false},
        {"*.mp3", "xmp3", false},
        {"a*b*c", "aXXbYYc", true},
        {"a*b*c", "abcb", false},
        {"*ab", "aab", true},
        {"*aab*", "aaaab", true},
        {"a**b", "ab", true},
        {"?.mp3", "Я.mp3", true},
        {"?.mp3", "ab.mp3", false},
        {"?.mp3", ".mp3", false},
        {"ПЁС*", "пёс 1.mp3", true},
        {"##*", "07 a.mp3", true},
        {"##*", "7 a.mp3", false},
        {"#", "٣", false},
        {"[a-c]x", "Bx", true},
        {"[a-c]x", "dx", false},
        {"[!a-c]x", "dx", true},
        {"[!a-c]x", "Cx", false},
        {"[!a-c]x", "x", false},
        {"[#]", "#", true},
        {"[*]", "*", true},
        {"[*]", "a", false},
        {"[-a]", "-", true},
        {"song", "song", true},
        {"song", "songs", false},
        {"a.b", "axb", false},
        {"?", "\xFF", true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(WildcardMask(c.mask).matches(c.name), c.matches) << c.mask << " | " << c.name;
    }
}

TEST(WildcardMask, OnlyMasksOfEveryNameTakeAll) {
    EXPECT_TRUE(WildcardMask("*.*").takesAll());
    EXPECT_TRUE(WildcardMask("*").takesAll());
    EXPECT_FALSE(WildcardMask("*.mp3").takesAll());
}

TEST(WildcardMask, BrokenSetsAndManyStarsEnd) {
    EXPECT_FALSE(WildcardMask("[a").matches("b"));
    EXPECT_FALSE(WildcardMask("a[").matches("ab"));
    std::string mask;
    for (int i = 0; i < 40; ++i) mask += "*a";
    EXPECT_FALSE(WildcardMask(mask + "b").matches(std::string(5000, 'a')));
}

}  // namespace
}  // namespace tavlo
