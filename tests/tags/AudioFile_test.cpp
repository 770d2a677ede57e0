#include "tags/AudioFile.h"

#include <gtest/gtest.h>

#include "platform/Utf8.h"
#include "support/ReadBytes.h"
#include "support/RecordTexts.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

// The blocks that a file may carry, each with its own artist.
struct Blocks {
    bool v1 = false, lyrics = false, ape = false, v2 = false;

    std::string bytes() const {
        std::string file;
        if (v2) file += tag(3, textFrame(3, "TPE1", "Second") + textFrame(3, "TALB", ""));
        file += mpegFrames(20);
        if (ape) file += ApeTag{{apeItem("Artist", "Ape"), apeItem("Year", "2003")}}.bytes();
        if (lyrics) file += lyrics3(lyricsField("EAR", "Lyrics") + lyricsField("ETT", "Words"));
        if (v1) file += Id3v1{"Title", "First", "Album", "2001", "", 0, 7, 17}.block();
        return file;
    }
};

TEST(AudioFile, StrongerTagsWinFieldByField) {
    struct Case {
        Blocks blocks;
        std::string_view artist, title, album, year;
    };
    constexpr Case cases[] = {
        {{true, false, false, false}, "First", "Title", "Album", "2001"},
        {{true, true, false, false}, "Lyrics", "Words", "Album", "2001"},
        {{true, false, true, false}, "Ape", "Title", "Album", "2003"},
        {{true, false, true, true}, "Second", "Title", "Album", "2003"},
        {{true, false, false, true}, "Second", "Title", "Album", "2001"},
        {{false, true, false, true}, "Second", "Words", "", ""},
        {{true, true, false, true}, "Second", "Words", "Album", "2001"},
        {{false, false, false, false}, "", "", "", ""},
    };
    for (const Case& c : cases) {
        const ID3tag record = readBytes(c.blocks.bytes());
        EXPECT_EQ(record.GetArtist(), c.artist);
        EXPECT_EQ(record.GetTitle(), c.title);
        EXPECT_EQ(record.GetAlbum(), c.album);
        EXPECT_EQ(record.GetYear(), c.year);
        EXPECT_EQ(record.GetGenreID(), c.blocks.v1 ? 17 : 255);
        EXPECT_EQ(record.GetNumber(), c.blocks.v1 ? "7" : "");
        EXPECT_EQ(record.IsID3v1Present, c.blocks.v1);
        EXPECT_EQ(record.IsLyricsPresent, c.blocks.lyrics);
        EXPECT_EQ(record.IsAPE2Present, c.blocks.ape);
        EXPECT_EQ(record.IsID3v2Present, c.blocks.v2);
        EXPECT_EQ(record.Frames, 20U);
    }
}

TEST(AudioFile, LongTitleOfID3v2IsShownWhole) {
    const std::string title = "A title that has many more than thirty characters";
    const Id3v1 block{title.substr(0, 30), "", "", "", "", 0, 0, 255};
    EXPECT_EQ(readBytes(tag(3, textFrame(3, "TIT2", title)) + block.block()).GetTitle(), title);
}

TEST(AudioFile, RecordTellsWhereItCameFrom) {
    const TempFolder folder;
    const CodePage ansi(1252);
    const std::string bytes = Blocks{true}.bytes();
    const std::string path = folder.write("Пёс.MP3", bytes);
    const ID3tag record = ReadAudioFile(path, {ansi});
    EXPECT_TRUE(record.OK);
    EXPECT_EQ(record.Path, path);
    EXPECT_EQ(record.FileType, FileType::Mp3);
    EXPECT_EQ(record.Length, bytes.size());
    EXPECT_EQ(record.GetArtist(), "First");

    const ID3tag missing = ReadAudioFile(folder.path("none.mp3"), {ansi});
    EXPECT_FALSE(missing.OK);
    EXPECT_EQ(missing.Path, "");
    EXPECT_FALSE(ReadAudioFile(folder.makeFolder("folder.mp3"), {ansi}).OK);

    const ID3tag empty = ReadAudioFile(folder.write("a.aac", bytes), {ansi});
    EXPECT_EQ(empty.GetArtist(), "");
    EXPECT_EQ(empty.Bitrate, 0);
    EXPECT_FALSE(empty.IsID3v1Present);
}

TEST(AudioFile, ReadingChangesNoByte) {
    const TempFolder folder;
    const CodePage ansi(1252);
    const std::string bytes = Blocks{true, true, true, true}.bytes() + "trailing";
    const std::string path = folder.write("a.mp3", bytes);
    for (const ReadDepth depth : {ReadDepth::List, ReadDepth::Full}) {
        ReadAudioFile(path, {ansi, depth});
        EXPECT_EQ(folder.read("a.mp3"), bytes);
    }
}

