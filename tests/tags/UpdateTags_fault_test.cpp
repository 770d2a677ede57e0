#include <gtest/gtest.h>

#include "support/MemoryFile.h"
#include "support/TagBytes.h"

namespace tavlo::test {
namespace {

void editShort(ID3tag& record) {
    record.SetTitle("New title");
    record.SetArtist("New artist");
    record.SetComment("Word");
}

void editLong(ID3tag& record) {
    editShort(record);
    record.ID3v2Ext.Composer = std::string(900, 'c');
}

void editComposer(ID3tag& record) {
    record.ID3v2Ext.Composer = "Composer";
}

struct Start {
    std::string name, bytes;
    void (*edit)(ID3tag&) = editShort;
    TagSettings settings = {};
    std::string path = "song.mp3";
};

const std::string sound = mpegFrames(13);
const std::string padding(600, '\0');
const std::string frames = textFrame(3, "TPE1", "Old") + frame(3, "PCNT", "\0\0\0\x05"s);
const std::string roomy = tag(3, frames + padding), tight = tag(3, frames);
const std::string block = Id3v1{"Title", "Old", "Album", "2001", "", 0, 7, 17}.block();
const std::string ape = ApeTag{{apeItem("Comment", std::string(500, 'x'))}}.bytes();
const std::string smallApe = ApeTag{{apeItem("Artist", "Old")}}.bytes();
const std::string lyrics = lyrics3(lyricsField("EAR", "Old"));

std::vector<Start> starts() {
    constexpr TagSettings onlyV2{.id3v1 = false}, withApe{.ape2 = true}, keepTime{.keepTime = true};
    constexpr TagSettings anySound{.force = true};
    const std::string footed = textFrame(4, "TPE1", "Old");
    return {
        {"no tag", sound},
        {"ID3v2 with room", roomy + sound, editShort, onlyV2},
        {"both with room", roomy + sound + block, editShort, keepTime},
        {"ID3v1 block is new", roomy + sound},
        {"ID3v2 grows", tight + sound + block, editLong, keepTime},
        {"footer goes", tag(4, footed, 0x10) + tagFooter(footed, 0x10) + sound + block, editLong},
        {"ID3v1 only", sound + block},
        {"APEv2 grows", roomy + sound + smallApe + block, editLong, withApe},
        {"APEv2 is new", roomy + sound + block, editShort, withApe},
        {"APEv2 shrinks", roomy + sound + ape + block, editShort, withApe},
        {"Lyrics3", roomy + sound + lyrics + block, editLong, withApe},
        {"bytes behind the block go", roomy + sound + block + "trailing", editComposer},
        {"Musepack", tight + sound + ape + lyrics + block, editLong, anySound, "song.mpc"},
        {"Musepack without tags", sound, editLong, anySound, "song.mpc"},
    };
}

MemoryFile startOf(const Start& start) {
    return MemoryFile(start.bytes, start.settings, start.path);
}

// What stands before the sound and behind it.
std::pair<std::string, std::string> endsOf(const std::string& bytes) {
    const std::size_t at = bytes.find(sound);
    if (at == std::string::npos) return {"the sound", "is gone"};
    return {bytes.substr(0, at), bytes.substr(at + sound.size())};
}

void expectWhole(const MemoryFile& file, TagUpdate result, const Start& start,
                 const std::string& changed) {
    EXPECT_EQ(file.bytes() == changed, result == TagUpdate::Written);
    EXPECT_EQ(file.bytes() == start.bytes, result == TagUpdate::Refused);
    EXPECT_TRUE(result == TagUpdate::Written || !file.record.OK);
    EXPECT_EQ(file.errors.count(), result == TagUpdate::Refused ? 1U : 0U) << file.sink.text;
    EXPECT_EQ(file.calls.count(), 1U);
}

void expectOldOrNewEnds(const std::string& found, const Start& start, const std::string& changed) {
    const auto ends = endsOf(found), before = endsOf(start.bytes), after = endsOf(changed);
    EXPECT_TRUE(ends.first == before.first || ends.first == after.first);
    EXPECT_TRUE(ends.second == before.second || ends.second == after.second);
}

void expectNextRunMends(MemoryFile& file, const Start& start, const std::string& changed) {
    file.calls.strike(Fault::None, 0);
    file.calls.limitRoom({});
    EXPECT_EQ(file.calls.openFiles(), 0U);
    // Between its last two calls a whole copy has no mark any more, and stays.
    const std::size_t lasting = file.calls.count() - file.calls.temporaryFiles();
    EXPECT_NE(file.change(start.edit), TagUpdate::Refused);
    EXPECT_TRUE(file.bytes() == changed);
    EXPECT_EQ(file.calls.count(), lasting) << "a leftover was not recognised";
}

void checkFault(const Start& start, const std::string& changed, Fault fault, std::size_t at) {
    MemoryFile file = startOf(start);
    file.calls.strike(fault, at);
    const TagUpdate result = file.change(start.edit);
    if (fault == Fault::Killed) {
        expectOldOrNewEnds(file.bytes(), start, changed);
    } else {
        expectWhole(file, result, start, changed);
    }
    expectNextRunMends(file, start, changed);
}

TEST(UpdateTagsFault, FileIsTheOldOrTheNewOneWhicheverCallFails) {
    for (const Start& start : starts()) {
        MemoryFile undisturbed = startOf(start);
        ASSERT_EQ(undisturbed.change(start.edit), TagUpdate::Written) << start.name;
        const std::string changed = undisturbed.bytes();
        ASSERT_EQ(undisturbed.calls.count(), 1U) << start.name;
        for (std::size_t at = 1; at <= undisturbed.calls.operations(); ++at) {
            for (const Fault fault : {Fault::Fails, Fault::StopsShort, Fault::Killed}) {
                SCOPED_TRACE(start.name + ", fault " + std::to_string(static_cast<int>(fault)) +
                             " at call " + std::to_string(at));
                checkFault(start, changed, fault, at);
            }
        }
    }
}

TEST(UpdateTagsFault, FullDiskLeavesTheOldFile) {
    constexpr std::size_t step = 61;
    for (const Start& start : starts()) {
        MemoryFile undisturbed = startOf(start);
        undisturbed.change(start.edit);
        const std::string changed = undisturbed.bytes();
        TagUpdate result = TagUpdate::Refused;
        for (std::size_t room = 0; result == TagUpdate::Refused; room += step) {
            SCOPED_TRACE(start.name + ", room for " + std::to_string(room));
            ASSERT_LE(room, changed.size() + step);
            MemoryFile file = startOf(start);
            file.calls.limitRoom(room);
            result = file.change(start.edit);
            expectWhole(file, result, start, changed);
            expectNextRunMends(file, start, changed);
        }
    }
}

TEST(UpdateTagsFault, ForeignFileOfTheTemporarysNameSurvives) {
    const std::vector<std::string> foreign = {"notes", mpegFrames(3, cdHeader),
                                              tight + mpegFrames(2, cdHeader)};
    for (const std::string& bytes : foreign) {
        MemoryFile file(tight + sound + block);
        file.calls.put("song.mp3.tmp", bytes);
        EXPECT_EQ(file.change(editLong), TagUpdate::Written);
        EXPECT_EQ(file.read().GetArtist(), "New artist");
        EXPECT_EQ(file.calls.at("song.mp3.tmp").bytes, bytes);
        EXPECT_EQ(file.calls.count(), 2U);
    }
}

}  // namespace
}  // namespace tavlo::test
