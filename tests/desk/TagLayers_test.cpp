#include "desk/TagLayers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>
#include <utility>

#include "support/MemoryFile.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

const std::string longTitle = "A title of more than thirty characters";
const std::string jpeg = "\xFF\xD8\xFF\xC0\x00\x11\x08\x00\x02\x00\x03"s;

std::string picture(const std::string& bytes) {
    return frame(3, "APIC", "\0image/jpeg\0\x03\0"s + bytes);
}

std::vector<TagLayer> layersOf(const std::string& bytes, int codePage = 1252) {
    const CodePage ansi(codePage);
    File file;
    file.openMemory(bytesOf(bytes));
    return readLayers(file, FileType::Mp3, ansi);
}

LayerRow row(const std::string& bytes, Text caption, int codePage = 1252) {
    const auto rows = layerRows(layersOf(bytes, codePage), CodePage(codePage));
    return *std::find_if(rows.begin(), rows.end(),
                         [&](const LayerRow& r) { return r.caption == caption; });
}

TEST(TagLayers, EachIsReadForItself) {
    const std::string bytes = tag(3, textFrame(3, "TPE1", "Two")) + mpegFrames(3) +
                              ApeTag{{apeItem("Artist", "Ape")}}.bytes() +
                              lyrics3(lyricsField("EAR", "Lyrics")) +
                              Id3v1{"Title", "One", "", "", "", 0, 7, 17}.block();
    const auto layers = layersOf(bytes);
    ASSERT_EQ(layers.size(), 4U);
    const std::vector<std::string> names{"ID3v1.1", "Lyrics3 v2.00", "APEv2", "ID3v2.3"};
    for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(layers[i].name, names[i]);
    const LayerRow artists = row(bytes, Text::ColumnArtist);
    EXPECT_EQ(artists.values, (std::vector<std::string>{"One", "Lyrics", "Ape", "Two"}));
    EXPECT_TRUE(artists.conflicts);
    const LayerRow titles = row(bytes, Text::ColumnTitle);
    EXPECT_EQ(titles.values, (std::vector<std::string>{"Title", "", "", ""}));
    EXPECT_FALSE(titles.conflicts) << "only one of them has a title";
    // They lie one behind the other, and the sound between them.
    EXPECT_EQ(layers[3].span.end + mpegFrames(3).size(), layers[2].span.begin);
    EXPECT_EQ(layers[2].span.end, layers[1].span.begin);
    EXPECT_EQ(layers[1].span.end, layers[0].span.begin);
    EXPECT_EQ(layers[0].span.end, bytes.size());
}

TEST(TagLayers, BlockInsideAnotherTagIsNone) {
    // An item's text that looks like a block 128 bytes in front of the file's end.
    const std::string value = "TAG" + std::string(93, 'x');
    const auto layers = layersOf(mpegFrames(3) + ApeTag{{apeItem("Note", value)}}.bytes());
    for (const TagLayer& layer : layers) EXPECT_EQ(layer.kind, TagKind::APEv2);
    EXPECT_EQ(layers.size(), 1U);
    EXPECT_TRUE(layersOf(mpegFrames(3)).empty());
}

// What ID3v1 and ID3v2.4 say of one field.
struct Pair {
    const char* name;
    Text field;
    Id3v1 block;
    std::string id, text;
    bool conflicts;
    int codePage = 1252;
};

template <typename Value>
Id3v1 with(Value Id3v1::*member, std::type_identity_t<Value> value) {
    Id3v1 block;
    block.*member = std::move(value);
    return block;
}

constexpr auto title = &Id3v1::title, artist = &Id3v1::artist, year = &Id3v1::year,
               comment = &Id3v1::comment;
constexpr auto track = &Id3v1::track, genre = &Id3v1::genre;
const std::string spaced = longTitle.substr(0, 20) + std::string(12, ' ') + "end";

