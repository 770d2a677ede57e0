#include "tags/ID3v2Writer.h"

#include <gtest/gtest.h>

#include "support/EditFile.h"
#include "support/ReadBytes.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

const std::string audio(3000, 'x');

std::string marked(std::u16string_view text) {
    return "\xFF\xFE" + utf16le(text);
}

TagSettings settingsOf(int version, bool unicode = false) {
    TagSettings settings;
    settings.id3v1 = false;
    settings.id3v24 = version == 4;
    settings.id3v2Unicode = unicode;
    return settings;
}

std::string framesOf(const ID3tag& record, const TagSettings& settings, int codePage = 1252) {
    const Writing writing(settings, codePage);
    File none;
    const ID3tag before;
    const NewFrames frames =
        encodeID3v2Frames({before, record, ~FieldSet{0}}, none, {}, writing.context);
    std::string bytes;
    for (const Piece& piece : frames.pieces.all()) bytes += piece.bytes;
    return bytes;
}

ID3tag fullRecord(int version) {
    ID3tag record;
    cID3v2ext& ext = record.ID3v2Ext;
    record.SetTitle("Song");
    record.SetMix("Live");
    record.SetArtist("Café");
    record.SetAlbum("Orbit");
    record.SetComment(std::string(200, 'c'));
    record.SetGenre("Sea Shanty");
    record.SetNumber("3");
    record.TracksCount = 12;
    record.SetYear("2004");
    record.IsPartOfCompilation = true;
    record.DiskNumber = 1;
    record.DisksCount = 2;
    record.BPM = 128;
    record.AlbumArt = {4, "image/png", "front", 3, {'d', 0, 'a', 't'}};
    record.AlbumArtType = FileType::Png;
    ext.Composer = "A. Writer";
    ext.OriginalArtist = "First One";
    ext.CopyRight = "2004 Label";
    ext.EncodedBy = "A Person";
    ext.URL = "http://x.example/";
    ext.EncoderInfo = "-V2";
    ext.MajorVersion = static_cast<std::uint8_t>(version);
    return record;
}

TEST(ID3v2Writer, EveryFieldHasItsFrameInOrder) {
    struct Row {
        std::string_view id;
        std::string latin;
        std::u16string wide;
    };
    for (const auto& [version, unicode] : {std::pair{3, false}, {3, true}, {4, false}, {4, true}}) {
        const Row rows[] = {
            {"TIT2", "Song (Live)", u"Song (Live)"},
            {"TPE1", "Caf\xE9", u"Café"},
            {"TALB", "Orbit", u"Orbit"},
            {"COMM", std::string(200, 'c'), std::u16string(200, u'c')},
            {"TCOM", "A. Writer", u"A. Writer"},
            {"TCON", "Sea Shanty", u"Sea Shanty"},
            {"TOPE", "First One", u"First One"},
            {"TCOP", "2004 Label", u"2004 Label"},
            {"TENC", "A Person", u"A Person"},
            {"TRCK", "3/12", u"3/12"},
            {version == 4 ? "TDRC" : "TYER", "2004", u"2004"},
            {"WXXX", "http://x.example/", u""},
            {"TSSE", "-V2", u"-V2"},
            {"TCMP", "1", u"1"},
            {"TPOS", "1/2", u"1/2"},
            {"TBPM", "128", u"128"},
            {"APIC", "front", u"front"},
        };
        std::string expected;
        const std::string encoding = unicode ? "\1" : "\0"s;
        const std::string empty = unicode ? "\xFF\xFE\0\0"s : "\0"s;
        for (const Row& row : rows) {
            const std::string text = unicode ? marked(row.wide) : row.latin;
            std::string body = encoding + text;
            if (row.id == "COMM") body = encoding + "eng" + empty + text;
            if (row.id == "WXXX") body = encoding + empty + row.latin;
            if (row.id == "APIC") {
                body = encoding + "image/png\0\3"s + text + (unicode ? "\0\0"s : "\0"s) + "d\0at"s;
            }
            expected += frame(version, row.id, body);
        }
        const ID3tag record = fullRecord(version);
        const TagSettings settings = settingsOf(version, unicode);
        EXPECT_EQ(framesOf(record, settings), expected) << version << unicode;
        EXPECT_EQ(encodeID3v2Header(expected.size(), settings) + expected, tag(version, expected));
    }
    EXPECT_EQ(framesOf({}, settingsOf(3)), "");
}

