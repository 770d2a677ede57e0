#include "tags/Lyrics3.h"

#include <gtest/gtest.h>

#include "support/ReadBytes.h"

namespace tavlo::test {
namespace {

auto readBlock(std::string_view bytes) {
    return readTagWith(ReadLyrics3Block, bytes, ReadDepth::List, 1251);
}

const std::string fields = lyricsField("IND", "10") + lyricsField("ETT", " Seven Bells ") +
                           lyricsField("LYR", "ETT00003no ") +
                           lyricsField("EAR", "\xCF\xE5\xF1\xED\xFF");
const std::string block = lyrics3(fields);
const std::string id3v1 = Id3v1{"Short", "One", "", "", "", 0, 0, 255}.block();

TEST(Lyrics3, TitleAndArtistAreReadWithAnID3v1BlockBehindOrNot) {
    const std::size_t size = block.size() - 15;  // begin marker and fields
    const std::pair<std::string, std::size_t> ends[] = {{id3v1, size + 121}, {"", size - 7}};
    for (const auto& [end, endOffset] : ends) {
        for (const std::size_t before : {0U, 5U, 5000U}) {
            const auto read = readBlock(std::string(before, 'x') + block + end);
            EXPECT_EQ(read.found, before);
            EXPECT_TRUE(read.record.IsLyricsPresent);
            EXPECT_EQ(read.record.LyricsExt.TrackTitle, "Seven Bells");
            EXPECT_EQ(read.record.LyricsExt.Artist, "Песня");
            EXPECT_EQ(read.record.LyricsExt.EndOffset, static_cast<int>(endOffset));
            EXPECT_EQ(read.record.GetTitle(), "Seven Bells");
        }
    }
}

TEST(Lyrics3, LongBlocksAreReadWhole) {
    const std::string lyrics(20000, 'l');
    const std::string longBlock = lyrics3(lyricsField("LYR", lyrics) + lyricsField("EAR", "End"));
    const auto read = readBlock(std::string(100, 'x') + longBlock + id3v1);
    EXPECT_EQ(read.found, 100U);
    EXPECT_EQ(read.record.LyricsExt.Artist, "End");
}

TEST(Lyrics3, TheWordAloneIsNoBlock) {
    const std::string audio(1000, 'x');
    Id3v1 title;
    title.title = "LYRICS";
    std::string otherBegin = block, otherSize = block;
    otherBegin.replace(0, 11, "LYRICSBEGUN");
    otherSize.replace(block.size() - 15, 6, "12x456");
    const std::pair<std::string_view, std::string> cases[] = {
        {"in an ID3v1 title", audio + title.block()},
        {"in an APE item", audio + ApeTag{{apeItem("Note", "LYRICS200 LYRICSBEGIN")}}.bytes()},
        {"at the file's begin", "LYRICS200"},
        {"behind digits", audio + "000011LYRICS200" + id3v1},
        {"no begin marker", audio + otherBegin + id3v1},
        {"no number", audio + otherSize + id3v1},
        {"empty", ""},
    };
    for (const auto& [name, bytes] : cases) {
        const auto read = readBlock(bytes);
        EXPECT_EQ(read.found, std::nullopt) << name;
        EXPECT_EQ(read.record.LyricsExt.Artist, "") << name;
    }
    EXPECT_FALSE(readBlock(cases[0].second).record.IsLyricsPresent);
    EXPECT_FALSE(readBlock(cases[1].second).record.IsLyricsPresent);
}

TEST(Lyrics3, BlockIsFoundBeforeATitleThatHoldsTheWord) {
    Id3v1 title;
    title.title = "LYRICS";
    const auto read = readBlock(std::string(500, 'x') + block + title.block());
    EXPECT_EQ(read.found, 500U);
    EXPECT_EQ(read.record.LyricsExt.TrackTitle, "Seven Bells");
}

TEST(Lyrics3, FieldsAreReadUpToTheFirstBrokenOne) {
    const std::string artist = lyricsField("EAR", "Artist");
    for (const std::string& broken : {"ETT99999Title"s, "ETT0000xTitle"s, "ETT"s, "ETT-0001T"s}) {
        const auto read = readBlock(std::string(500, 'x') + lyrics3(artist + broken) + id3v1);
        EXPECT_EQ(read.record.LyricsExt.Artist, "Artist") << broken;
        EXPECT_EQ(read.record.LyricsExt.TrackTitle, "") << broken;
    }
    EXPECT_EQ(readBlock(std::string(500, 'x') + lyrics3("") + id3v1).found, 500U);
}

}  // namespace
}  // namespace tavlo::test