const Pair pairs[] = {
    {"cut", Text::ColumnTitle, with(title, longTitle.substr(0, 30)), "TIT2", longTitle, false},
    {"cut at blanks", Text::ColumnTitle, with(title, spaced.substr(0, 20)), "TIT2", spaced, false},
    {"cut early", Text::ColumnTitle, with(title, longTitle.substr(0, 29)), "TIT2", longTitle, true},
    {"begins alike", Text::ColumnTitle, with(title, "A title"), "TIT2", "A title of", true},
    {"says more", Text::ColumnTitle, with(title, "A title of"), "TIT2", "A title", true},
    {"with its mix", Text::ColumnTitle, with(title, "Orbit (Club)"), "TIT2", "Orbit (Club)", false},
    {"without it", Text::ColumnTitle, with(title, "Orbit"), "TIT2", "Orbit [Club]", false},
    {"other mix", Text::ColumnTitle, with(title, "Orbit (Radio)"), "TIT2", "Orbit (Club)", true},
    {"question marks", Text::ColumnArtist, with(artist, "????"), "TPE1", "Снег", false},
    {"other letters", Text::ColumnArtist, with(artist, "Sneg"), "TPE1", "Снег", true},
    {"plain letters", Text::ColumnArtist, with(artist, "Cafe"), "TPE1", "Café", true},
    {"for missing ones", Text::ColumnArtist,
     with(artist,
          "L\xF3"
          "dz"),
     "TPE1", "Łódź", false},
    {"1251", Text::ColumnArtist, with(artist, "\xD1\xED\xE5\xE3"), "TPE1", "Снег", false, 1251},
    {"of 28", Text::ColumnComment, with(comment, longTitle.substr(0, 28)), "COMM", longTitle,
     false},
    {"year alone", Text::ColumnYear, with(year, "2007"), "TDRC", "2007-05-03", false},
    {"other year", Text::ColumnYear, with(year, "2008"), "TDRC", "2007-05-03", true},
    {"number of many", Text::ColumnTrack, with(track, 3), "TRCK", "03/12", false},
    {"other number", Text::ColumnTrack, with(track, 4), "TRCK", "3/12", true},
    {"lowest 8 bits", Text::ColumnTrack, with(track, 44), "TRCK", "300", false},
    {"genre by number", Text::ColumnGenre, with(genre, 17), "TCON", "(17)", false},
    {"genre not listed", Text::ColumnGenre, with(genre, 12), "TCON", "Neurofunk", false},
    {"other genre", Text::ColumnGenre, with(genre, 17), "TCON", "Neurofunk", true},
};

TEST(TagLayers, WhatIsCutIsNoConflict) {
    for (const Pair& p : pairs) {
        const std::string head = p.id == "COMM" ? "\x03"s + "eng" + '\0' : "\x03"s;
        const std::string bytes =
            tag(4, frame(4, p.id, head + p.text)) + mpegFrames(3) + p.block.block();
        const LayerRow found = row(bytes, p.field, p.codePage);
        EXPECT_FALSE(found.values[0].empty() || found.values[1].empty()) << p.name;
        EXPECT_EQ(found.conflicts, p.conflicts) << p.name;
    }
}

TEST(TagLayers, FullTextsAreComparedWhole) {
    struct Case {
        std::string frame, item;
        Text field;
        bool conflicts;
    };
    const Case cases[] = {
        {textFrame(3, "TIT2", longTitle), apeItem("Title", longTitle.substr(0, 30)),
         Text::ColumnTitle, true},
        {textFrame(3, "TIT2", "Orbit (Club)"), apeItem("Title", "Orbit (Radio)"), Text::ColumnTitle,
         false},
        {textFrame(3, "TIT2", "Orbit (Club)"), apeItem("Title", "Orbit (Radio)"), Text::ColumnMix,
         true},
        {textFrame(3, "TPOS", "1/2"), apeItem("DiskNumber", "1"), Text::InfoDisc, false},
        {textFrame(3, "TPOS", "1/2"), apeItem("DiskNumber", "2"), Text::InfoDisc, true},
        {picture(jpeg), apeItem("Cover Art (front)", "a.jpg\0"s + jpeg, 2), Text::InfoPicture,
         false},
        {picture(jpeg), apeItem("Cover Art (front)", "a.jpg\0"s + jpeg + "x", 2), Text::InfoPicture,
         true},
    };
    for (const Case& c : cases) {
        const std::string bytes = tag(3, c.frame) + mpegFrames(3) + ApeTag{{c.item}}.bytes();
        const LayerRow found = row(bytes, c.field);
        EXPECT_EQ(found.conflicts, c.conflicts) << found.values[0] << " | " << found.values[1];
    }
}

