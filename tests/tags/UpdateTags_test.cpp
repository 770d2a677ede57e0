#include "tags/UpdateTags.h"

#include <gtest/gtest.h>

#include "support/MemoryFile.h"
#include "support/RecordTexts.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

// Frames whose bytes differ, so that none can be moved or lost unseen.
std::string makeSound() {
    std::string bytes = mpegFrames(9);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\0') bytes[i] = static_cast<char>(1 + i * 7 % 125);
    }
    return bytes;
}

const std::string sound = makeSound();

void setTitle(ID3tag& record) {
    record.SetTitle("t");
}
const std::string counter = "\0\0\0\x05"s, gain = apeItem("Gain", "-1");
const std::string lyrics = lyrics3(lyricsField("EAR", "Lyrics"));
const std::string block = Id3v1{"Title", "Old", "Album", "2001", "", 0, 7, 17}.block();

std::string oldTag(int version, const std::string& behind = std::string(40, '\0')) {
    const bool old = version == 2;
    return tag(version, textFrame(version, old ? "TP1" : "TPE1", "Old") +
                            frame(version, old ? "CNT" : "PCNT", counter) + behind);
}

// The tags that a file carries, and the settings that it is written with.
struct Combination {
    bool v1, lyrics, ape;
    int v2;  // version, 0 = none
    TagSettings settings;

    [[nodiscard]] std::string bytes() const {
        return (v2 != 0 ? oldTag(v2) : "") + sound +
               (ape ? ApeTag{{apeItem("Artist", "Ape"), gain}}.bytes() : "") +
               (lyrics ? test::lyrics : "") + (v1 ? block : "");
    }
    [[nodiscard]] bool makesV2() const { return v2 != 0 || settings.id3v2; }
    [[nodiscard]] bool makesV1() const { return v1 || (makesV2() && settings.id3v1); }
    [[nodiscard]] bool makesApe() const { return ape || settings.ape2; }
    [[nodiscard]] Refusal refusal() const {
        if (!makesV2()) return Refusal::NoID3v2Tag;
        return makesV1() ? Refusal::None : Refusal::NoID3v1Tag;
    }
};

constexpr unsigned combinations = 1024;

Combination combination(unsigned number) {
    const auto bit = [&](unsigned place) { return (number >> place & 1U) != 0; };
    const int v2 = static_cast<int>(number & 3U);
    return {bit(2), bit(3), bit(4), v2 == 0 ? 0 : v2 + 1, {bit(5), bit(6), bit(7), bit(8), bit(9)}};
}

void expectTags(const ID3tag& found, const Combination& c) {
    EXPECT_EQ(found.IsID3v1Present, c.makesV1());
    EXPECT_EQ(found.IsID3v2Present, c.makesV2());
    EXPECT_EQ(found.IsAPE2Present, c.makesApe());
    EXPECT_EQ(found.IsLyricsPresent, c.lyrics);
}

void expectUnknownKept(const ID3tag& found, const Combination& c) {
    const int version = found.ID3v2Ext.MajorVersion;
    EXPECT_EQ(version, c.makesV2() ? 3 + int{c.settings.id3v24} : 0);
    EXPECT_EQ(found.ID3v2Ext.UnknownFrames, c.v2 != 0 ? frame(version, "PCNT", counter) : "");
    EXPECT_EQ(found.UnknownItems, c.ape ? gain : "");
}

constexpr std::array allWritten{TagKind::ID3v1, TagKind::APEv2, TagKind::ID3v2};

// Which tags went: "12A" for ID3v1, ID3v2 and APEv2, "L" for Lyrics3.
std::string removeKinds(MemoryFile& file, std::span<const TagKind> kinds) {
    constexpr std::string_view letters = "1LA2";
    ID3tag record = file.read();
    std::vector<TagKind> removed;
    if (RemoveTags(record, kinds, file.context, removed) == TagUpdate::Refused) return "refused";
    std::string names;
    for (const TagKind kind : removed) names += letters[static_cast<std::size_t>(kind)];
    return names;
}

