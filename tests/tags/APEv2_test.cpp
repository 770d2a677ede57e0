#include "tags/APEv2.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/Utf8.h"
#include "support/EditFile.h"
#include "support/ReadBytes.h"

namespace tavlo::test {
namespace {

auto readTag(std::string_view bytes, ReadDepth depth = ReadDepth::Full, int codePage = 1252) {
    return readTagWith(ReadAPETag, bytes, depth, codePage);
}

const std::string audio(1000, 'x');
const std::string artist = apeItem("Artist", "Glass Metro");
const std::string album = apeItem("Album", "Tin Parade");

std::string newTag(const ID3tag& record) {
    File none;
    const NewAPETag tag = encodeAPETag({{}, record, ~FieldSet{0}}, none, {}, {}, CodePage(1252));
    std::string bytes;
    for (const Piece& piece : tag.pieces.all()) bytes += piece.bytes;
    return bytes;
}

TEST(APEv2, EveryKeyFeedsItsField) {
    using Get = std::function<std::string(const ID3tag&)>;
    struct Case {
        std::string_view key, value;
        Get get;
        std::string expected;
    };
    const Case cases[] = {
        {"Track", "3/12", [](auto& r) { return r.GetNumber(); }, "3/12"},
        {"Track", "7", [](auto& r) { return std::to_string(r.TrackNumber); }, "7"},
        {"Artist", "Глас", [](auto& r) { return std::string(r.GetArtist()); }, "Глас"},
        {"Title", "Song [Live]", [](auto& r) { return std::string(r.GetTitle()); }, "Song"},
        {"Title", "Song (Live)", [](auto& r) { return std::string(r.GetMix()); }, "Live"},
        {"Album", "Tin Parade", [](auto& r) { return std::string(r.GetAlbum()); }, "Tin Parade"},
        {"Year", "2004", [](auto& r) { return std::string(r.GetYear()); }, "2004"},
        {"Genre", "rock", [](auto& r) { return std::to_string(r.Genre); }, "17"},
        {"Genre", "Sea Shanty", [](auto& r) { return std::string(r.GetGenre()); }, "Sea Shanty"},
        {"Comment", "loud", [](auto& r) { return r.ID3v2Ext.Comments; }, "loud"},
        {"Composer", "A. Writer", [](auto& r) { return r.ID3v2Ext.Composer; }, "A. Writer"},
        {"Copyright", "2004 Label", [](auto& r) { return r.ID3v2Ext.CopyRight; }, "2004 Label"},
        {"Encoded by", "A Person", [](auto& r) { return r.ID3v2Ext.EncodedBy; }, "A Person"},
    };
    for (const Case& c : cases) {
        const auto read = readTag(audio + ApeTag{{apeItem(c.key, c.value)}}.bytes());
        EXPECT_TRUE(read.record.IsAPE2Present);
        EXPECT_EQ(c.get(read.record), c.expected) << c.key;
        EXPECT_EQ(read.record.UnknownItems, "") << c.key;
    }
}

TEST(APEv2, OtherKeysAreKeptAsTheyAre) {
    const std::string lower = apeItem("artist", "small");
    const std::string gain = apeItem("REPLAYGAIN_TRACK_GAIN", "-1.0 dB", 1);
    const auto read = readTag(audio + ApeTag{{lower, artist, gain, album}}.bytes());
    EXPECT_EQ(read.record.GetArtist(), "Glass Metro");
    EXPECT_EQ(read.record.GetAlbum(), "Tin Parade");
    EXPECT_EQ(read.record.UnknownItems, lower + gain);
}

TEST(APEv2, TagBeginsAtItsHeaderWhenItHasOne) {
    ApeTag tag{{artist}};
    EXPECT_EQ(readTag(audio + tag.bytes()).found, 1000U);
    tag.header = false;
    EXPECT_EQ(readTag(audio + tag.bytes()).found, 1000U);
    EXPECT_EQ(readTag(tag.bytes()).found, 0U);
    EXPECT_EQ(readTag(tag.bytes()).record.GetArtist(), "Glass Metro");
}

TEST(APEv2, FooterLiesInTheLast256Bytes) {
    const std::string tag = ApeTag{{artist}}.bytes();
    for (const std::size_t behind : {0U, 1U, 128U, 223U, 224U}) {
        EXPECT_EQ(readTag(audio + tag + std::string(behind, 'y')).found, 1000U) << behind;
    }
    const auto tooFar = readTag(audio + tag + std::string(225, 'y'));
    EXPECT_EQ(tooFar.found, std::nullopt);
    EXPECT_FALSE(tooFar.record.IsAPE2Present);
}

TEST(APEv2, TheLastFooterCounts) {
    const std::string inner = ApeTag{{apeItem("Artist", "Inner")}}.bytes();
    const auto read = readTag(audio + ApeTag{{apeItem("Note", inner), artist}}.bytes());
    EXPECT_EQ(read.record.GetArtist(), "Glass Metro");
    EXPECT_EQ(read.found, 1000U);
}

TEST(APEv2, VersionsAndHeadersThatDoNotFitAreNoTag) {
    struct Case {
        std::string_view name;
        ApeTag tag;
        bool found;
    };
    const Case cases[] = {
        {"version 1000", {{artist}, 1000, false}, true},
        {"version 3000", {{artist}, 3000}, false},
        {"version 0", {{artist}, 0, false}, false},
        {"other header", {{artist}, 2000, true, 0, 0, "APETAGEY"}, false},
    };
    for (const Case& c : cases) {
        const auto read = readTag(audio + c.tag.bytes());
        EXPECT_EQ(read.record.IsAPE2Present, c.found) << c.name;
        EXPECT_EQ(read.found.has_value(), c.found) << c.name;
        EXPECT_EQ(read.record.GetArtist(), c.found ? "Glass Metro" : "") << c.name;
    }
    for (const std::size_t kept : {8U, 9U, 31U}) {
        const std::string cut = ApeTag{{}, 2000, false}.bytes().substr(0, kept);
        EXPECT_EQ(readTag(audio + cut).found, std::nullopt) << kept;
        EXPECT_EQ(readTag(cut).found, std::nullopt) << kept;
    }
}

TEST(APEv2, LyingSizesAndCountsNeverInventItems) {
    const int most = 0x7FFFFFFF;
    struct Case {
        int size, count;
        std::string_view artist, album;
    };
    const Case cases[] = {
        {0, -1, "Glass Metro", ""},
        {0, 1, "Glass Metro", "Tin Parade"},
        {0, most, "Glass Metro", "Tin Parade"},
        {0, -2, "", ""},
    };
    for (const Case& c : cases) {
        ApeTag tag{{artist, album}, 2000, false, c.size, c.count};
        const ID3tag record = readTag(audio + tag.bytes()).record;
        EXPECT_EQ(record.GetArtist(), c.artist) << c.size << ' ' << c.count;
        EXPECT_EQ(record.GetAlbum(), c.album) << c.size << ' ' << c.count;
    }
    for (const int lie : {most, 1100, -70, -200}) {
        for (const bool header : {false, true}) {
            ApeTag tag{{artist, album}, 2000, header, lie};
            EXPECT_EQ(readTag(audio + tag.bytes()).record.GetArtist(), "") << lie;
        }
    }
}

TEST(APEv2, ItemThatRunsPastTheTagEndsTheWalk) {
    std::string tooLong = album;
    tooLong[0] = 11;  // 10 are there; the footer begins behind them
    for (const std::string& broken : {tooLong, "\xFF\xFF\xFF\xFF" + album.substr(4)}) {
        const auto read = readTag(audio + ApeTag{{artist, broken}}.bytes());
        EXPECT_EQ(read.record.GetArtist(), "Glass Metro");
        EXPECT_EQ(read.record.GetAlbum(), "");
    }
}

TEST(APEv2, ValuesAreUtf8OrInTheCodePage) {
    const auto artistOf = [](std::string_view value, std::uint32_t version, int codePage) {
        const ApeTag tag{{apeItem("Artist", value)}, version, false};
        return std::string(readTag(tag.bytes(), ReadDepth::List, codePage).record.GetArtist());
    };
    EXPECT_EQ(artistOf("Песня", 2000, 1252), "Песня");
    EXPECT_EQ(artistOf("\xCF\xE5\xF1\xED\xFF", 2000, 1251), "Песня");
    EXPECT_EQ(artistOf("\xCF\xE5\xF1\xED\xFF", 1000, 1251), "Песня");
    EXPECT_EQ(artistOf("Caf\xE9", 1000, 1252), "Café");
    // Version 1000 knows no UTF-8.
    EXPECT_EQ(artistOf("Caf\xC3\xA9", 1000, 1252), "CafÃ©");
}

TEST(APEv2, CoverKindComesFromItsName) {
    constexpr std::pair<std::string_view, FileTypes> cases[] = {
        {"Cover.jpg", FileType::Jpeg}, {"cover.JPG", FileType::Jpeg}, {"jpg", FileType::Jpeg},
        {"a.png", FileType::Png},      {"a.bmp", FileType::Bmp},      {"a.gif", FileType::None},
    };
    for (const auto& [name, type] : cases) {
        const std::string value = std::string(name) + "\0picture\0data"s;
        const std::string bytes =
            audio + ApeTag{{apeItem("Cover Art (front)", value, 2), artist}}.bytes();
        const ID3tag full = readTag(bytes).record;
        EXPECT_EQ(std::string(full.AlbumArt.Data.begin(), full.AlbumArt.Data.end()),
                  "picture\0data"s);
        EXPECT_EQ(full.AlbumArtType, type) << name;
        const ID3tag listed = readTag(bytes, ReadDepth::List).record;
        EXPECT_EQ(listed.AlbumArt.Size, 12U) << name;
        EXPECT_TRUE(listed.AlbumArt.Data.empty());
        EXPECT_EQ(listed.GetArtist(), "Glass Metro");
    }
}

TEST(APEv2, WrittenTagHasItsItemsInOrder) {
    ID3tag record;
    EXPECT_EQ(newTag(record), ApeTag{}.bytes());
    record.SetNumber("3/12");
    record.SetArtist("Глас");
    record.SetTitle("Song");
    record.SetMix("Live");
    record.SetAlbum("Tin Parade");
    record.SetYear("2004");
    record.SetGenre("Sea Shanty");
    record.SetComment("loud");
    record.ID3v2Ext.Composer = "A. Writer";
    record.ID3v2Ext.CopyRight = "2004 Label";
    record.ID3v2Ext.EncodedBy = "A Person";
    record.AlbumArt = {4, "image/png", "front.png", 3, {'d', 0, 'a', 't'}};
    record.AlbumArtType = FileType::Png;
    const std::vector<std::string> items{
        apeItem("Track", "3/12"),
        apeItem("Artist", "Глас"),
        apeItem("Title", "Song (Live)"),
        album,
        apeItem("Year", "2004"),
        apeItem("Genre", "Sea Shanty"),
        apeItem("Comment", "loud"),
        apeItem("Composer", "A. Writer"),
        apeItem("Copyright", "2004 Label"),
        apeItem("Encoded by", "A Person"),
        apeItem("Cover Art (front)", "front.png\0d\0at"s, 2),
    };
    EXPECT_EQ(newTag(record), ApeTag{items}.bytes());
    EXPECT_EQ(newTag({}), ApeTag{}.bytes());
}

TEST(APEv2, TagOfAFileIsReplacedAndKeepsWhatWasNotEdited) {
    struct Case {
        std::string_view name;
        ApeTag old;
        std::vector<std::string> items;
    };
    const std::string two = apeItem("Artist", "One\0Two"s), note = apeItem("Note", "n");
    const std::string picture = apeItem("Cover Art (front)", "a.jpg\0data"s, 2);
    const Case cases[] = {
        {"no tag", {}, {album}},
        {"grows", {{artist}}, {artist, album}},
        {"shrinks", {{apeItem("Album", std::string(500, 'a')), note}}, {album, note}},
        {"two values", {{note, two, picture}}, {note, two, picture, album}},
        {"lower case", {{apeItem("album", "old"), artist}}, {album, artist}},
        {"twice", {{apeItem("Album", "a"), note, apeItem("ALBUM", "b")}}, {album, note}},
        {"capitals stay",
         {{apeItem("ARTIST", "other"), artist}},
         {apeItem("ARTIST", "other"), artist, album}},
        {"flags stay",
         {{apeItem("GAIN", "-1", 1), picture}},
         {apeItem("GAIN", "-1", 1), picture, album}},
        {"8-bit text",
         {{apeItem("Artist", "Caf\xE9"), apeItem("Note", "\xC3\xA9")}, 1000, false},
         {apeItem("Artist", "Café"), apeItem("Note", "Ã©"), album}},
    };
    for (const Case& c : cases) {
        const std::string old = c.old.items.empty() ? "" : c.old.bytes();
        const std::string expected = audio + ApeTag{c.items}.bytes();
        const Edit setAlbum = [](ID3tag& r) { r.SetAlbum("Tin Parade"); };
        EXPECT_EQ(editFile(audio + old, setAlbum, {}, 1252, "a.mpc"), expected) << c.name;
    }
}

TEST(APEv2, TagStandsInFrontOfALyricsBlock) {
    const std::string lyrics = lyrics3(lyricsField("LYR", std::string(400, 'l')));
    const ApeTag old{{artist, apeItem("Album", "Old")}}, both{{artist, album}}, one{{album}};
    TagSettings settings;
    settings.ape2 = true;
    for (const bool isThere : {true, false}) {
        const std::string before = audio + (isThere ? old.bytes() : "") + lyrics + Id3v1{}.block();
        std::string written = editFile(
            before, [](ID3tag& r) { r.SetAlbum("Tin Parade"); }, settings);
        written.erase(0, written.find(audio));
        const Id3v1 block{"", "", "Tin Parade", "", ""};
        EXPECT_EQ(written, audio + (isThere ? both : one).bytes() + lyrics + block.block());
    }
}

TEST(APEv2, CountsOfAFileThatHasNoOtherTagAreItems) {
    ApeTag start;
    start.items = {apeItem("Track", "3")};
    const auto counts = [](ID3tag& r) {
        r.TracksCount = 12;
        r.DiskNumber = 1;
    };
    const std::string edited = editFile(audio + start.bytes(), counts, {}, 1252, "a.mpc");
    EXPECT_NE(edited.find(apeItem("TracksCount", "12") + apeItem("DiskNumber", "1")),
              std::string::npos);
    EXPECT_EQ(readTag(edited).record.TracksCount, 12);
    // An MP3 file's item of that name is nobody's, and stays.
    start.items.push_back(apeItem("TracksCount", "5"));
    TagSettings settings;
    settings.ape2 = true;
    const auto album = [](ID3tag& r) { r.SetAlbum("A"); };
    EXPECT_NE(editFile(audio + start.bytes(), album, settings).find(apeItem("TracksCount", "5")),
              std::string::npos);
}

}  // namespace
}  // namespace tavlo::test