// --- Carrying over -------------------------------------------------------------------------------

const std::string three =
    tag(3, textFrame(3, "TIT2", longTitle) + textFrame(3, "TPE1", "Two") +
               textFrame(3, "TCOM", "Composer") + picture(jpeg)) +
    mpegFrames(3) + ApeTag{{apeItem("Artist", "Ape"), apeItem("Title", "Song (Mix)")}}.bytes() +
    Id3v1{longTitle.substr(0, 30), "One", "Album", "", "", 0, 3, 17}.block();

TagUpdate carry(MemoryFile& file, std::string_view name) {
    ID3tag record = file.read(ReadDepth::List);
    const auto layers = layersOf(file.bytes());
    const auto chosen = std::find_if(layers.begin(), layers.end(),
                                     [&](const TagLayer& layer) { return layer.name == name; });
    return carryOver(record, layers, static_cast<std::size_t>(chosen - layers.begin()),
                     file.context);
}

std::vector<std::string> values(const MemoryFile& file, Text caption) {
    return row(file.bytes(), caption).values;
}

TEST(TagLayers, CarriesOneLayerIntoAll) {
    struct Case {
        std::string_view from;
        std::string artist, title, mix;
    };
    const Case cases[] = {{"ID3v1.1", "One", longTitle, ""},
                          {"APEv2", "Ape", "Song", "Mix"},
                          {"ID3v2.3", "Two", longTitle, ""}};
    for (const Case& c : cases) {
        MemoryFile file(three);  // the settings say that MP3 files get no APEv2 tag
        EXPECT_EQ(carry(file, c.from), TagUpdate::Written) << file.sink.text;
        EXPECT_EQ(values(file, Text::ColumnArtist), std::vector(3, c.artist)) << c.from;
        EXPECT_EQ(values(file, Text::ColumnTitle),
                  (std::vector{c.title.substr(0, 30), c.title, c.title}))
            << c.from;
        EXPECT_EQ(values(file, Text::ColumnMix), (std::vector{std::string(), c.mix, c.mix}));
        // What the layer lacks stays, and goes into the other tags as well.
        EXPECT_EQ(values(file, Text::ColumnAlbum), std::vector(3, "Album"s)) << c.from;
        EXPECT_EQ(values(file, Text::ColumnComposer)[2], "Composer") << c.from;
        EXPECT_EQ(values(file, Text::InfoPicture)[2], "JPEG, 3 × 2") << c.from;
        for (const LayerRow& found : layerRows(layersOf(file.bytes()), CodePage(1252))) {
            EXPECT_FALSE(found.conflicts) << c.from << ' ' << static_cast<int>(found.caption);
        }
        EXPECT_EQ(carry(file, c.from), TagUpdate::Unchanged) << "once more " << c.from;
    }
}

TEST(TagLayers, LyricsStayAsTheyAre) {
    const std::string lyrics = lyrics3(lyricsField("EAR", "Lyrics"));
    MemoryFile file(tag(3, textFrame(3, "TPE1", "Two")) + mpegFrames(3) + lyrics +
                    with(artist, "Two").block());
    EXPECT_EQ(carry(file, "ID3v2.3"), TagUpdate::Unchanged);
    EXPECT_EQ(carry(file, "Lyrics3 v2.00"), TagUpdate::Written);
    EXPECT_EQ(values(file, Text::ColumnArtist), std::vector(3, "Lyrics"s));
    EXPECT_NE(file.bytes().find(lyrics), std::string::npos);
}

TEST(TagLayers, FormatWithoutWriterSaysSo) {
    const std::string bytes = tag(3, textFrame(3, "TPE1", "Two")) + "fLaC";
    MemoryFile file(bytes, {}, "song.flac");
    EXPECT_EQ(carry(file, "ID3v2.3"), TagUpdate::Refused);
    EXPECT_FALSE(file.sink.text.empty());
    EXPECT_EQ(file.bytes(), bytes);
}

}  // namespace
}  // namespace tavlo::test
