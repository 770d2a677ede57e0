#include "desk/TagChanges.h"

#include <gtest/gtest.h>

#include "support/EditFile.h"
#include "support/ListRows.h"
#include "support/RecordTexts.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

using FieldTexts = std::map<TagField, std::string>;

// A file with a value in every field, and what its record becomes by some changes.
class ChangedFile {
 public:
    explicit ChangedFile(bool ape2 = false, const std::string& name = "a.mp3")
        : name_(name), ape2_(ape2) {
        folder_.write(name, mpegFrames(9));
        write(setEveryField);
    }
    void write(const Edit& edit) {
        Writing writing({.ape2 = ape2_});
        ID3tag record = ReadAudioFile(folder_.path(name_), {writing.ansi});
        edit(record);
        EXPECT_NE(UpdateTags(record, writing.context), TagUpdate::Refused) << writing.messages.text;
    }
    void apply(const TagChanges& changes) {
        write([&](ID3tag& record) { changes.applyTo(record); });
    }
    [[nodiscard]] ID3tag record() const {
        const CodePage ansi(1252);
        return ReadAudioFile(folder_.path(name_), {ansi, ReadDepth::Full});
    }
    /// All fields as a list shows them.
    FieldTexts texts() {
        const FileRow row = rowOf(record(), folder_.path(name_), store_);
        FieldTexts all;
        for (const TagFieldRow& field : tagFields()) all[field.field] = field.get(row);
        return all;
    }

 private:
    TempFolder folder_;
    TextStore store_;
    const std::string name_;
    const bool ape2_;
};

const FieldTexts fullFile{{TagField::Artist, "Artist Ж"},
                          {TagField::Title, "A title of more than thirty characters"},
                          {TagField::Mix, "Mix"},
                          {TagField::Album, "Album"},
                          {TagField::Year, "2007"},
                          {TagField::Track, "3/12"},
                          {TagField::Disk, "1/2"},
                          {TagField::Genre, "Rock"},
                          {TagField::Comment, "Comment"},
                          {TagField::Composer, "Composer"},
                          {TagField::OriginalArtist, "Original"},
                          {TagField::CopyRight, "Copyright"},
                          {TagField::Url, "http://a/"},
                          {TagField::EncodedBy, "Encoder"},
                          {TagField::Bpm, "120"},
                          {TagField::Compilation, "1"}};

TEST(TagChanges, WhatIsTypedIsWhatTheFileHolds) {
    const struct {
        const char* name;
        FieldTexts typed;
        FieldTexts differing;  // from `fullFile`
    } cases[] = {
        {"number and count", {{TagField::Track, "7/13"}}, {{TagField::Track, "7/13"}}},
        {"the count goes", {{TagField::Track, "7"}}, {{TagField::Track, "7"}}},
        {"the number goes", {{TagField::Track, ""}}, {{TagField::Track, ""}}},
        {"disk of some", {{TagField::Disk, "2/3"}}, {{TagField::Disk, "2/3"}}},
        {"disk alone", {{TagField::Disk, " 2 "}}, {{TagField::Disk, "2"}}},
        {"no disk", {{TagField::Disk, ""}}, {{TagField::Disk, ""}}},
        {"no compilation", {{TagField::Compilation, ""}}, {{TagField::Compilation, ""}}},
        {"speed", {{TagField::Bpm, "98"}}, {{TagField::Bpm, "98"}}},
        {"long texts",
         {{TagField::Artist, std::string(300, 'x')}, {TagField::Comment, "Ж\nя"}},
         {{TagField::Artist, std::string(300, 'x')}, {TagField::Comment, "Ж\nя"}}},
        {"outer blanks", {{TagField::Composer, "  C  "}}, {{TagField::Composer, "C"}}},
        {"genre beyond the list", {{TagField::Genre, "Own"}}, {{TagField::Genre, "Own"}}},
        {"title keeps the mix", {{TagField::Title, "New"}}, {{TagField::Title, "New"}}},
        {"mix alone", {{TagField::Mix, "Live"}}, {{TagField::Mix, "Live"}}},
        {"mix goes", {{TagField::Mix, ""}}, {{TagField::Mix, ""}}},
        {"title and mix",
         {{TagField::Title, "New (A)"}, {TagField::Mix, "B"}},
         {{TagField::Title, "New (A)"}, {TagField::Mix, "B"}}},
        {"mix with brackets", {{TagField::Mix, "B (2)"}}, {{TagField::Mix, "B (2)"}}},
    };
    for (const auto& c : cases) {
        FieldTexts expected = fullFile;
        for (const auto& [field, text] : c.differing) expected[field] = text;
        for (const bool ape2 : {false, true}) {
            ChangedFile file(ape2);
            ASSERT_EQ(file.texts(), fullFile);
            file.apply({c.typed, {}});
            EXPECT_EQ(file.texts(), expected) << c.name << (ape2 ? ", APEv2 as well" : "");
        }
    }
}