const std::string padding(100, '\0');

TEST(ID3v2Writer, OnlyAFrameThatThePageCannotHoldIsUtf16) {
    ID3tag record;
    record.SetTitle("Song");
    record.SetArtist("Снег");
    record.SetComment("Снег");
    record.ID3v2Ext.URL = "http://x.example/";
    record.ID3v2Ext.URLDescription = "Снег";
    const std::string snow = "\xD1\xED\xE5\xE3";
    for (const int version : {3, 4}) {
        const std::string title = textFrame(version, "TIT2", "Song");
        EXPECT_EQ(framesOf(record, settingsOf(version), 1252),
                  title + textFrame(version, "TPE1", marked(u"Снег"), 1) +
                      frame(version, "COMM", "\1eng\xFF\xFE\0\0"s + marked(u"Снег")) +
                      frame(version, "WXXX", "\1" + marked(u"Снег") + "\0\0http://x.example/"s));
        EXPECT_EQ(framesOf(record, settingsOf(version), 1251),
                  title + textFrame(version, "TPE1", snow) +
                      frame(version, "COMM", "\0eng\0"s + snow) +
                      frame(version, "WXXX", "\0"s + snow + "\0http://x.example/"s));
    }
}

TEST(ID3v2Writer, GenresAreNumbersAndNames) {
    struct Case {
        std::uint8_t number;
        std::string_view name, text;
    };
    constexpr Case cases[] = {
        {200, "", "(200)"}, {255, "Sea Shanty", "Sea Shanty"}, {4, "Eurodisco", "(4)Eurodisco"}};
    for (const auto& [number, name, text] : cases) {
        ID3tag record;
        record.Genre = number;
        record.ID3v2Ext.Genre = name;
        EXPECT_EQ(framesOf(record, settingsOf(3)), textFrame(3, "TCON", text));
    }
}

TEST(ID3v2Writer, ATenthMoreThanTheFramesNeedAndNeverLessThan512) {
    constexpr std::pair<std::size_t, std::uint64_t> cases[] = {
        {0, 512},   {465, 512},   {466, 513},   {470, 517},
        {480, 528}, {1000, 1100}, {1001, 1102}, {largestTagSize, largestTagSize},
    };
    for (const auto& [frames, space] : cases) EXPECT_EQ(roomyTagSize(frames), space) << frames;
}

TEST(ID3v2Writer, TagIsPutInPlaceWhereItFits) {
    struct Case {
        std::size_t before;  ///< bytes of the frame in the file; 0 = no tag
        std::size_t padding, after, space;
        bool footer;
    };
    constexpr Case cases[] = {
        {0, 0, 465, 512, false},   {0, 0, 466, 513, false},    {100, 0, 100, 100, false},
        {100, 0, 101, 512, false}, {100, 20, 120, 120, false}, {100, 20, 121, 512, false},
        {600, 0, 12, 600, false},  {600, 0, 601, 662, false},  {600, 0, 610, 610, true},
        {600, 0, 611, 673, true},  {600, 0, 600, 610, true},
    };
    for (const Case& c : cases) {
        const auto artist = [](std::size_t frameSize, char c) {
            return textFrame(4, "TPE1", std::string(frameSize - 11, c));
        };
        std::string old;
        if (c.before > 0) {
            const std::string body = artist(c.before, 'a') + std::string(c.padding, '\0');
            old = tag(4, body, c.footer ? 0x10 : 0) + (c.footer ? tagFooter(body, 0x10) : "");
        }
        const Edit edit = [&](ID3tag& r) { r.SetArtist(std::string(c.after - 11, 'b')); };
        const std::string body = artist(c.after, 'b') + std::string(c.space - c.after, '\0');
        EXPECT_EQ(editFile(old + audio, edit, settingsOf(4)), tag(4, body) + audio)
            << c.before << ' ' << c.after;
    }
}

