#include "desk/TagParts.h"

#include <gtest/gtest.h>

#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

TagParts partsOf(const std::string& bytes) {
    const CodePage ansi(1252);
    File file;
    file.openMemory(bytesOf(bytes));
    return readParts(file, readLayers(file, FileType::Mp3, ansi), ansi);
}

// "id text", with the size in front where it is not the text's own.
std::vector<std::string> lines(const TagParts& found) {
    std::vector<std::string> all;
    for (const TagPart& part : found.parts) all.push_back(part.id + " " + part.text);
    return all;
}

const std::string png =
    "\x89PNG\r\n\x1A\n"s + bigEndian(13, 4) + "IHDR" + bigEndian(40, 4) + bigEndian(30, 4);

TEST(TagParts, EveryFrameIsListed) {
    const std::string frames =
        textFrame(3, "TIT2", "Title") + textFrame(3, "TIT2", "Second") +
        textFrame(3, "TPE1", "\xFF\xFE"s + utf16le(u"Снег"), 1) +
        textFrame(3, "TXXX", "MOOD\0calm"s) + frame(3, "COMM", "\0eng\0First\nSecond"s) +
        frame(3, "USLT", "\0rusWords\0La la"s) + frame(3, "WXXX", "\0Shop\0http://a/"s) +
        frame(3, "WOAR", "http://b/") + frame(3, "PRIV", "owner\0\x01\x02"s) +
        frame(3, "PCNT", "\0\0\x01\x05"s) + frame(3, "POPM", "me\0\xFF\0\0\0\x03"s) +
        frame(3, "XYZ1", "\x01\x02\x03"s) +
        frame(3, "TCOM", bigEndian(9, 4) + zlibPacked("\0Composer"s), 0x0080) +
        frame(3, "TENC", "secret", 0x0040) + frame(3, "TALB", "\x09what"s);
    const std::vector<std::string> expected{"TIT2 Title",
                                            "TIT2 Second",
                                            "TPE1 Снег",
                                            "TXXX MOOD: calm",
                                            "COMM eng: First Second",
                                            "USLT rus, Words: La la",
                                            "WXXX Shop: http://a/",
                                            "WOAR http://b/",
                                            "PRIV owner",
                                            "PCNT 261",
                                            "POPM me: 255, 3",
                                            "XYZ1 ",
                                            "TCOM Composer",
                                            "TENC ",
                                            "TALB "};
    const TagParts found = partsOf(tag(3, frames) + mpegFrames(3));
    EXPECT_EQ(lines(found), expected);
    EXPECT_EQ(found.parts[0].size, 6U);
    // The whole tag unsynchronised, and each frame of version 4 by itself.
    const std::string packed = unsynchronised(frames);
    EXPECT_EQ(lines(partsOf(tag(3, packed, 0x80) + mpegFrames(3))), expected);
    const std::string text = "\x01\xFF\xFE"s + utf16le(u"\u00FFa");
    EXPECT_EQ(lines(partsOf(tag(4, frame(4, "TIT2", unsynchronised(text), 2)) + mpegFrames(3))),
              std::vector<std::string>{"TIT2 ÿa"});
}

TEST(TagParts, PicturesAreGathered) {
    const std::string bytes = tag(2, frame(2, "PIC",
                                           "\0PNG\x03"
                                           "Front\0"s +
                                               png) +
                                         frame(2, "PIC", "\0JPG\x04\0no picture"s)) +
                              mpegFrames(3) +
                              ApeTag{{apeItem("Cover Art (back)", "b.png\0"s + png, 2),
                                      apeItem("Artist", "A\0B"s), apeItem("Blob", "\x01\x02"s, 2)}}
                                  .bytes() +
                              lyrics3(lyricsField("IND", "00") + lyricsField("LYR", "La\r\nla"));
    const TagParts found = partsOf(bytes);
    EXPECT_EQ(lines(found),
              (std::vector<std::string>{"PIC Front: PNG, 40 × 30", "PIC image/jpeg",
                                        "Cover Art (back) b.png: PNG, 40 × 30", "Artist A; B",
                                        "Blob ", "IND 00", "LYR La  la"}));
    ASSERT_EQ(found.pictures.size(), 3U);
    EXPECT_EQ(found.pictures[0].art.PictureType, 3);
    EXPECT_EQ(textOf(found.pictures[0].art.Data), png);
    EXPECT_EQ(textOf(found.pictures[2].art.Data), png);
}

TEST(TagParts, LongAndBrokenOnesAreBounded) {
    const TagParts found = partsOf(tag(3, frame(3, "USLT", "\3eng\0"s + std::string(2000, 'x'))));
    ASSERT_EQ(found.parts.size(), 1U);
    EXPECT_EQ(found.parts[0].size, 2005U);
    EXPECT_LT(found.parts[0].text.size(), 600U);
    for (const char* id : {"TIT2", "TXXX", "COMM", "WXXX", "POPM", "APIC", "PCNT", "UFID"}) {
        for (const std::string& body : {""s, "\x01"s, "\0e"s,
                                        "\x01"
                                        "eng\xFF"s}) {
            EXPECT_LE(partsOf(tag(3, frame(3, id, body) + textFrame(3, "TPE1", "A"))).parts.size(),
                      2U);
        }
    }
}

}  // namespace
}  // namespace tavlo::test