TEST(TagChanges, BracketsAtATitlesEndAreItsMix) {
    const struct {
        const char *typed, *title, *mix;
    } cases[] = {{"Song (Live)", "Song", "Live"},  {"Song [Live]", "Song", "Live"},
                 {"Song (Live) ", "Song", "Live"}, {"Song (Live) at", "Song (Live) at", ""},
                 {"(Live)", "", "Live"},           {"Song )", "Song )", ""}};
    for (const auto& c : cases) {
        ChangedFile file;
        file.apply({{{TagField::Mix, ""}}, {}});
        file.apply({{{TagField::Title, c.typed}}, {}});
        const FieldTexts texts = file.texts();
        EXPECT_EQ(texts.at(TagField::Title), c.title) << c.typed;
        EXPECT_EQ(texts.at(TagField::Mix), c.mix) << c.typed;
    }
}

TEST(TagChanges, EveryFieldCanBeEmptiedAndFilled) {
    TagChanges empty;
    for (const TagFieldRow& field : tagFields()) empty.texts[field.field] = "";
    ChangedFile file;
    file.apply(empty);
    for (const auto& [field, text] : file.texts()) {
        EXPECT_EQ(text, "") << static_cast<int>(field);
    }
    EXPECT_GT(file.record().AlbumArt.Size, 0U) << "nobody asked for the cover to go";
    file.apply({fullFile, {}});
    EXPECT_EQ(file.texts(), fullFile);
    // Filled and emptied one by one, no field touches another.
    for (const TagFieldRow& field : tagFields()) {
        FieldTexts expected = fullFile;
        expected[field.field] = "";
        // A title that is gone leaves its mix in brackets.
        file.apply({{{field.field, ""}}, {}});
        EXPECT_EQ(file.texts(), expected) << static_cast<int>(field.field);
        file.apply({fullFile, {}});
    }
}

TEST(TagChanges, CoverIsPutInAndTakenAway) {
    const cAlbumArt jpeg{4, "image/jpeg", "new", 3, {0xFF, 0xD8, 0xFF, 0xE0}};
    ChangedFile file;
    TagChanges changes;
    changes.picture = std::make_shared<cAlbumArt>(jpeg);
    EXPECT_FALSE(changes.isEmpty());
    file.apply(changes);
    EXPECT_EQ(file.record().AlbumArt.Data, jpeg.Data);
    EXPECT_EQ(file.record().AlbumArt.MIME, "image/jpeg");
    EXPECT_EQ(file.record().AlbumArtType, FileType::Jpeg);
    EXPECT_EQ(file.texts(), fullFile);

    TagChanges later;
    later.texts[TagField::Album] = "";
    later.add({{{TagField::Year, "1999"}}, std::make_shared<cAlbumArt>()});
    changes.add(later);
    file.apply(changes);
    EXPECT_EQ(file.record().AlbumArt.Size, 0U) << "the later one counts";
    EXPECT_EQ(file.texts()[TagField::Year], "1999");
    EXPECT_EQ(file.texts()[TagField::Album], "");
    file.apply(later);
    EXPECT_EQ(file.record().AlbumArt.Size, 0U);
}