// The file without the tags that can be written.
void expectBareSound(MemoryFile& file, const Combination& c) {
    EXPECT_NE(removeKinds(file, allWritten), "refused");
    EXPECT_TRUE(file.bytes() == sound + (c.lyrics ? lyrics : ""));
}

void checkCombination(const Combination& c) {
    MemoryFile file(c.bytes(), c.settings);
    ID3tag wanted;
    setEveryField(wanted);
    const TagUpdate result = file.change(setEveryField);
    const bool writes = c.makesV2() || c.settings.ape2;
    EXPECT_EQ(result, writes ? TagUpdate::Written : TagUpdate::Refused);
    EXPECT_EQ(file.record.Refused, c.refusal());
    EXPECT_EQ(file.record.OK, c.refusal() == Refusal::None);
    EXPECT_EQ(file.record.Path.empty(), !file.record.OK);
    const std::string written = file.bytes();
    if (writes) {
        EXPECT_EQ(file.record.Length, written.size());
        expectTags(file.record, c);
    }
    const ID3tag found = file.read();
    expectTags(found, c);
    expectUnknownKept(found, c);
    if (c.makesV2()) {
        EXPECT_EQ(editableFields(found), editableFields(wanted));
    }
    if (c.settings.ape2) {
        EXPECT_EQ(commonFields(found), commonFields(wanted));
    }
    if (!writes) {
        EXPECT_TRUE(written == c.bytes());
    }
    EXPECT_EQ(file.change(setEveryField), writes ? TagUpdate::Unchanged : TagUpdate::Refused);
    EXPECT_TRUE(file.bytes() == written);
    expectBareSound(file, c);
}

TEST(UpdateTags, EveryCombinationOfTagsAndSettings) {
    for (unsigned number = 0; number < combinations && !HasFailure(); ++number) {
        SCOPED_TRACE("combination " + std::to_string(number));
        checkCombination(combination(number));
    }
}

TEST(UpdateTags, TagGrowsShrinksAndGrowsAgain) {
    const auto longer = [](ID3tag& r) { r.SetComment(std::string(3000, 'c')); };
    const auto shorter = [](ID3tag& r) { r.SetComment("c"); };
    for (const bool withApe : {false, true}) {
        MemoryFile file(oldTag(3) + sound + lyrics + block, {.ape2 = withApe});
        EXPECT_EQ(file.change(longer), TagUpdate::Written);
        const std::string grown = file.bytes();
        const TagLayout layout = (file.read(), file.layout);
        EXPECT_EQ(file.change(shorter), TagUpdate::Written);
        EXPECT_EQ(file.read().GetComment(), "c");
        EXPECT_EQ(file.layout.id3v2, layout.id3v2) << "the sound moved";
        EXPECT_EQ(file.change(longer), TagUpdate::Written);
        EXPECT_TRUE(file.bytes() == grown);
    }
}

TEST(UpdateTags, OnlyEditedFieldsAreApplied) {
    MemoryFile file(oldTag(3) + sound + block, {.ape2 = true});
    ID3tag early = file.read(ReadDepth::List);
    file.change([](ID3tag& r) {
        setEveryField(r);
        r.SetAlbum("Theirs");
    });
    early.SetArtist("Mine");
    early.SetAlbum("");  // was "Album", and is emptied on purpose
    EXPECT_EQ(UpdateTags(early, file.context), TagUpdate::Written);
    ID3tag wanted;
    setEveryField(wanted);
    wanted.SetArtist("Mine");
    wanted.SetAlbum("");
    EXPECT_EQ(editableFields(file.read()), editableFields(wanted));

    // What was written is no edit any more.
    file.change([](ID3tag& r) { r.SetArtist("Theirs"); });
    early.SetYear("1990");
    EXPECT_EQ(UpdateTags(early, file.context), TagUpdate::Written);
    EXPECT_EQ(file.read().GetArtist(), "Theirs");
    EXPECT_EQ(file.read().GetYear(), "1990");
}

