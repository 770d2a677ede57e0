#include "tags/ID3tag.h"

#include <gtest/gtest.h>

namespace tavlo {
namespace {

TEST(ID3tag, NewRecordHasNoGenre) {
    const ID3tag record;
    EXPECT_EQ(record.Genre, 255);
    EXPECT_EQ(record.GetGenre(), "");
    EXPECT_EQ(record.GetNumber(), "");
    EXPECT_FALSE(record.OK);
}

TEST(ID3tag, TimesAreMinutesAndTwoDigitSeconds) {
    struct Case {
        int seconds;
        std::string_view time, time2x2;
    };
    constexpr Case cases[] = {
        {0, "0:00", "00:00"},     {9, "0:09", "00:09"},        {59, "0:59", "00:59"},
        {60, "1:00", "01:00"},    {245, "4:05", "04:05"},      {600, "10:00", "10:00"},
        {3600, "60:00", "60:00"}, {36000, "600:00", "600:00"},
    };
    for (const Case& c : cases) {
        ID3tag record;
        record.Seconds = c.seconds;
        EXPECT_EQ(record.Time(), c.time);
        EXPECT_EQ(record.Time2x2(), c.time2x2);
    }
}

TEST(ID3tag, TitleAndMixAreSplitAtTheLastBracket) {
    struct Case {
        std::string_view text, title, mix, joined, joinedV2;
    };
    constexpr Case cases[] = {
        {"Song (Radio Edit)", "Song", "Radio Edit", "Song (Radio Edit)", "Song (Radio Edit)"},
        {"Song [Live]", "Song", "Live", "Song (Live)", "Song [Live]"},
        {"Song (Live) Remastered", "Song (Live) Remastered", "", "Song (Live) Remastered",
         "Song (Live) Remastered"},
        {"  Song  (  Dub )  ", "Song", "Dub", "Song (Dub)", "Song (Dub)"},
        {"Song (One) (Two)", "Song (One)", "Two", "Song (One) (Two)", "Song (One) (Two)"},
        {"Song (One) [Two]", "Song (One)", "Two", "Song (One) (Two)", "Song (One) [Two]"},
        {"Song)", "Song)", "", "Song)", "Song)"},
        {"Song [Live)", "Song [Live)", "", "Song [Live)", "Song [Live)"},
        {"Song ()", "Song", "", "Song", "Song"},
        {"", "", "", "", ""},
    };
    for (const Case& c : cases) {
        ID3tag record;
        record.SetTitleMix("Old (Old)");
        record.SetTitleMix(c.text);
        EXPECT_EQ(record.GetTitle(), c.title) << c.text;
        EXPECT_EQ(record.GetMix(), c.mix) << c.text;
        EXPECT_EQ(record.GetTitleMix(), c.joined) << c.text;
        EXPECT_EQ(record.GetTitleMixV2(), c.joinedV2) << c.text;
        record.SetArtist("Artist");
        EXPECT_EQ(record.GetArtistTitleMix(), "Artist - " + std::string(c.joined));
    }
}

TEST(ID3tag, ArtistIsLeftOutWhereThereIsNone) {
    ID3tag record;
    record.SetTitleMix("Song (Live)");
    EXPECT_EQ(record.GetArtistTitleMix(), "Song (Live)");
}

TEST(ID3tag, LongFormWinsAndTheShortFieldStandsIn) {
    struct Case {
        std::string ID3tag::*shortField;
        std::string cID3v2ext::*longField;
        std::string_view (ID3tag::*get)() const;
        void (ID3tag::*set)(std::string_view);
    };
    constexpr Case cases[] = {
        {&ID3tag::Title, &cID3v2ext::TrackTitle, &ID3tag::GetTitle, &ID3tag::SetTitle},
        {&ID3tag::Artist, &cID3v2ext::Artist, &ID3tag::GetArtist, &ID3tag::SetArtist},
        {&ID3tag::Album, &cID3v2ext::AlbumTitle, &ID3tag::GetAlbum, &ID3tag::SetAlbum},
        {&ID3tag::Year, &cID3v2ext::Year, &ID3tag::GetYear, &ID3tag::SetYear},
        {&ID3tag::Comment, &cID3v2ext::Comments, &ID3tag::GetComment, &ID3tag::SetComment},
    };
    for (const Case& c : cases) {
        ID3tag record;
        record.*c.shortField = "  short ";
        EXPECT_EQ((record.*c.get)(), "short");
        record.ID3v2Ext.*c.longField = "   ";
        EXPECT_EQ((record.*c.get)(), "short");
        record.ID3v2Ext.*c.longField = " long form  ";
        EXPECT_EQ((record.*c.get)(), "long form");
        (record.*c.set)("both");
        EXPECT_EQ(record.*c.shortField, "both");
        EXPECT_EQ(record.ID3v2Ext.*c.longField, "both");
        (record.*c.set)("");
        EXPECT_EQ((record.*c.get)(), "");
    }
}

TEST(ID3tag, NumbersAreKeptAsTextAndAsNumbers) {
    struct Case {
        std::string_view text, shown;
        int track, count;
    };
    constexpr Case cases[] = {
        {"7", "7", 7, 0},
        {"3/12", "3/12", 3, 12},
        {"0", "", 0, 0},
        {"", "", 0, 0},
    };
    for (const Case& c : cases) {
        ID3tag record;
        record.SetNumber("99");
        record.SetNumber(c.text);
        EXPECT_EQ(record.GetNumber(), c.shown) << c.text;
        EXPECT_EQ(record.TrackNumber, c.track) << c.text;
        EXPECT_EQ(record.TracksCount, c.count) << c.text;
    }
    ID3tag record;
    record.TrackNumber = 5;
    EXPECT_EQ(record.GetNumber(), "5");
    record.SetNumberL(12);
    EXPECT_EQ(record.GetNumber(), "12");
    EXPECT_EQ(record.TrackNumber, 12);
}

TEST(ID3tag, GenreIsANumberOrTextBesideNone) {
    ID3tag record;
    record.SetGenre("Rock");
    EXPECT_EQ(record.GetGenreID(), 17);
    EXPECT_EQ(record.GetGenre(), "Rock");
    record.SetGenre("Sea Shanty");
    EXPECT_EQ(record.GetGenreID(), 255);
    EXPECT_EQ(record.GetGenre(), "Sea Shanty");
    record.SetGenreID(8);
    EXPECT_EQ(record.GetGenre(), "Jazz");
}

TEST(ID3tag, BatchChangeTouchesOnlyWhatIsGiven) {
    ID3tag record;
    record.SetArtist("Artist");
    record.SetTitleMix("Song (Live)");
    record.SetGenre("Rock");
    record.ID3v2Ext.Composer = "Composer";
    BasicFields fields;
    fields.album = " Album ";
    fields.url = "http://example.org/";
    record.UpdateBasicFields(fields);
    EXPECT_EQ(record.GetAlbum(), "Album");
    EXPECT_EQ(record.ID3v2Ext.URL, "http://example.org/");
    EXPECT_EQ(record.GetArtist(), "Artist");
    EXPECT_EQ(record.GetTitleMix(), "Song (Live)");
    EXPECT_EQ(record.GetGenreID(), 17);
    EXPECT_EQ(record.ID3v2Ext.Composer, "Composer");
}

TEST(ID3tag, TagsOfAnotherRecordAreTakenOverWithoutItsStream) {
    ID3tag source;
    source.SetTitleMix("Song [Live]");
    source.SetNumber("3/12");
    source.ID3v2Ext.Genre = "Eurodisco";  // a refinement beside its number
    source.Genre = 4;
    source.DiskNumber = 1;
    source.AlbumArt.Data = {1, 2, 3};
    source.Seconds = 100;
    ID3tag target;
    target.FileType = FileType::Mpc;
    target.Seconds = 99;
    target.FillFromID3(source);
    EXPECT_EQ(target.GetTitleMixV2(), "Song [Live]");
    EXPECT_EQ(target.GetNumber(), "3/12");
    EXPECT_EQ(target.GetGenre(), "Eurodisco");
    EXPECT_EQ(target.GetGenreID(), 4);
    EXPECT_EQ(target.AlbumArt.Data.size(), 3U);
    EXPECT_EQ(target.Seconds, 99);
    const std::vector<std::pair<std::string, std::string>> items{{"TracksCount", "12"},
                                                                 {"DiskNumber", "1"}};
    EXPECT_EQ(target.MPCExt.Items, items);
}

}  // namespace
}  // namespace tavlo