// Odd texts, in every place before and behind the field that is edited.
TEST(ID3v2Writer, FramesThatWereNotEditedKeepTheirBytesAndTheirPlace) {
    const std::string album = textFrame(4, "TALB", "New"), old = textFrame(4, "TALB", "Old one");
    const auto text = [](std::string_view id, std::string_view value, int encoding = 0) {
        return textFrame(4, id, value, encoding);
    };
    const std::string frames[] = {
        text("TPE1", "One\0Two"s),
        text("TPE1", "One") + text("TPE1", "Two"),
        text("TCON", "(17)"),
        text("TCON", "17\0Eurodisco"s),
        text("TIT2", "Song [Live]"),
        text("TIT2", "Song (Remix (2009 Edit))"),
        text("TIT2", "Song (live) :)"),
        text("TIT2", "[]"),
        text("TIT2", "  blanks \0"s),
        text("TIT2", marked(u"Wide"), 1),
        text("TPOS", "A"),
        text("TBPM", "fast"),
        text("TBPM", "127.98"),
        text("TCMP", "true"),
        text("TRCK", "03/012"),
        text("TYER", "1999") + text("TDRC", "2004-05-06"),
        text("TYER", "\xFF\xFE", 1),
        text("COMM", ""),
        frame(4, "COMM", "\0rus\0loud"s) + frame(4, "COMM", "\0eng\0more"s),
        frame(4, "WXXX", "\0home\0http://x.example/"s),
        frame(4, "TPE1", "\0\0\0\4\3Abc"s, 0x01),
        frame(4, "APIC", "\0image/png\0\4back\0data"s) +
            frame(4, "APIC", "\0image/png\0\3front\0more"s),
        frame(4, "PRIV", std::string(300, '\xFE')),
        frame(4, "TPE1", ""),
    };
    const Edit setAlbum = [](ID3tag& r) { r.SetAlbum("New"); };
    for (const std::string& f : frames) {
        const std::string body = f + old + f + std::string(100, '\0');
        const std::string written = editFile(tag(4, body) + audio, setAlbum, settingsOf(4));
        EXPECT_EQ(written, tag(4, f + album + f + std::string(104, '\0')) + audio) << f;
        const std::string added = editFile(tag(4, f + padding) + audio, setAlbum, settingsOf(4));
        EXPECT_EQ(added, tag(4, f + album + padding.substr(album.size())) + audio) << f;
    }
}

TEST(ID3v2Writer, FramesBeginWhereTheyAreFound) {
    const std::string frames = textFrame(3, "TIT2", "Song") + frame(3, "PCNT", "\0\0\0\7"s);
    const std::string frames4 = textFrame(4, "TIT2", "Song") + frame(4, "PCNT", "\0\0\0\7"s);
    const std::string old = "\0\0\0\6\0\0\0\0\0\0"s, flags = "\1\0"s;
    struct Case {
        int version;
        std::string header;
    };
    const Case cases[] = {
        {3, old},
        {3, ""},
        {3, "\0\0\0\x0A\0\0\0\0\0\0"s},
        {3, "\0\0\0\x0A\x80\0\0\0\0\0\1\2\3\4"s},
        {3, "\0\0\x7F\0\0\0\0\0\0\0"s},
        {4, "\0\0\0\6"s + flags},
        {4, old},
        {4, ""},
        {4, "\0\1\0\0"s + flags},
    };
    for (const Case& c : cases) {
        const std::string& whole = c.version == 3 ? frames : frames4;
        const std::string bytes = tag(c.version, c.header + whole + padding, 0x40) + audio;
        EXPECT_EQ(readBytes(bytes).GetTitle(), "Song") << c.version << c.header.size();
        const std::string written = editFile(
            bytes, [](ID3tag& r) { r.SetAlbum("New"); }, settingsOf(c.version));
        const std::string album = textFrame(c.version, "TALB", "New");
        const std::size_t room = c.header.size() + whole.size() + padding.size();
        EXPECT_EQ(
            written.substr(0, written.size() - audio.size()),
            tag(c.version, whole + album + std::string(room - whole.size() - album.size(), '\0')));
    }
}