TEST(UpdateTags, EveryFieldCanBeEmptied) {
    MemoryFile file(sound, {.ape2 = true});
    file.change(setEveryField);
    EXPECT_EQ(file.change([](ID3tag& r) {
        ID3tag empty;
        empty.Path = r.Path;
        empty.FileType = r.FileType;
        empty.OK = true;
        empty.MarksAsRead = r.MarksAsRead;
        r = empty;
    }),
              TagUpdate::Written);
    EXPECT_EQ(editableFields(file.read()), editableFields({}));
}

TEST(UpdateTags, ModificationTimeIsKeptWhenAsked) {
    for (const std::string& bytes : {oldTag(3, std::string(900, '\0')) + sound + block, sound}) {
        for (const bool keepTime : {false, true}) {
            MemoryFile file(bytes, {.keepTime = keepTime});
            const std::int64_t before = file.calls.at("song.mp3").modified;
            EXPECT_EQ(file.change(setEveryField), TagUpdate::Written);
            EXPECT_EQ(file.calls.at("song.mp3").modified == before, keepTime);
        }
    }
}

TEST(UpdateTags, DamagedTagIsRefused) {
    const std::string whole = oldTag(3);
    const std::pair<std::string, Refusal> cases[] = {
        {whole.substr(0, whole.size() - 1), Refusal::Damaged},
        {"ID3\x02\0\x40\0\0\0\0"s + sound, Refusal::Damaged},
        {"ID3\x05\0\0\0\0\0\0"s + sound, Refusal::UnknownVersion},
        {"ID3\x01\0\0\0\0\0\0"s + sound, Refusal::UnknownVersion},
    };
    for (const auto& [bytes, refusal] : cases) {
        for (const std::string path : {"song.mp3", "song.mpc"}) {
            MemoryFile file(bytes, {.ape2 = true}, path);
            EXPECT_EQ(file.change(setEveryField), TagUpdate::Refused);
            EXPECT_EQ(file.record.Refused, refusal);
            const bool isNamed = file.sink.text.find("ID3v2.") != std::string::npos;
            EXPECT_EQ(isNamed, refusal == Refusal::UnknownVersion) << file.sink.text;
            EXPECT_TRUE(file.bytes() == bytes);
            EXPECT_EQ(file.errors.count(), 1U);
        }
    }
}

TEST(UpdateTags, BytesBehindTheLastFrameSurvive) {
    const std::string rest = frame(3, "TIT2", "").substr(0, 4) + "\xFF\xFF\xFF\xFF\0\0not a frame"s;
    MemoryFile file(oldTag(3, rest + std::string(30, '\0')) + sound);
    EXPECT_EQ(file.change(setEveryField), TagUpdate::Written);
    EXPECT_NE(file.bytes().find(rest), std::string::npos);
}