TEST(AudioFile, DetailsAreLoadedLaterAndEditsStay) {
    const TempFolder folder;
    const CodePage ansi(1252);
    const std::string data(20000, 'p');
    const std::string counter = frame(3, "PCNT", "\0\0\0\x05"s);
    const std::string body = frame(3, "APIC", "\0image/png\0\x03\0"s + data) + counter +
                             textFrame(3, "TPE1", "Artist") + textFrame(3, "TALB", "Album");
    const std::string gain = apeItem("Gain", "-1");
    const std::string path =
        folder.write("a.mp3", tag(3, body) + mpegFrames(20) + ApeTag{{gain}}.bytes());
    ID3tag record = ReadAudioFile(path, {ansi});
    EXPECT_EQ(record.AlbumArt.Size, data.size());
    EXPECT_TRUE(record.AlbumArt.Data.empty());
    EXPECT_EQ(record.GetArtist(), "Artist");

    record.SetArtist("Edited");
    ASSERT_TRUE(LoadDetails(record, ansi));
    EXPECT_TRUE(std::string(record.AlbumArt.Data.begin(), record.AlbumArt.Data.end()) == data);
    EXPECT_EQ(record.AlbumArtType, FileType::Png);
    EXPECT_EQ(record.ID3v2Ext.UnknownFrames, counter);
    EXPECT_EQ(record.UnknownItems, gain);
    EXPECT_EQ(record.GetArtist(), "Edited");
    EXPECT_EQ(record.GetAlbum(), "Album");

    std::filesystem::remove(path);
    EXPECT_FALSE(LoadDetails(record, ansi));
}

// --- Files that stop short or were damaged -------------------------------------------------------

void expectReadable(std::string_view bytes, const std::string& what) {
    for (const ReadDepth depth : {ReadDepth::List, ReadDepth::Full}) {
        const ID3tag record = readBytes(bytes, 1251, depth);
        for (const std::string* text : textsOf(record)) {
            ASSERT_TRUE(isValidUtf8(*text)) << what << ": " << testing::PrintToString(*text);
        }
        ASSERT_LE(record.AlbumArt.Size, bytes.size()) << what;
        ASSERT_GE(record.Seconds, 0) << what;
    }
}

std::vector<std::string> everyKindOfFile() {
    const std::string cyrillic = "\x01\xFF\xFE" + utf16le(u"Снег\U0001D11E");
    const std::string packed = bigEndian(5, 4) + zlibPacked("\0text"s);
    const std::string body3 = frame(3, "TIT2", cyrillic) + frame(3, "TALB", packed, 0x80) +
                              frame(3, "COMM",
                                    "\x01"
                                    "eng\xFF\xFE\0\0\xFF\xFE"s +
                                        utf16le(u"Да")) +
                              frame(3, "APIC", "\0image/png\0\x03name\0"s + std::string(50, 'p'));
    const std::string body2 = frame(2, "TT2", cyrillic) + textFrame(2, "TCO", "(17)") +
                              frame(2, "PIC", "\0PNG\x03\0data"s);
    const std::string body4 = syncsafe(6) + "\x01\0"s + textFrame(4, "TPE1", "Снег", 3) +
                              textFrame(4, "TDRC", "2007-05", 0) +
                              frame(4, "WXXX", "\0\0http://a"s) + frame(4, "PRIV", "x\0y"s);
    const Id3v1 block{"\xCF\xE5\xF1\xED\xFF", "\xC0", "LYRICS", "2001", "c", 0, 7, 17};
    const std::string ape = ApeTag{
        {apeItem("Artist", "\xCF\xE5"), apeItem("Track", "1/2"),
         apeItem("Cover Art (front)", "a.jpg\0data"s,
                 2)}}.bytes();
    XingFrame first;
    first.frames = 2;
    first.bytes = 834;
    first.encoder = "LAME3.100";
    return {
        tag(2, body2) + first.frame() + cdFrames(1) + block.block(),
        tag(3, unsynchronised(body3), 0x80) + mpegFrames(2) + ape + block.block() + "behind",
        tag(4, body4, 0x50) + tagFooter(body4, 0x50) + mpegFrames(2) +
            lyrics3(lyricsField("ETT", "\xCF\xE5") + lyricsField("EAR", "b")) + block.block(),
    };
}

TEST(AudioFile, FilesCutAtEachLengthAreRead) {
    for (const std::string& whole : everyKindOfFile()) {
        for (std::size_t size = 0; size <= whole.size(); ++size) {
            expectReadable(whole.substr(0, size), "cut to " + std::to_string(size));
            expectReadable(whole.substr(size), "cut from " + std::to_string(size));
        }
    }
}

TEST(AudioFile, FilesWithOneDamagedByteAreRead) {
    for (const std::string& whole : everyKindOfFile()) {
        std::string damaged = whole;
        for (std::size_t at = 0; at < whole.size(); ++at) {
            for (const unsigned mask : {0x01U, 0x80U, 0xFFU}) {
                damaged[at] = static_cast<char>(static_cast<unsigned char>(whole[at]) ^ mask);
                expectReadable(damaged, "damaged at " + std::to_string(at));
            }
            damaged[at] = whole[at];
        }
    }
}

TEST(AudioFile, SmallFilesOfEverySizeAreRead) {
    for (const std::size_t size : {0U, 1U, 2U, 3U, 4U, 10U, 31U, 32U, 127U, 128U, 160U, 299U}) {
        for (const char filler : {'\0', '\xFF', 'T'}) {
            expectReadable(std::string(size, filler), std::to_string(size));
        }
    }
    // The blocks at the end are found in files shorter than the parts of the end that are searched.
    const std::string block = Id3v1{"Title", "First", "", "", "", 0, 0, 255}.block();
    const ID3tag record = readBytes(ApeTag{{apeItem("Album", "A")}, 2000, false}.bytes() + block);
    EXPECT_EQ(record.GetArtist(), "First");
    EXPECT_EQ(record.GetAlbum(), "A");
    const ID3tag lyrics = readBytes(lyrics3(lyricsField("EAR", "L")) + block);
    EXPECT_EQ(lyrics.GetArtist(), "L");
}

}  // namespace
}  // namespace tavlo::test