class Pending : public testing::Test {
 protected:
    Pending() {
        const char* artists[] = {"A", "A", "B", ""};
        for (const char* artist : artists) {
            FileRow& row = list.add(std::to_string(list.rows.size()) + ".mp3");
            list.set(row, RowText::Artist, artist);
            row.diskNumber = 1;
            row.disksCount = static_cast<std::uint16_t>(list.rows.size() / 3);
        }
        list.appendTo(table);
    }
    void edit(const std::vector<RowId>& rows, const FieldTexts& texts) {
        edits.add(rows, {texts, {}});
    }
    // "?" before the text where it differs.
    [[nodiscard]] std::string common(const std::vector<RowId>& rows, TagField field) const {
        const CommonValue value = edits.common(table, rows, field);
        return (value.differs ? "?" : "") + value.text;
    }

    ListRows list;
    FileTable table;
    PendingEdits edits;
};

TEST_F(Pending, CommonValueIsThatOfTheEdits) {
    constexpr TagField artist = TagField::Artist;
    EXPECT_EQ(common({}, artist), "");
    EXPECT_EQ(common({0, 1}, artist), "A");
    EXPECT_EQ(common({0, 1, 2}, artist), "?A");
    EXPECT_EQ(common({3, 0}, artist), "?");
    EXPECT_EQ(common({0, 1}, TagField::Disk), "1");
    EXPECT_EQ(common({2, 3}, TagField::Disk), "1/1");
    EXPECT_EQ(common({1, 2}, TagField::Disk), "?1");
    edit({1}, {{artist, "B"}});
    EXPECT_EQ(common({0, 1}, artist), "?A");
    EXPECT_EQ(common({1, 2}, artist), "B");
    edit({0, 1, 2}, {{artist, ""}});
    EXPECT_EQ(common({0, 1, 2, 3}, artist), "") << "emptied on purpose, and empty on the disk";
    EXPECT_EQ(common({0, 1, 2, 3}, TagField::Album), "");
    edits.drop(std::vector<RowId>{2});
    EXPECT_EQ(common({1, 2}, artist), "?");
}

TEST_F(Pending, RowsThatAreEditedTogetherShareOneSet) {
    edit({3, 1, 2}, {{TagField::Album, "One"}});
    EXPECT_EQ(edits.of(1), edits.of(3));
    EXPECT_EQ(edits.rows(), (std::vector<RowId>{1, 2, 3}));
    const auto before = edits.of(3);
    edit({0, 1, 2}, {{TagField::Album, "Two"}, {TagField::Year, "2000"}});
    EXPECT_EQ(edits.of(1), edits.of(2));
    EXPECT_NE(edits.of(0), edits.of(1)) << "they had other edits before";
    EXPECT_EQ(edits.of(3), before);
    EXPECT_EQ(before->texts, (FieldTexts{{TagField::Album, "One"}}));
    edit({1}, {{TagField::Artist, "C"}});
    EXPECT_EQ(
        edits.of(1)->texts,
        (FieldTexts{{TagField::Artist, "C"}, {TagField::Album, "Two"}, {TagField::Year, "2000"}}));
    EXPECT_FALSE(edits.of(2)->texts.contains(TagField::Artist));
    EXPECT_EQ(edits.count(), 4U);
    edits.drop(std::vector<RowId>{0, 1, 2, 3});
    EXPECT_TRUE(edits.isEmpty());
    EXPECT_EQ(edits.of(1), nullptr);
}

TEST_F(Pending, NothingChangedIsNoEdit) {
    edits.add(std::vector<RowId>{0, 1}, {});
    EXPECT_TRUE(edits.isEmpty());
    EXPECT_FALSE(edits.has(0));
}

}  // namespace
}  // namespace tavlo::test