TEST(UpdateTags, TagsAreTakenOffAndNoByteMore) {
    const std::string v2 = oldTag(3), ape = ApeTag{{apeItem("Gain", "-1")}}.bytes();
    const std::string newer = "ID3\x05\0\0\0\0\0\x04more"s, junk(20, 'j');
    // A tag that claims sound as well, and one behind another that claims more than there is.
    const std::string wide = "ID3\x03\0\0"s + syncsafe(20 + 384 * 2);
    const std::string covering = wide + textFrame(3, "TIT2", "ninechars");
    const std::string endless = "ID3\x03\0\0"s + syncsafe(1U << 27U);
    using Kinds = std::vector<TagKind>;
    const Kinds v1Only{TagKind::ID3v1}, v2Only{TagKind::ID3v2}, apeOnly{TagKind::APEv2};
    const Kinds lyricsOnly{TagKind::Lyrics3}, both{TagKind::ID3v1, TagKind::APEv2};
    struct Case {
        std::string bytes;
        Kinds kinds;
        std::string removed, left;
        std::string path = "song.mp3";
    };
    const Case cases[] = {
        {v2 + sound + ape + lyrics + block, v1Only, "1", v2 + sound + ape + lyrics},
        {v2 + sound + ape + lyrics + block, apeOnly, "A", v2 + sound + lyrics + block},
        {v2 + sound + ape + lyrics + block, lyricsOnly, "L", v2 + sound + ape + block},
        {v2 + sound + ape + lyrics + block, v2Only, "2", sound + ape + lyrics + block},
        {v2 + sound + ape + lyrics + block, both, "1A", v2 + sound + lyrics},
        {v2 + sound + block + junk, both, "1", v2 + sound + junk},
        {sound + "TAG", v1Only, "", sound + "TAG"},
        {sound + ape, v1Only, "", sound + ape},
        {sound + lyrics, v2Only, "", sound + lyrics},
        {v2 + oldTag(4) + oldTag(2) + sound, v2Only, "2", sound},
        {v2 + newer + sound, v2Only, "2", newer + sound},
        {v2 + endless + sound, v2Only, "2", endless + sound},
        {covering + sound, v2Only, "2", sound},
        {v2 + covering + sound, v2Only, "2", sound},
        {newer + sound + block, v2Only, "refused", newer + sound + block},
        {newer + sound + block, v1Only, "1", newer + sound},
        {endless + sound + block, v2Only, "refused", endless + sound + block},
        {"some text" + ape, apeOnly, "A", "some text"},
        {sound + ape, apeOnly, "A", sound, "song.wv"},
        {v2 + sound, v2Only, "refused", v2 + sound, "song.flac"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        MemoryFile file(c.bytes, {}, c.path);
        EXPECT_EQ(removeKinds(file, c.kinds), c.removed);
        EXPECT_TRUE(file.bytes() == c.left);
        EXPECT_EQ(file.errors.count(), c.removed == "refused" ? 1U : 0U);
    }
}

TEST(UpdateTags, TakingManyTagsOffIsOneChange) {
    MemoryFile file(oldTag(3) + sound + ApeTag{{gain}}.bytes() + lyrics + block);
    for (const bool isDry : {true, false}) {
        WriteContext context(file.context);
        context.dryRun = isDry;
        ID3tag record = file.read();
        std::vector<TagKind> removed;
        const std::string before = file.bytes();
        EXPECT_EQ(RemoveTags(record, allWritten, context, removed), TagUpdate::Written);
        EXPECT_EQ(removed.size(), 3U);
        EXPECT_EQ(file.bytes() == before, isDry);
    }
    EXPECT_TRUE(file.bytes() == sound + lyrics);
}

TEST(UpdateTags, FileWithoutSoundOfItsTypeIsLeftAlone) {
    const std::string flac = "fLaC" + std::string(500, 'x');
    struct Case {
        std::string path, bytes, told;
    };
    const Case cases[] = {
        {"song.mp3", flac, "holds no MPEG audio (it looks like FLAC)"},
        {"song.mp3", tag(3, textFrame(3, "TIT2", "t")) + flac, "(it looks like FLAC)"},
        {"song.mp3", "", "holds no MPEG audio (it looks like an empty file)"},
        {"not.wmp3", "just text", "holds no MPEG audio (it looks like text)"},
        {"file.wv", "#!/bin/sh\n", "holds no WavPack audio (it looks like a script)"},
        {"crop.ape", sound, "holds no Monkey's audio (it looks like MP3)"},
        {"song.mpc", sound, "holds no Musepack audio"},
    };
    for (const Case& c : cases) {
        for (const bool force : {false, true}) {
            SCOPED_TRACE(c.path);
            MemoryFile file(c.bytes, {.ape2 = true, .force = force}, c.path);
            EXPECT_EQ(file.change(setTitle), force ? TagUpdate::Written : TagUpdate::Refused);
            EXPECT_EQ(file.bytes() == c.bytes, !force);
            if (force) continue;
            EXPECT_EQ(file.record.Refused, Refusal::NoSound);
            EXPECT_EQ(file.sink.text.find("\"" + c.path + "\" holds no"), 0U) << file.sink.text;
            EXPECT_NE(file.sink.text.find(c.told), std::string::npos) << file.sink.text;
        }
    }
}

TEST(UpdateTags, WhatATagThatStaysWillShowIsForeseen) {
    const std::string ape = ApeTag{{apeItem("Artist", "Ape"), gain}}.bytes();
    struct Case {
        std::string bytes;
        TagSettings settings;
        std::string shown;  // "-" where no tag can hide an edit
    };
    const Case cases[] = {
        {oldTag(3) + sound + ape, {}, "Ape"},
        {oldTag(3) + sound + lyrics + block, {}, "Lyrics"},
        {oldTag(3) + sound + ape + lyrics, {.ape2 = true}, "Lyrics"},
        {oldTag(3) + sound + ape, {.ape2 = true}, "-"},
        {oldTag(3) + sound + block, {}, "-"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        MemoryFile file(c.bytes, c.settings);
        WriteNotes notes;
        WriteContext context(file.context);
        context.notes = &notes;
        ID3tag record = file.read();
        record.SetArtist("");
        EXPECT_EQ(UpdateTags(record, context), TagUpdate::Written);
        EXPECT_EQ(notes.shown ? notes.shown->GetArtist() : "-", c.shown);
        if (notes.shown) {
            EXPECT_EQ(file.read().GetArtist(), c.shown) << "it came otherwise";
        }
    }
}

TEST(UpdateTags, SecondDateFrameDoesNotHideTheYear) {
    struct Case {
        int from;
        const char* id;
    };
    for (const auto& [from, id] : {Case{4, "TDRC"}, Case{3, "TYER"}}) {
        MemoryFile file(
            tag(from, textFrame(from, id, "2001") + textFrame(from, id, "1999")) + sound,
            {.id3v24 = from == 3});
        file.change([](ID3tag& record) { record.SetYear("2007"); });
        EXPECT_EQ(file.read().GetYear(), "2007");
    }
}

TEST(UpdateTags, NoAPETagIsWrittenBehindOneThatCannotBeTakenApart) {
    const std::string bytes = sound + ApeTag{{apeItem("Artist", "b")}, 3000}.bytes();
    MemoryFile file(bytes, {.id3v1 = false, .ape2 = true});
    EXPECT_EQ(file.change(setTitle), TagUpdate::Refused);
    EXPECT_EQ(file.record.Refused, Refusal::Damaged);
    EXPECT_TRUE(file.bytes() == bytes);
    MemoryFile other(bytes, {.id3v1 = false});
    EXPECT_EQ(other.change(setTitle), TagUpdate::Written);
    EXPECT_TRUE(other.bytes().ends_with(bytes));
}

TEST(UpdateTags, OldAPETagIsFoundAgain) {
    MemoryFile file(sound + ApeTag{{apeItem("Artist", "b")}}.bytes() + std::string(100, 'y'));
    EXPECT_TRUE(file.read().IsAPE2Present);
    file.change(setTitle);
    EXPECT_TRUE(file.read().IsAPE2Present);
}

TEST(UpdateTags, ShortID3v1BlockBehindANewAPETagStays) {
    const std::string block = Id3v1{"Title", "Old", "Album", "2001", "", 0, 7, 17}.block();
    MemoryFile file(sound + block.substr(0, 124), {.id3v2 = false, .ape2 = true});
    for (int run = 0; run < 2; ++run) {
        file.change(setTitle);
        EXPECT_NE(file.bytes().find("TAGTitle"), std::string::npos) << run;
    }
}

TEST(UpdateTags, NothingBehindThePaddingOfATagIsLost) {
    const std::string title = textFrame(3, "TIT2", "x"), zeroes(20, '\0');
    const std::string text = textFrame(3, "TXXX", "d\0behind"s);
    MemoryFile behind(tag(3, title + zeroes + text) + sound);
    EXPECT_EQ(behind.change(setTitle), TagUpdate::Written);
    EXPECT_NE(behind.bytes().find(text), std::string::npos);
    EXPECT_EQ(behind.change(setTitle), TagUpdate::Unchanged);
    // A size that is too large covers sound, which is no tag whatever the size says.
    const std::string covered = "\xFF\xFB\x90\x64" + std::string(600, '\0') + "sound";
    for (const std::string& body : {title + zeroes + covered, title + covered}) {
        MemoryFile file(tag(3, body) + sound);
        EXPECT_EQ(file.change(setTitle), TagUpdate::Written);
        const std::string bytes = file.bytes();
        const std::size_t at = bytes.find(covered + sound);
        ASSERT_NE(at, std::string::npos);
        file.read();
        EXPECT_EQ(file.layout.id3v2->end, at);
    }
}

TEST(UpdateTags, DryRunSaysWhatAChangeWouldDo) {
    MemoryFile file(sound);
    ID3tag record = file.read();
    record.SetTitle("t");
    const WriteContext dry{file.context.ansi,     file.context.settings, file.context.errors,
                           file.context.progress, file.context.calls,    true};
    EXPECT_EQ(UpdateTags(record, dry), TagUpdate::Written);
    EXPECT_TRUE(file.bytes() == sound);
    EXPECT_EQ(UpdateTags(record, file.context), TagUpdate::Written);
    EXPECT_EQ(UpdateTags(record, dry), TagUpdate::Unchanged);
}

// What an ID3v2 tag of a file that keeps APEv2 only holds goes over where there is room for it.
TEST(UpdateTags, ID3v2GoesOverIntoItems) {
    const std::string head =
        tag(3, textFrame(3, "TPE1", "Two") + textFrame(3, "TCOM", "Composer") +
                   textFrame(3, "TPE2", "Band") + frame(3, "USLT", "\0eng\0la la"s) +
                   textFrame(3, "TXXX", "MusicBrainz Album Id\0id"s) +
                   frame(3, "UFID", "http://musicbrainz.org\0track"s) +
                   frame(3, "POPM", "a@b\0\xC4\0\0\0\7"s) +
                   frame(3, "APIC", "\0image/png\0\3\0front"s) +
                   frame(3, "APIC", "\0image/png\0\4\0back"s) + frame(3, "PRIV", "x\0data"s));
    const std::vector<std::string> own{apeItem("Artist", "Ape"), gain};
    const std::vector<std::string> items{
        own[0],
        own[1],
        apeItem("Album", "New"),
        apeItem("Composer", "Composer"),
        apeItem("Cover Art (front)", "Cover Art (front).png\0front"s, 2),
        apeItem("Album Artist", "Band"),
        apeItem("Lyrics", "la la"),
        apeItem("MUSICBRAINZ_ALBUMID", "id"),
        apeItem("MUSICBRAINZ_TRACKID", "track"),
        apeItem("Rating", "196"),
        apeItem("Play Counter", "7"),
        apeItem("Cover Art (back)", "Cover Art (front).png\0back"s, 2),
    };
    MemoryFile file(head + sound + ApeTag{own}.bytes(), {.force = true}, "song.mpc");
    WriteNotes notes;
    WriteContext context(file.context);
    context.notes = &notes;
    ID3tag record = file.read();
    record.SetAlbum("New");
    EXPECT_EQ(UpdateTags(record, context), TagUpdate::Written);
    EXPECT_EQ(file.bytes(), sound + ApeTag{items}.bytes());
    ASSERT_EQ(notes.notes.size(), 1U);
    EXPECT_NE(notes.notes[0].find("no place for TPE1, PRIV"), std::string::npos) << notes.notes[0];
}

}  // namespace
}  // namespace tavlo::test
