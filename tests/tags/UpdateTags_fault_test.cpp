#include <gtest/gtest.h>

#include <array>

#include "platform/Rescue.h"
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

// A tag of several pages that all change when a frame in front of them does.
std::string pages() {
    std::string bytes;
    for (int i = 0; i < 1100; ++i) bytes += "number " + std::to_string(i);
    return bytes;
}
const std::string wide = tag(3, frames + frame(3, "PRIV", "x\0"s + pages()) + padding);
const std::string longSound = mpegFrames(300);
const std::string rescues = "state";

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
        {"both ends of a long file", roomy + longSound + block, editShort, keepTime},
        {"a long file's tag of many pages", wide + longSound + block},
        {"a long file grows", wide + longSound + smallApe, editLong, withApe},
    };
}

// On a disk where even the shortest file may be changed in place.
class FileOnDisk : public MemoryFile {
 public:
    FileOnDisk(const Start& start, DiskKind disk)
        : MemoryFile(start.bytes, start.settings, start.path) {
        context.ways = {rescues, 0};
        calls.disk = disk;
    }
};

void recover(MemoryFile& file) {
    file.calls.strike(Fault::None, 0);
    file.calls.limitRoom({});
    recoverFiles(rescues, file.calls);
}

void expectOldOrNew(const MemoryFile& file, const Start& start, const std::string& changed) {
    EXPECT_TRUE(file.bytes() == start.bytes || file.bytes() == changed);
}

void expectWhole(const MemoryFile& file, TagUpdate result, const Start& start,
                 const std::string& changed) {
    EXPECT_EQ(file.bytes() == changed, result == TagUpdate::Written);
    EXPECT_EQ(file.bytes() == start.bytes, result == TagUpdate::Refused);
    EXPECT_TRUE(result == TagUpdate::Written || !file.record.OK);
    EXPECT_EQ(file.errors.count(), result == TagUpdate::Refused ? 1U : 0U) << file.sink.text;
}

void expectNextRunMends(MemoryFile& file, const Start& start, const std::string& changed) {
    recover(file);
    expectOldOrNew(file, start, changed);
    EXPECT_EQ(file.calls.openFiles(), 0U);
    // Between its last two calls a whole copy has no mark any more, and stays.
    const std::size_t lasting = file.calls.count() - file.calls.temporaryFiles();
    EXPECT_NE(file.change(start.edit), TagUpdate::Refused);
    EXPECT_TRUE(file.bytes() == changed);
    EXPECT_EQ(file.calls.count(), lasting) << "a leftover was not recognised";
}

struct Strike {
    Fault fault;
    DiskKind disk;
};
constexpr std::array strikes{
    Strike{Fault::Fails, DiskKind::Overwriting},  Strike{Fault::StopsShort, DiskKind::Overwriting},
    Strike{Fault::Killed, DiskKind::Overwriting}, Strike{Fault::FailsOn, DiskKind::Overwriting},
    Strike{Fault::Fails, DiskKind::CopyOnWrite},  Strike{Fault::Killed, DiskKind::CopyOnWrite},
    Strike{Fault::FailsOn, DiskKind::CopyOnWrite}};

// Gives the number of pages that the struck call was to write.
std::size_t checkFault(const Start& start, const std::string& changed, const Strike& strike,
                       std::size_t at, std::size_t pages) {
    SCOPED_TRACE(start.name + ", fault " + std::to_string(static_cast<int>(strike.fault)) +
                 " at call " + std::to_string(at) + " behind " + std::to_string(pages) +
                 " pages, disk " + std::to_string(static_cast<int>(strike.disk)));
    FileOnDisk file(start, strike.disk);
    file.calls.strike(strike.fault, at, pages);
    const TagUpdate result = file.change(start.edit);
    const std::size_t struckPages = file.calls.struckPages();
    // What a disk refuses that took it a moment ago can only be mended later; and it is told so.
    const bool isTorn = file.record.Refused == Refusal::Torn;
    if (strike.fault == Fault::Killed) {
        // Nobody is left to be told.
    } else if (isTorn) {
        EXPECT_NE(strike.disk, DiskKind::CopyOnWrite);
        EXPECT_EQ(strike.fault, Fault::FailsOn);
        EXPECT_FALSE(file.bytes() == start.bytes);
    } else {
        expectWhole(file, result, start, changed);
        const std::size_t others = file.calls.count() - file.calls.names(rescues).size();
        EXPECT_TRUE(others == 1 || strike.fault == Fault::FailsOn);
    }
    expectNextRunMends(file, start, changed);
    return struckPages;
}

TEST(UpdateTagsFault, FileIsTheOldOrTheNewOneWhicheverCallFails) {
    for (const Start& start : starts()) {
        for (const Strike& strike : strikes) {
            FileOnDisk undisturbed(start, strike.disk);
            ASSERT_EQ(undisturbed.change(start.edit), TagUpdate::Written) << start.name;
            const std::string changed = undisturbed.bytes();
            ASSERT_EQ(undisturbed.calls.count(), 1U) << start.name;
            for (std::size_t at = 1; at <= undisturbed.calls.operations(); ++at) {
                const std::size_t pages = checkFault(start, changed, strike, at, 0);
                if (strike.fault == Fault::StopsShort) continue;
                // All sound is alike; of a copy the first pages are enough.
                for (std::size_t torn = 1; torn < std::min<std::size_t>(pages, 6); ++torn) {
                    checkFault(start, changed, strike, at, torn);
                }
            }
        }
    }
}

// The recovery may be killed as well, or the disk refuse it.
TEST(UpdateTagsFault, RecoveryThatIsBrokenOffGoesOnTheNextTime) {
    const Start start{"wide", wide + longSound};
    FileOnDisk undisturbed(start, DiskKind::Overwriting);
    undisturbed.change(start.edit);
    const std::string changed = undisturbed.bytes();
    std::size_t torn = 0;
    for (std::size_t at = 1; at <= undisturbed.calls.operations(); ++at) {
        for (std::size_t call = 1; call < 8; ++call) {
            for (const Fault fault : {Fault::Fails, Fault::StopsShort, Fault::Killed}) {
                FileOnDisk file(start, DiskKind::Overwriting);
                file.calls.strike(Fault::Killed, at, 2);
                file.change(start.edit);
                torn += file.bytes() != start.bytes && file.bytes() != changed ? 1 : 0;
                file.calls.strike(fault, call, 1);
                recoverFiles(rescues, file.calls);
                SCOPED_TRACE(std::to_string(at) + " " + std::to_string(call));
                expectNextRunMends(file, start, changed);
            }
        }
    }
    EXPECT_GT(torn, 0U) << "no kill left anything to recover";
}

TEST(UpdateTagsFault, FullDiskLeavesTheOldFile) {
    for (const Start& start : starts()) {
        for (const DiskKind disk : {DiskKind::Overwriting, DiskKind::CopyOnWrite}) {
            FileOnDisk undisturbed(start, disk);
            undisturbed.change(start.edit);
            const std::string changed = undisturbed.bytes();
            const std::size_t step = 61 + changed.size() / 100;
            TagUpdate result = TagUpdate::Refused;
            for (std::size_t room = 0; result == TagUpdate::Refused; room += step) {
                SCOPED_TRACE(start.name + ", room for " + std::to_string(room));
                ASSERT_LE(room, 2 * (changed.size() + step));
                FileOnDisk file(start, disk);
                file.calls.limitRoom(room);
                result = file.change(start.edit);
                expectWhole(file, result, start, changed);
                EXPECT_EQ(file.calls.count(), 1U);
                expectNextRunMends(file, start, changed);
            }
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
