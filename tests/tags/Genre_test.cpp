#include "tags/Genre.h"

#include <gtest/gtest.h>

#include "tags/GenreText.h"
#include "tags/ID3tag.h"

namespace tavlo {
namespace {

TEST(Genre, NumbersHaveTheNamesThatTaggersKnow) {
    constexpr std::pair<int, std::string_view> cases[] = {{0, "Blues"},
                                                          {67, "Psychadelic"},
                                                          {79, "Hard Rock"},
                                                          {133, "NegerPunk"},
                                                          {140, "Contemporary C"},
                                                          {147, "SynthPop"},
                                                          {148, ""},
                                                          {255, ""},
                                                          {-1, ""}};
    for (const auto& [number, name] : cases) EXPECT_EQ(genreName(number), name) << number;
}

TEST(Genre, EveryNameLeadsBackToItsNumber) {
    for (int number = 0; number <= 147; ++number) {
        EXPECT_EQ(genreNumber(genreName(number)), number) << genreName(number);
    }
}

TEST(Genre, NamesAreFoundWithoutCaseAndOuterBlanks) {
    constexpr std::pair<std::string_view, int> cases[] = {
        {"  rock  ", 17}, {"ROCK & ROLL", 78}, {"synthpop", 147}, {"Rocks", 255},
        {"Roc", 255},     {"", 255},           {" ", 255},        {"17", 255},
    };
    for (const auto& [name, number] : cases) EXPECT_EQ(genreNumber(name), number) << name;
}

TEST(Genre, FrameTextsNameANumberOrAName) {
    struct Case {
        std::string_view text;
        int number;
        std::string_view shown;
    };
    constexpr Case cases[] = {
        {"(17)", 17, "Rock"},
        {"17", 17, "Rock"},
        {"Rock", 17, "Rock"},
        {"(147)", 147, "SynthPop"},
        {"147", 147, "SynthPop"},
        {"Unheard Of", 255, "Unheard Of"},
        {"(4)Eurodisco", 4, "Eurodisco"},
        {"(51)(39)", 51, "Techno-Industrial; Noise"},
        {"(RX)", 255, "Remix"},
        {"", 255, ""},
    };
    for (const Case& c : cases) {
        const GenreText genre = parseGenreText(c.text);
        ID3tag record;
        record.Genre = genre.number;
        record.ID3v2Ext.Genre = genre.text;
        EXPECT_EQ(record.GetGenreID(), c.number) << c.text;
        EXPECT_EQ(record.GetGenre(), c.shown) << c.text;
    }
}

TEST(Genre, NumbersInFrameTextsAreBytes) {
    constexpr std::pair<std::string_view, int> cases[] = {
        {"(17)Rock", 17},
        {"(17)Hard and loud", 17},
        {"(17)(8)", 17},
        {" rock ", 17},
        {"(255)", 255},
        {"(256)", 255},
        {"(-1)", 255},
        {"273", 255},
        {"99999999999999999999", 255},
        {"()", 255},
        {"(", 255},
    };
    for (const auto& [text, number] : cases) EXPECT_EQ(parseGenreText(text).number, number) << text;
}

TEST(Genre, WrittenTextsMeanWhatTheyWereMadeOf) {
    // clang-format off
    std::vector<GenreText> genres{
        {4, "Eurodisco"}, {17, "Hard and loud"}, {17, "17"}, {17, "rock"}, {4, "Rock"},
        {4, "(Live)"}, {51, "Techno-Industrial; Noise"}, {200, "Unheard Of"},
        {noGenre, "Sea Shanty"}, {noGenre, "17"}, {noGenre, "(17)"}, {noGenre, "(17)Rock"},
        {noGenre, "(RX)"}, {noGenre, "Remix"}, {noGenre, "(Live)"}, {noGenre, "((Live"},
    };
    // clang-format on
    for (int number = 0; number <= noGenre; ++number) {
        genres.push_back({static_cast<std::uint8_t>(number), std::string(genreName(number))});
    }
    for (const GenreText& genre : genres) {
        const std::string text = formatGenreText(genre.number, genre.text);
        EXPECT_EQ(parseGenreText(text), genre) << text << ' ' << genre.text;
    }
}

}  // namespace
}  // namespace tavlo
