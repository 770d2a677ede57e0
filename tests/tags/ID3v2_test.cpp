#include "tags/ID3v2.h"

#include <gtest/gtest.h>

#include <functional>

#include "support/ReadBytes.h"
#include "tags/ID3v2Frame.h"

namespace tavlo::test {
namespace {

auto readTag(std::string_view bytes, ReadDepth depth = ReadDepth::Full, int codePage = 1252) {
    return readTagWith(ReadID3v2Tag, bytes, depth, codePage);
}

ID3tag recordOf(std::string_view bytes, int codePage = 1252) {
    return readTag(bytes, ReadDepth::Full, codePage).record;
}

TEST(ID3v2, EveryTextFrameFeedsItsField) {
    using Get = std::function<std::string(const ID3tag&)>;
    struct Case {
        std::string_view id, oldId, text;
        Get get;
        std::string expected;
    };
    const Case cases[] = {
        {"TRCK", "TRK", "3/12", [](auto& r) { return r.GetNumber(); }, "3/12"},
        {"TRCK", "TRK", "0", [](auto& r) { return r.GetNumber(); }, ""},
        {"TRCK", "TRK", "0", [](auto& r) { return r.ID3v2Ext.TrackNumber; }, ""},
        {"TRCK", "TRK", "07", [](auto& r) { return std::to_string(r.TrackNumber); }, "7"},
        {"TIT2", "TT2", "Song (Live)", [](auto& r) { return r.ID3v2Ext.TrackTitle; }, "Song"},
        {"TIT2", "TT2", "Song (Live)", [](auto& r) { return r.ID3v2Ext.Mix; }, "Live"},
        {"TPE1", "TP1", "Paper Comets", [](auto& r) { return r.ID3v2Ext.Artist; }, "Paper Comets"},
        {"TPE1", "TP1", "Paper Comets", [](auto& r) { return r.Artist; }, "Paper Comets"},
        {"TALB", "TAL", "Orbit", [](auto& r) { return r.ID3v2Ext.AlbumTitle; }, "Orbit"},
        {"TYER", "TYE", "2004", [](auto& r) { return std::string(r.GetYear()); }, "2004"},
        {"TCON", "TCO", "(17)", [](auto& r) { return std::string(r.GetGenre()); }, "Rock"},
        {"TCON", "TCO", "17", [](auto& r) { return std::to_string(r.Genre); }, "17"},
        {"TCON", "TCO", "Sea Shanty", [](auto& r) { return std::string(r.GetGenre()); },
         "Sea Shanty"},
        {"TCON", "TCO", "Sea Shanty", [](auto& r) { return std::to_string(r.Genre); }, "255"},
        {"TCOM", "TCM", "A. Writer", [](auto& r) { return r.ID3v2Ext.Composer; }, "A. Writer"},
        {"TOPE", "", "First One", [](auto& r) { return r.ID3v2Ext.OriginalArtist; }, "First One"},
        {"TCOP", "", "2004 Label", [](auto& r) { return r.ID3v2Ext.CopyRight; }, "2004 Label"},
        {"TENC", "TEN", "A Person", [](auto& r) { return r.ID3v2Ext.EncodedBy; }, "A Person"},
        {"TSSE", "", "-V2", [](auto& r) { return r.ID3v2Ext.EncoderInfo; }, "-V2"},
        {"TCMP", "", "1", [](auto& r) { return std::to_string(int{r.IsPartOfCompilation}); }, "1"},
        {"TCMP", "", "0", [](auto& r) { return std::to_string(int{r.IsPartOfCompilation}); }, "0"},
    };
    for (const Case& c : cases) {
        for (const int version : {2, 3, 4}) {
            const std::string_view id = version == 2 ? c.oldId : c.id;
            if (id.empty()) continue;
            const ID3tag record = recordOf(tag(version, textFrame(version, id, c.text)));
            EXPECT_EQ(c.get(record), c.expected) << id << ' ' << c.text;
        }
    }
}

TEST(ID3v2, HeaderIsKept) {
    const std::string body = textFrame(4, "TALB", "A") + std::string(300, '\0');
    const auto read = readTag(tag(4, body, 0x20));
    EXPECT_TRUE(read.found);
    EXPECT_TRUE(read.record.IsID3v2Present);
    EXPECT_EQ(read.record.ID3v2Ext.MajorVersion, 4);
    EXPECT_EQ(read.record.ID3v2Ext.MinorVersion, 0);
    EXPECT_EQ(read.record.ID3v2Ext.TagSize, body.size());
    EXPECT_TRUE(read.record.ID3v2Ext.bExperimentalIndicator);
    EXPECT_FALSE(read.record.ID3v2Ext.bUnsynchronisation);
    EXPECT_FALSE(read.record.ID3v2Ext.bExtendedHeader);
    EXPECT_FALSE(read.record.ID3v2Ext.bFooterPresent);
    EXPECT_FALSE(readTag("").found);
    EXPECT_FALSE(readTag("ID").found);
    EXPECT_FALSE(readTag("id3" + tag(3, body).substr(3)).found);
    EXPECT_FALSE(readTag("x" + tag(3, body)).found);
}

TEST(ID3v2, TextsAreDecodedByTheirEncodingByte) {
    struct Case {
        int encoding;
        std::string text;
        std::string_view expected;
    };
    const std::string little = "\xFF\xFE", big = "\xFE\xFF";
    const Case cases[] = {
        {0, "Caf\xE9", "Café"},
        {0, "Title\0"s, "Title"},
        {1, little + utf16le(u"Снег"), "Снег"},
        {1, big + utf16be(u"Снег"), "Снег"},
        {1, little + utf16le(u"Снег") + "\0\0"s, "Снег"},
        {1, little + utf16le(u"a\U0001D11Eb"),
         "a\xF0\x9D\x84\x9E"
         "b"},
        {1, little, ""},
        {2, utf16be(u"Снег"), "Снег"},
        {2, utf16be(u"\U0001D11E") + "\0\0"s, "\xF0\x9D\x84\x9E"},
        {3, "Снег", "Снег"},
        {3, "Снег\0"s, "Снег"},
    };
    for (const Case& c : cases) {
        const ID3tag record = recordOf(tag(4, textFrame(4, "TALB", c.text, c.encoding)));
        EXPECT_EQ(record.GetAlbum(), c.expected) << c.encoding << testing::PrintToString(c.text);
    }
    const std::string cyrillic = tag(3, textFrame(3, "TPE1", "\xCF\xE5\xF1\xED\xFF"));
    EXPECT_EQ(recordOf(cyrillic, 1251).GetArtist(), "Песня");
    EXPECT_EQ(recordOf(cyrillic, 1252).GetArtist(), "Ïåñíÿ");
}

TEST(ID3v2, CommentsSkipLanguageAndDescription) {
    const std::string mark = "\xFF\xFE";
    const std::pair<std::string, std::string_view> cases[] = {
        {"\0eng\0text"s, "text"},
        {"\0rus\0text\0"s, "text"},
        {"\x01"
         "eng" +
             mark + "\0\0"s + mark + utf16le(u"Снег"),
         "Снег"},
        {"\x01"
         "eng" +
             mark + "\0\0\xFE\xFF"s + utf16be(u"Снег"),
         "Снег"},
        {"\0eng"s, ""},
        {"\0en"s, ""},
        {"\0engnever ended"s, ""},
    };
    for (const auto& [body, expected] : cases) {
        EXPECT_EQ(recordOf(tag(3, frame(3, "COMM", body))).GetComment(), expected)
            << testing::PrintToString(body);
        EXPECT_EQ(recordOf(tag(2, frame(2, "COM", body))).GetComment(), expected)
            << testing::PrintToString(body);
    }
}

TEST(ID3v2, FirstCommentWithoutDescriptionWinsAndOthersAreKept) {
    // In UTF-16 the description ends at an aligned pair of zeroes: "Ā" and "a" make an odd one.
    const std::string odd = frame(3, "COMM",
                                  "\x01"
                                  "eng\xFF\xFE" +
                                      utf16le(u"\u0100a") + "\0\0\xFF\xFE"s + utf16le(u"not this"));
    const std::string gain = frame(3, "COMM", "\0engiTunNORM\0 0000 1111"s);
    const std::string first = frame(3, "COMM", "\0eng\0first"s);
    const std::string second = frame(3, "COMM", "\0eng\0second"s);
    const ID3tag record = recordOf(tag(3, odd + gain + first + second));
    EXPECT_EQ(record.GetComment(), "first");
    EXPECT_EQ(record.ID3v2Ext.UnknownFrames, odd + gain + second);
    EXPECT_EQ(recordOf(tag(3, gain)).GetComment(), "");
}

TEST(ID3v2, FramesThatAreNotInterpretedAreKeptInFileOrder) {
    for (const int version : {3, 4}) {
        const std::string unknown[] = {
            frame(version, "PCNT", "\0\0\0\x05"s),      textFrame(version, "TXXX", "mood\0calm"s),
            frame(version, "PRIV", "owner\0\x01\x02"s), frame(version, "SYTC", "\x01\x64"),
            frame(version, "USLT", "\0eng\0la la"s),    textFrame(version, "TLEN", "1234"),
        };
        std::string body = textFrame(version, "TIT2", "Title"), kept;
        for (const std::string& bytes : unknown) kept += bytes;
        body += unknown[0] + textFrame(version, "TALB", "Album") + kept.substr(unknown[0].size()) +
                textFrame(version, "TPE1", "Artist");
        const ID3tag record = recordOf(tag(version, body));
        EXPECT_EQ(record.ID3v2Ext.UnknownFrames, kept);
        EXPECT_EQ(record.GetTitle(), "Title");
        EXPECT_EQ(record.GetArtist(), "Artist");
    }
}

TEST(ID3v2, UrlIsTheTextBehindTheDescription) {
    for (const int version : {3, 4}) {
        const std::string body = frame(version, "WXXX", "\0\0http://example.org/\0"s);
        EXPECT_EQ(recordOf(tag(version, body)).ID3v2Ext.URL, "http://example.org/");
    }
    // The description is UTF-16, the address is 8-bit all the same.
    const std::string wide = frame(3, "WXXX", "\x01\xFF\xFE\0\0http://example.org/"s);
    EXPECT_EQ(recordOf(tag(3, wide)).ID3v2Ext.URL, "http://example.org/");
}

TEST(ID3v2, WalkEndsAtPaddingOrAFrameThatRunsPastTheBody) {
    const std::string artist = textFrame(3, "TPE1", "Artist");
    const std::string title = textFrame(3, "TIT2", "Title");
    const std::string tooLong = "TALB" + bigEndian(7, 4) + "\0\0"s + "\0Album"s;  // 6 are there
    const std::string exact = "TALB" + bigEndian(6, 4) + "\0\0"s + "\0Album"s;
    const std::string huge = "TALB\xFF\xFF\xFF\xFF\0\0"s + title;
    EXPECT_EQ(recordOf(tag(3, artist + exact)).GetAlbum(), "Album");
    EXPECT_EQ(recordOf(tag(3, artist + tooLong)).GetAlbum(), "");
    EXPECT_EQ(recordOf(tag(3, artist + tooLong)).GetArtist(), "Artist");
    EXPECT_EQ(recordOf(tag(3, artist + huge)).GetTitle(), "");
    EXPECT_EQ(recordOf(tag(3, artist + std::string(10, '\0') + title)).GetTitle(), "");
    EXPECT_EQ(recordOf(tag(3, "\0\0\0\0"s + title)).GetTitle(), "");
    // What follows the tag belongs to the audio.
    EXPECT_EQ(recordOf(tag(3, artist) + title).GetTitle(), "");
}

TEST(ID3v2, FramesWithOddNamesAreKeptAndPassedOver) {
    const std::string odd = frame(3, "xyzw", "\0keep"s) + frame(3, "TPE ", "\0not an artist"s);
    const std::string body = odd + textFrame(3, "TALB", "Album");
    EXPECT_EQ(recordOf(tag(3, body)).GetAlbum(), "Album");
    EXPECT_EQ(recordOf(tag(3, body)).ID3v2Ext.UnknownFrames, odd);
    // Names of version 2 in a tag of version 3, filled up.
    EXPECT_EQ(recordOf(tag(3, textFrame(3, "TT2\0"s, "Title"))).GetTitle(), "Title");
}

TEST(ID3v2, ValuesThatMeanNothingHideNothing) {
    const std::string v1 = Id3v1{"", "", "", "", "old", 0, 7, 17}.block();
    const std::string body = textFrame(3, "TRCK", "0") + textFrame(3, "TCON", "(255)") +
                             frame(3, "COMM", "\0eng\0"s) + frame(3, "COMM", "\0eng\0new"s);
    const ID3tag record = readBytes(tag(3, body) + mpegFrames(4) + v1);
    EXPECT_EQ(record.GetNumber(), "7");
    EXPECT_EQ(record.GetGenre(), "Rock");
    EXPECT_EQ(record.GetComment(), "new");
}

TEST(ID3v2, TagCutByTheFileEndGivesTheFramesThatAreThere) {
    const std::string whole =
        tag(3, textFrame(3, "TPE1", "Artist") + textFrame(3, "TIT2", "Title"));
    const ID3tag record = recordOf(whole.substr(0, whole.size() - 1));
    EXPECT_TRUE(record.IsID3v2Present);
    EXPECT_EQ(record.GetArtist(), "Artist");
    EXPECT_EQ(record.GetTitle(), "");
}

TEST(ID3v2, SizesOfVersion4AreSyncsafeAndPlainOnesAreUnderstood) {
    const std::string album(200, 'a');
    const std::string after = textFrame(4, "TPE1", "Artist");
    const std::string plain = "TALB" + bigEndian(201, 4) + "\0\0\0"s + album;
    for (const std::string& first : {textFrame(4, "TALB", album), plain}) {
        const ID3tag record = recordOf(tag(4, first + after));
        EXPECT_EQ(record.GetAlbum(), album);
        EXPECT_EQ(record.GetArtist(), "Artist");
    }
    // Version 3 never has them syncsafe.
    const std::string syncsafeIn3 = "TALB" + syncsafe(201) + "\0\0\0"s + album;
    EXPECT_EQ(recordOf(tag(3, syncsafeIn3 + textFrame(3, "TPE1", "Artist"))).GetArtist(), "");
}

TEST(ID3v2, UnsynchronisationIsUndone) {
    const std::string text = "\x01\xFF\xFE" + utf16le(u"\u00FFa\u00FF");
    const std::string body = frame(3, "TALB", text) + textFrame(3, "TPE1", "\xFF\xFF");
    const ID3tag whole = recordOf(tag(3, unsynchronised(body), 0x80));
    EXPECT_TRUE(whole.ID3v2Ext.bUnsynchronisation);
    EXPECT_EQ(whole.GetAlbum(), "ÿaÿ");
    EXPECT_EQ(whole.GetArtist(), "ÿÿ");

    const std::string one = frame(4, "TALB", unsynchronised(text), 0x0002);
    EXPECT_EQ(recordOf(tag(4, one + textFrame(4, "TPE1", "B"))).GetAlbum(), "ÿaÿ");
    EXPECT_EQ(recordOf(tag(4, one + textFrame(4, "TPE1", "B"))).GetArtist(), "B");
}

TEST(ID3v2, FramePrefixesAndCompressionAreTakenOff) {
    const std::string text = "\0"s + std::string(400, 'a');
    const std::string packed = zlibPacked(text);
    const auto size = static_cast<std::uint32_t>(text.size());
    struct Case {
        int version;
        std::uint16_t flags;
        std::string body;
    };
    const Case cases[] = {
        {3, 0x0080, bigEndian(size, 4) + packed},
        {3, 0x0020, "g" + text},
        {3, 0x00A0, bigEndian(size, 4) + "g" + packed},
        {4, 0x0009, syncsafe(size) + packed},
        {4, 0x0001, syncsafe(size) + text},
        {4, 0x0040, "g" + text},
    };
    for (const Case& c : cases) {
        const ID3tag record = recordOf(tag(c.version, frame(c.version, "TALB", c.body, c.flags) +
                                                          textFrame(c.version, "TPE1", "B")));
        EXPECT_EQ(record.GetAlbum(), text.substr(1)) << c.version << ' ' << c.flags;
        EXPECT_EQ(record.GetArtist(), "B") << c.version << ' ' << c.flags;
    }
    for (const std::string& broken : {bigEndian(size + 1, 4) + packed, bigEndian(size, 4) + "junk",
                                      "\xFF\xFF\xFF\xFF" + packed, "\0"s}) {
        const std::string body = frame(3, "TALB", broken, 0x80) + textFrame(3, "TPE1", "B");
        EXPECT_EQ(recordOf(tag(3, body)).GetAlbum(), "");
        EXPECT_EQ(recordOf(tag(3, body)).GetArtist(), "B");
    }
    // What is encrypted cannot be read but must not be lost.
    const std::string secret = frame(3, "TALB", "\x01" + text, 0x0040);
    EXPECT_EQ(recordOf(tag(3, secret)).GetAlbum(), "");
    EXPECT_EQ(recordOf(tag(3, secret)).ID3v2Ext.UnknownFrames, secret);
}

TEST(ID3v2, ExtendedHeaderIsSkipped) {
    const std::string extended3 = bigEndian(6, 4) + "\0\0"s + bigEndian(0, 4);
    const std::string extended3Crc = bigEndian(10, 4) + "\x80\0"s + bigEndian(0, 4) + "crc!";
    const std::string extended4 = syncsafe(6) + "\x01\0"s;
    const std::string extended4Crc = syncsafe(12) + "\x01\x20\x05"s + "\x01\x02\x03\x04\x05";
    EXPECT_EQ(recordOf(tag(3, extended3 + textFrame(3, "TALB", "A"), 0x40)).GetAlbum(), "A");
    EXPECT_EQ(recordOf(tag(3, extended3Crc + textFrame(3, "TALB", "A"), 0x40)).GetAlbum(), "A");
    EXPECT_EQ(recordOf(tag(4, extended4 + textFrame(4, "TALB", "A"), 0x40)).GetAlbum(), "A");
    EXPECT_EQ(recordOf(tag(4, extended4Crc + textFrame(4, "TALB", "A"), 0x40)).GetAlbum(), "A");
    EXPECT_TRUE(recordOf(tag(4, extended4, 0x40)).ID3v2Ext.bExtendedHeader);
    EXPECT_EQ(recordOf(tag(3, "\xFF\xFF\xFF\xFF"s + textFrame(3, "TALB", "A"), 0x40)).GetAlbum(),
              "A");
    EXPECT_TRUE(recordOf(tag(3, bigEndian(6, 4) + "no frame here", 0x40)).ID3v2Ext.bDamaged);
}

TEST(ID3v2, FooterDoesNotCountAsAFrame) {
    const std::string body = textFrame(4, "TALB", "A");
    const ID3tag record = readBytes(tag(4, body, 0x10) + tagFooter(body, 0x10) + mpegFrames(4));
    EXPECT_TRUE(record.ID3v2Ext.bFooterPresent);
    EXPECT_EQ(record.GetAlbum(), "A");
    EXPECT_EQ(record.Frames, 4U);
}

TEST(ID3v2, YearComesFromTheRecordingTime) {
    EXPECT_EQ(recordOf(tag(4, textFrame(4, "TDRC", "2007"))).GetYear(), "2007");
    EXPECT_EQ(recordOf(tag(4, textFrame(4, "TDRC", "2007-05-01T10:00"))).GetYear(), "2007");
    // Some writers of version 3 use it too.
    EXPECT_EQ(recordOf(tag(3, textFrame(3, "TDRC", "2007-05"))).ID3v2Ext.RecordingTime, "2007-05");
}

TEST(ID3v2, BracketKindOfTheMixIsRemembered) {
    for (const std::string title : {"Song (Live)", "Song [Live]"}) {
        const ID3tag record = recordOf(tag(3, textFrame(3, "TIT2", title)));
        EXPECT_EQ(record.GetMix(), "Live");
        EXPECT_EQ(record.GetTitleMixV2(), title);
        EXPECT_EQ(record.GetTitleMix(), "Song (Live)");
    }
}

std::string pictureFrame(std::string_view mime, int type, std::string_view data) {
    return frame(
        3, "APIC",
        "\0"s + std::string(mime) + '\0' + static_cast<char>(type) + "text\0"s + std::string(data));
}

std::string pictureBytes(const ID3tag& record) {
    return {record.AlbumArt.Data.begin(), record.AlbumArt.Data.end()};
}

TEST(ID3v2, PicturesAreReadWithTheirKind) {
    const std::string jpeg = "\xFF\xD8\xFF\xE0\0jpeg data"s;
    struct Case {
        std::string bytes;
        FileTypes type;
    };
    const Case cases[] = {
        {tag(3, pictureFrame("image/jpeg", 3, jpeg)), FileType::Jpeg},
        {tag(3, pictureFrame("IMAGE/PNG", 3, jpeg)), FileType::Png},
        {tag(3, pictureFrame("image/bmp", 0, jpeg)), FileType::Bmp},
        {tag(3, pictureFrame("image/webp", 3, jpeg)), FileType::None},
        {tag(3, frame(3, "APIC",
                      "\x01image/png\0\x03\xFF\xFE"s + utf16le(u"\u0100a") + "\0\0"s + jpeg)),
         FileType::Png},
        {tag(2, frame(2, "PIC", "\0jpg\x03text\0"s + jpeg)), FileType::Jpeg},
        {tag(2, frame(2, "PIC", "\0PNG\x03\0"s + jpeg)), FileType::Png},
    };
    for (const Case& c : cases) {
        const ID3tag full = recordOf(c.bytes);
        EXPECT_EQ(pictureBytes(full), jpeg);
        EXPECT_EQ(full.AlbumArtType, c.type);
        const ID3tag listed = readTag(c.bytes, ReadDepth::List).record;
        EXPECT_EQ(listed.AlbumArt.Size, jpeg.size());
        EXPECT_EQ(listed.AlbumArtType, c.type);
        EXPECT_TRUE(listed.AlbumArt.Data.empty());
    }
}

TEST(ID3v2, FrontCoverWinsAndOtherPicturesAreKept) {
    const std::string back = pictureFrame("image/png", 4, "back");
    const std::string front = pictureFrame("image/jpeg", 3, "front");
    const std::string second = pictureFrame("image/jpeg", 3, "second");
    const std::string link = pictureFrame("-->", 3, "http://example.org/a.jpg");
    const std::string text = pictureFrame("text/plain", 3, "no picture");
    const ID3tag record = recordOf(tag(3, link + back + front + text + second));
    EXPECT_EQ(pictureBytes(record), "front");
    EXPECT_EQ(record.AlbumArtType, FileType::Jpeg);
    EXPECT_EQ(record.ID3v2Ext.UnknownFrames, link + back + text + second);
    EXPECT_EQ(pictureBytes(recordOf(tag(3, back))), "back");
}

}  // namespace
}  // namespace tavlo::test
