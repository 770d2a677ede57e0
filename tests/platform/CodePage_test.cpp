#include "platform/CodePage.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace tavlo {
namespace {

struct Decoding {
    int page;
    std::string bytes;
    std::string text;
};

TEST(CodePage, DecodesToUtf8) {
    const std::vector<Decoding> cases{
        {1251, "\xCF\xF0\xE8\xE2\xE5\xF2", "Привет"},
        {1252, "caf\xE9 \x80", "café €"},
        {1250, "\xB3\x9C", "łś"},
        {1253, "\xC1\xE1", "Αα"},
        {866, "\x8F\xE0", "Пр"},
        {20866, "\xF0", "П"},
        {28595, "\xBF", "П"},
        {932, "\x93\xFA\x96\x7B", "日本"},
        {936, "\xD6\xD0", "中"},
        {949, "\xC7\xD1", "한"},
        {950, "\xA4\xA4", "中"},
        {65001, "\xD0\x9F", "П"},
        {1251, "plain", "plain"},
        {1251, "", ""},
    };
    for (const Decoding& row : cases)
        EXPECT_EQ(CodePage(row.page).toUtf8(row.bytes), row.text) << row.page;
}

TEST(CodePage, UndefinedLowBytesAreControls) {
    const std::vector<Decoding> cases{{1251, "\x98", "\xC2\x98"},
                                      {1252, "\x81", "\xC2\x81"},
                                      {1252, "\x8D", "\xC2\x8D"},
                                      {1252, "\x9D", "\xC2\x9D"},
                                      {1253, "\x81", "\xC2\x81"}};
    for (const Decoding& row : cases) {
        const CodePage page(row.page);
        EXPECT_EQ(page.toUtf8(row.bytes), row.text) << row.page;
        EXPECT_EQ(page.fromUtf8(row.text).bytes, row.bytes) << row.page;
    }
}

TEST(CodePage, BadBytesBecomeReplacementCharacters) {
    const std::vector<Decoding> cases{{65001,
                                       "a\xFF"
                                       "b",
                                       "a\xEF\xBF\xBD"
                                       "b"},
                                      {1253, "\xD2", "\xEF\xBF\xBD"},
                                      {936, "\xD6\xD0\xD6", "中\xEF\xBF\xBD"}};
    for (const Decoding& row : cases)
        EXPECT_EQ(CodePage(row.page).toUtf8(row.bytes), row.text) << row.page;
}

// All bytes of every common page, so that a hole in one table shows on either system.
TEST(CodePage, EveryDefinedByteComesBack) {
    for (const int number : {1250, 1251, 1252, 1254, 1256, 1257, 437, 866, 20866}) {
        const CodePage page(number);
        for (int byte = 0; byte < 256; ++byte) {
            const std::string bytes(1, static_cast<char>(byte));
            const std::string text = page.toUtf8(bytes);
            if (text == "\xEF\xBF\xBD") continue;
            const auto back = page.fromUtf8(text);
            EXPECT_EQ(back.bytes, bytes) << number << " byte " << byte;
            EXPECT_FALSE(back.lossy) << number << " byte " << byte;
        }
    }
}

// The ASCII path reads eight bytes at a time: the first other byte may stand anywhere in them.
TEST(CodePage, FindsTheFirstHighByteAtEveryPlace) {
    const CodePage page(1251);
    for (std::size_t length = 1; length < 20; ++length)
        for (std::size_t at = 0; at < length; ++at) {
            std::string bytes(length, 'x');
            bytes[at] = '\xCF';
            std::string text(length, 'x');
            text.replace(at, 1, "П");
            EXPECT_EQ(page.toUtf8(bytes), text);
        }
}

struct Encoding {
    int page;
    std::string text;
    std::string bytes;
    bool lossy;
};

TEST(CodePage, EncodesAndTellsLosses) {
    const std::vector<Encoding> cases{
        {1251, "Привет", "\xCF\xF0\xE8\xE2\xE5\xF2", false},
        {1252, "При вет", "??? ???", true},
        {1252, "Ā", "?", true},  // not its look-alike "A"
        {1251, "é", "?", true},
        {1252,
         "a\U0001D11E"
         "b",
         "a?b", true},  // one mark for one character
        {1253, "\xEF\xBF\xBD", "?", true},
        {932, "日本", "\x93\xFA\x96\x7B", false},
        {932,
         "日\U0001D11E"
         "é",
         "\x93\xFA??", true},
        {65001, "Привет", "Привет", false},
        {1251, "", "", false},
    };
    for (const Encoding& row : cases) {
        const auto encoded = CodePage(row.page).fromUtf8(row.text);
        EXPECT_EQ(encoded.bytes, row.bytes) << row.page << ' ' << row.text;
        EXPECT_EQ(encoded.lossy, row.lossy) << row.page << ' ' << row.text;
    }
}

TEST(CodePage, UnknownNumbersAreWestern) {
    for (const int number : {0, -1, 1, 2, 3, 42, 12345, 1200, 500, 999999}) {
        const CodePage page(number);
        EXPECT_EQ(page.number(), 1252) << number;
        EXPECT_EQ(page.toUtf8("\xE9"), "é") << number;
    }
}

}  // namespace
}  // namespace tavlo