TEST(ID3v2Writer, BytesThatAreNoFrameStayAtTheTagsEnd) {
    const std::string title = textFrame(3, "TIT2", "Song"), album = textFrame(3, "TALB", "New");
    const std::string rest = "TPE1\0\0\1\0\0\0half"s;
    const std::string sound = mpegFrames(9);
    const Edit setAlbum = [](ID3tag& r) { r.SetAlbum("New"); };
    EXPECT_EQ(editFile(tag(3, title + rest) + sound, setAlbum, settingsOf(3)),
              tag(3, title + album + rest) + sound);
    // Where sound does not begin behind the tag, the rest may be sound.
    const ID3tag record = readBytes(tag(3, title + rest) + "not " + sound, 1252, ReadDepth::Full);
    EXPECT_TRUE(record.ID3v2Ext.bDamaged);
}

TEST(ID3v2Writer, TagOfAnotherVersionIsWrittenAnew) {
    const std::string counter = "\0\0\0\x07"s, sync = "\xFF\xE0\xFF\0"s;
    struct Case {
        std::string_view name;
        int to;
        std::string old, expected;
    };
    const Case cases[] = {
        {"2 to 3", 3,
         tag(2,
             textFrame(2, "TT2", "Song") + frame(2, "CNT", counter) + textFrame(2, "TYE", "2004")),
         textFrame(3, "TIT2", "Song") + frame(3, "PCNT", counter) + textFrame(3, "TYER", "2004") +
             textFrame(3, "TALB", "New")},
        {"3 to 4", 4, tag(3, textFrame(3, "TYER", "2004") + frame(3, "MCDI", counter, 0x8000)),
         frame(4, "MCDI", counter, 0x4000) + textFrame(4, "TALB", "New") +
             textFrame(4, "TDRC", "2004")},
        {"a date of three parts", 4,
         tag(2, textFrame(2, "TYE", "2010") + textFrame(2, "TDA", "0304") +
                    textFrame(2, "TIM", "2359")),
         textFrame(4, "TALB", "New") + textFrame(4, "TDRC", "2010-04-03T23:59")},
        {"4 to 3", 3,
         tag(4, textFrame(4, "TDRC", "2004") + textFrame(4, "TPE1", "Снег", 3) +
                    textFrame(4, "TPE2", "Снег", 3)),
         textFrame(3, "TPE1", marked(u"Снег"), 1) + textFrame(3, "TPE2", marked(u"Снег"), 1) +
             textFrame(3, "TALB", "New") + textFrame(3, "TYER", "2004")},
        {"unsynchronised 3 to 3", 3, tag(3, unsynchronised(frame(3, "MCDI", sync)), 0x80),
         frame(3, "MCDI", sync) + textFrame(3, "TALB", "New")},
        {"unsynchronised 4 to 3", 3, tag(4, frame(4, "MCDI", unsynchronised(sync), 0x02), 0x80),
         frame(3, "MCDI", sync) + textFrame(3, "TALB", "New")},
    };
    for (const Case& c : cases) {
        const std::string written = editFile(
            c.old + audio, [](ID3tag& r) { r.SetAlbum("New"); }, settingsOf(c.to));
        const std::size_t space = written.size() - audio.size() - 10;
        ASSERT_GE(space, c.expected.size()) << c.name;
        const std::string padding(space - c.expected.size(), '\0');
        EXPECT_EQ(written, tag(c.to, c.expected + padding) + audio) << c.name;
    }
}

TEST(ID3v2Writer, NothingThatWasThereTwiceComesToLight) {
    const auto artists = textFrame(3, "TPE1", "first") + textFrame(3, "TPE1", "second");
    const auto artistAfter = [&](const std::string& bytes, const std::string& artist) {
        const auto edit = [&](ID3tag& r) { r.SetArtist(artist); };
        return std::string(readBytes(editFile(bytes, edit)).GetArtist());
    };
    EXPECT_EQ(artistAfter(tag(3, artists), ""), "");
    EXPECT_EQ(artistAfter(tag(3, artists), "new"), "new");
    // An old frame that fed no field gives way to the field's own.
    const std::string old = tag(2, textFrame(2, "TCR", "old"));
    const std::string edited = editFile(old, [](ID3tag& r) { r.ID3v2Ext.CopyRight = "new"; });
    EXPECT_EQ(edited.find("TCOP"), edited.rfind("TCOP"));
    EXPECT_EQ(edited.find("old"), std::string::npos);
}

}  // namespace
}  // namespace tavlo::test
