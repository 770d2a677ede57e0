#include "collection/NameTemplate.h"

#include <gtest/gtest.h>

#include <random>

#include "core/FileNameText.h"
#include "platform/Utf8.h"

namespace tavlo {
namespace {
using namespace std::string_literals;

struct Row {
    std::string nameTemplate, name;
    std::string artist = "Art", title = "Title", mix = "Mix", number = "7";
    int bitrate = 112;

    [[nodiscard]] std::string named(const NameRules& rules) const {
        ID3tag record;
        record.SetBasicFields({artist, "Album", "1999", title, mix, "Rock", {}, {}, {}, number});
        record.Bitrate = bitrate;
        return nameByTemplate(record, nameTemplate, rules);
    }
};

TEST(NameTemplate, PlaceholdersBecomeTheFields) {
    // clang-format off
    const Row rows[] = {
        {"%A - %T (%M)", "Art - Title (Mix)"}, {"%A - %T (%M)", "Art - Title", "Art", "Title", ""},
        {"%Z, %Y %L %C %G", "Title (Mix), 1999 Album Album Rock"}, {"%a %X 5%", "%a %X 5%"},
        // One pass a placeholder, in a fixed order: a value may hold a later one.
        {"%A", "Title", "%T"}, {"%A", "07 112", "%N %B"}, {"%AT", "Title", "%"},
        {"%T", "%A", "a", "%A"}, {"%R%W%A", "%WArt"}, {"%A%T", "_", "%W", "é"},
        {"%N3_%N", "007_07"}, {"%N3_%N", "123_123", "", "", "", "123"},
        {"%N3_%N", "003_03", "", "", "", "3/12"}, {"%N3_%N", "_", "", "", "", "x7"},
        // Halves go to the even multiple.
        {"%B %BS", "112 128"}, {"%B %BS", "080 064", "", "", "", "", 80},
        // Folders come from the template only.
        {"%A\\%L\\%T", "AC_DC\\Album\\Title", "AC\\DC"}, {" %A \\ %T ", "Art\\Title"},
        {"%A\\\\%T", "Art\\Title"}, {"%A\\%T", "Title", ""}, {"..\\%A\\%T", "Title", ".."},
        // Brackets and blanks are tidied once.
        {"a([])b", "ab"}, {"a({})b", "a()b"}, {"a   b    c", "a  b  c"}, {"a\t\tb\0c"s, "a b c"},
        {"%A %R", "Shhuka é_", "Щука é?"}, {"%A %W", "Shhuka __", "Щука é?"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.named({PathStyle::Posix, Transliteration::Gost}), row.name);
        EXPECT_EQ(row.named({PathStyle::Windows, Transliteration::Gost}), row.name);
    }
    constexpr std::string_view formats[] = {"%A - %Z", "%A - %T", "%A - %Z", "%Z",
        "%A\\%Z", "%A - %Z %W", "free", "%N %A - %Z", "%N %Z", "%A - %Z"};
    // clang-format on
    for (int i = 0; i < 10; ++i) EXPECT_EQ(formatTemplate(i, "free"), formats[i]);
}

TEST(NameTemplate, NamesStayBelowTheirFolder) {
    std::mt19937 random(7);
    // clang-format off
    const std::string pieces[] = {"%A", "%T", "%M", "%Z", "%R", "%W", "\\", "\\", "\\", "/", ".",
        "..", " ", ":", "con", "nul", "com1.", "\x01", "\t", "\xC2\x9F", "()", "é", "C:\\",
        "яёцщ" + std::string(250, '.') + "x", "con" + std::string(400, ' '), std::string(150, 'b'), "😀😀😀😀😀😀"};
    // clang-format on
    const auto text = [&] {
        std::string out;
        for (auto n = random() % 12; n > 0; --n) out += pieces[random() % std::size(pieces)];
        return out;
    };
    for (std::size_t i = 0; i < 4000; ++i) {
        const PathStyle style = i % 2 == 0 ? PathStyle::Posix : PathStyle::Windows;
        const Row row{text(), "", text(), text(), text()};
        const std::string name = row.named({style, Transliteration::Gost, i % 7});
        ASSERT_EQ(cleanFileName(name, style, i % 7), name);
        ASSERT_TRUE(isValidUtf8(name) && ("\\" + name + "\\").find(".\\") == std::string::npos);
        ASSERT_TRUE(name.empty() || ("\\" + name + "\\").find("\\\\") == std::string::npos);
        const std::size_t lastLevel = name.size() - (name.rfind('\\') + 1);
        ASSERT_TRUE(style == PathStyle::Windows || lastLevel + i % 7 <= 247);
    }
}

}  // namespace
}  // namespace tavlo
