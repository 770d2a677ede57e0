#include "tags/ID3v1.h"

#include <gtest/gtest.h>

#include "platform/Utf8.h"
#include "support/EditFile.h"
#include "support/ReadBytes.h"

namespace tavlo::test {
namespace {

const std::string audio(200, 'x');
const Id3v1 usual{"Seven Bells", "Marble Choir", "Towers", "1998", "live", 0, 7, 17};

auto readBlock(std::string_view bytes, int codePage = 1252) {
    return readTagWith(ReadID3v1Tag, bytes, ReadDepth::List, codePage);
}

TEST(ID3v1, EveryFieldIsRead) {
    const ID3tag record = readBlock(audio + usual.block()).record;
    EXPECT_TRUE(record.IsID3v1Present);
    EXPECT_EQ(record.Title, "Seven Bells");
    EXPECT_EQ(record.Artist, "Marble Choir");
    EXPECT_EQ(record.Album, "Towers");
    EXPECT_EQ(record.Year, "1998");
    EXPECT_EQ(record.Comment, "live");
    EXPECT_EQ(record.TrackNumber, 7);
    EXPECT_EQ(record.Genre, 17);
}

TEST(ID3v1, BlockIsFoundAtTheEndOrUpTo32BytesBeforeIt) {
    for (const std::size_t behind : {0U, 1U, 10U, 31U, 32U}) {
        const auto read =
            readBlock(std::string(300, 'x') + usual.block() + std::string(behind, 'y'));
        EXPECT_EQ(read.found, 300U) << behind;
        EXPECT_EQ(read.record.Artist, "Marble Choir") << behind;
        EXPECT_EQ(read.record.TrackNumber, 7) << behind;
    }
    const auto read = readBlock(std::string(300, 'x') + usual.block() + std::string(33, 'y'));
    EXPECT_EQ(read.found, std::nullopt);
    EXPECT_FALSE(read.record.IsID3v1Present);
    EXPECT_EQ(read.record.Artist, "");
}

TEST(ID3v1, FilesWithoutABlock) {
    const std::string block = usual.block();
    const std::pair<std::string_view, std::string> cases[] = {
        {"empty", ""},
        {"one byte", "T"},
        {"the mark alone", "TAG"},
        {"127 bytes", block.substr(0, 127)},
        {"127 other bytes", std::string(127, 'x')},
        {"mark in lower case", audio + "tag" + block.substr(3)},
        {"too little behind the mark", audio + "TAG" + std::string(120, 'y')},
        {"mark inside an APE item", audio + ApeTag{{apeItem("Note", "a TAG in here")}}.bytes()},
    };
    for (const auto& [name, bytes] : cases) {
        const auto read = readBlock(bytes);
        EXPECT_EQ(read.found, std::nullopt) << name;
        EXPECT_FALSE(read.record.IsID3v1Present) << name;
    }
}

TEST(ID3v1, BlockWithExactlyEnoughBytesBehindTheMarkIsTaken) {
    const auto read = readBlock(audio + usual.block().substr(0, 124));
    EXPECT_TRUE(read.record.IsID3v1Present);
    EXPECT_EQ(read.record.Title, "Seven Bells");
}

TEST(ID3v1, BlockThatIsTheWholeFileIsRead) {
    EXPECT_EQ(readBlock(usual.block()).found, 0U);
    EXPECT_EQ(readBlock("x" + usual.block()).found, 1U);
}

TEST(ID3v1, CommentEndsWhereTheTrackNumberBegins) {
    struct Case {
        std::uint8_t zero, track;
        std::size_t commentSize;
        int number;
    };
    constexpr Case cases[] = {
        {0, 7, 28, 7}, {0, 255, 28, 255}, {0, 0, 28, 0}, {'c', 0, 29, 0}, {'c', 'c', 30, 0},
    };
    for (const Case& c : cases) {
        Id3v1 block;
        block.comment = std::string(28, 'c');
        block.zero = c.zero;
        block.track = c.track;
        const ID3tag record = readBlock(audio + block.block()).record;
        EXPECT_EQ(record.Comment, std::string(c.commentSize, 'c')) << int{c.zero} << int{c.track};
        EXPECT_EQ(record.TrackNumber, c.number) << int{c.zero} << int{c.track};
    }
}

TEST(ID3v1, FieldsAreTrimmedAndEndAtTheFirstNul) {
    Id3v1 block;
    block.title = "  Full of blanks  ";
    block.artist = "Cut \0junk"s;
    block.album = std::string(30, 'a');
    block.year = "2001";
    const ID3tag record = readBlock(audio + block.block(' ')).record;
    EXPECT_EQ(record.Title, "Full of blanks");
    EXPECT_EQ(record.Artist, "Cut");
    EXPECT_EQ(record.Album, std::string(30, 'a'));
    EXPECT_EQ(record.Year, "2001");
    EXPECT_EQ(record.Genre, noGenre);
}

TEST(ID3v1, TextIsInTheCodePage) {
    Id3v1 block;
    block.title = "\xCF\xE5\xF1\xED\xFF";
    block.artist = "Caf\xE9\x80";
    const std::string bytes = audio + block.block();
    EXPECT_EQ(readBlock(bytes, 1251).record.Title, "Песня");
    EXPECT_EQ(readBlock(bytes, 1252).record.Title, "Ïåñíÿ");
    EXPECT_EQ(readBlock(bytes, 1252).record.Artist, "Café€");
    EXPECT_TRUE(isValidUtf8(readBlock(bytes, 1251).record.Artist));
}

TEST(ID3v1, GenreByteIsStoredAsItIs) {
    for (const int genre : {0, 147, 148, 254, 255}) {
        Id3v1 block = usual;
        block.genre = static_cast<std::uint8_t>(genre);
        const ID3tag record = readBlock(audio + block.block()).record;
        EXPECT_EQ(record.Genre, genre);
        EXPECT_EQ(record.GetGenre(), genreName(genre)) << genre;
    }
}

std::string newBlock(const ID3tag& record) {
    return encodeID3v1Block({{}, record, ~FieldSet{0}}, "", CodePage(1252));
}

TEST(ID3v1, WrittenBlockHasEveryFieldInItsPlace) {
    const std::string ten = "0123456789";
    ID3tag record;
    record.SetTitle("  Seven Bells ");
    record.SetArtist(ten + ten + ten + "wxyz!");
    record.SetAlbum(ten + ten + ten);
    record.SetYear("1998");
    record.SetComment(ten + ten + ten);
    record.SetNumber("7/12");
    record.SetGenre("rock");
    Id3v1 expected{
        "Seven Bells", ten + ten + ten, ten + ten + ten, "1998", ten + ten + "01234567", 0, 7, 17};
    EXPECT_EQ(newBlock(record), expected.block());
    record.SetGenre("Sea Shanty");
    record.SetNumberL(300);
    record.SetYear("98");
    record.SetComment("short");
    expected = {"Seven Bells", ten + ten + ten, ten + ten + ten, "98", "short", 0, 44, 255};
    EXPECT_EQ(newBlock(record), expected.block());
    EXPECT_EQ(newBlock({}), Id3v1{}.block());
}

TEST(ID3v1, WrittenTextIsInTheCodePageAndEndsBetweenCharacters) {
    struct Case {
        int codePage;
        std::string_view text;
        std::size_t width;
        std::string expected;
    };
    const Case cases[] = {
        {1251, "Песня", 7, "\xCF\xE5\xF1\xED\xFF\0\0"s},
        {1251, "Песня", 4, "\xCF\xE5\xF1\xED"},
        {1252, "Песня", 5, "?????"},
        {1252, "Café €", 6, "Caf\xE9 \x80"},
        {1251, "Café №", 6, "Caf? \xB9"},
        {1252, " a b ", 3, "a b"},
        {1252, "a   b", 3, "a  "},
        {932, "a日本", 5, "a\x93\xFA\x96\x7B"},
        {932, "a日本", 4, "a\x93\xFA\0"s},
        {932, "日本", 1, "\0"s},
        {932, "ﾊｿｱ", 2, "\xCA\xBF"},
        {932, "é日", 3, "?\x93\xFA"},
    };
    for (const Case& c : cases) {
        const CodePage ansi(c.codePage);
        if (ansi.number() != c.codePage) continue;
        EXPECT_EQ(FixedWidthText(c.text, c.width, ansi), c.expected) << c.text << ' ' << c.width;
    }
}

TEST(ID3v1, WrittenBlockEndsTheFile) {
    Id3v1 old{"Seven Bells", "Marble Choir", "Towers", "1998", std::string(28, 'c'), 'c', 'c', 17};
    const std::string head = tag(3, textFrame(3, "TALB", "Towers") + std::string(100, '\0'));
    Id3v1 changed = old, numbered = old;
    changed.artist = "Tin Parade";
    numbered.zero = 0;
    numbered.track = 5;
    Id3v1 emptied = usual;
    emptied.comment = "";
    struct Case {
        std::string_view name;
        std::string bytes;
        Edit edit;
        std::string expected;
    };
    const Edit setArtist = [](ID3tag& r) { r.SetArtist("Tin Parade"); };
    const Case cases[] = {
        {"at the end", head + audio + old.block(), setArtist, audio + changed.block()},
        {"10 bytes behind", head + audio + old.block() + std::string(10, 'y'), setArtist,
         audio + changed.block()},
        {"a number cuts the comment", head + audio + old.block(),
         [](ID3tag& r) { r.SetNumberL(5); }, audio + numbered.block()},
        {"nothing of it edited", head + audio + old.block(' '),
         [](ID3tag& r) { r.ID3v2Ext.Composer = "C"; }, audio + old.block(' ')},
        {"comment #", head + audio + usual.block(), [](ID3tag& r) { r.SetComment("#"); },
         audio + emptied.block()},
        {"none before", head + audio, setArtist,
         audio + Id3v1{"", "Tin Parade", "Towers", "", ""}.block()},
    };
    for (const Case& c : cases) {
        const std::string written = editFile(c.bytes, c.edit);
        EXPECT_EQ(written.substr(std::min(written.size(), written.find(audio))), c.expected)
            << c.name;
    }
    TagSettings none;
    none.id3v1 = false;
    const std::string written = editFile(head + audio, setArtist, none);
    EXPECT_EQ(written.size(), head.size() + audio.size());
}

}  // namespace
}  // namespace tavlo::test
