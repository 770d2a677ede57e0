#include "core/ByteCursor.h"
#include "fuzz/Promise.h"
#include "support/MemoryFile.h"
#include "support/RecordTexts.h"
#include "tags/UpdateTags.h"

using namespace tavlo;

namespace {
TagSettings settingsOf(std::uint8_t chosen) {
    const auto bit = [&](unsigned place) { return (chosen >> place & 1U) != 0; };
    return {bit(0), bit(1), bit(2), bit(3), bit(4), false, !bit(6)};  // mostly without any sound
}

// What lies between the tags, and whether nothing stands between or behind those at the end.
struct Sound {
    std::string bytes;
    bool isTidy = true;
};

Sound soundOf(test::MemoryFile& file) {
    file.read();
    const TagLayout& layout = file.layout;
    const std::uint64_t begin = layout.id3v2 ? layout.id3v2->end : 0;
    std::uint64_t end = file.bytes().size(), tagged = 0;
    for (const auto& tag : {layout.id3v1, layout.lyrics, layout.ape}) {
        if (!tag) continue;
        end = std::min(end, tag->begin);
        tagged += tag->end - tag->begin;
    }
    if (begin > end) return {{}, false};
    const std::string sound = file.bytes().substr(begin, end - begin);
    // A mark that belongs to no tag hides the tag in front of it, a second tag the one behind it.
    const bool hasStrayMark = !layout.ape && file.bytes().find("APETAGEX") != std::string::npos;
    const bool isTidy = !hasStrayMark && !sound.starts_with("ID3");
    return {sound, isTidy && end + tagged == file.bytes().size()};
}

void checkWritten(test::MemoryFile& file, bool onlyCommon) {
    ID3tag wanted;
    test::setEveryField(wanted);
    const ID3tag found = file.read();
    promise(test::commonFields(found) == test::commonFields(wanted));
    promise(onlyCommon || test::editableFields(found) == test::editableFields(wanted));
}
}  // namespace

// The input: a byte that chooses settings and type, and the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const bool isMp3 = (data[0] & 0x20U) == 0;
    const std::string bytes(textOf({data + 1, size - 1}));
    test::MemoryFile file(bytes, settingsOf(data[0]), isMp3 ? "song.mp3" : "song.mpc", 1251);
    const Sound sound = soundOf(file);
    const TagUpdate result = file.change(test::setEveryField);
    const bool onlyApe = file.record.Refused == Refusal::NoID3v2Tag;
    const bool wroteApe = onlyApe && file.context.settings.ape2;
    promise(result != TagUpdate::Refused || wroteApe || file.bytes() == bytes);
    // A second tag goes with the first where neither may stay.
    const bool hasSecond = !isMp3 && sound.bytes.starts_with("ID3");
    promise(hasSecond || file.bytes().find(sound.bytes) != std::string::npos);
    const bool onlyCommon = onlyApe || !isMp3;
    const bool wrote = result != TagUpdate::Refused || wroteApe;
    if (wrote && (sound.isTidy || !onlyCommon)) checkWritten(file, onlyCommon);
    // Moved away from the file's end, stray bytes may look like a tag or a tag may be out of sight.
    const Sound after = soundOf(file);
    if (!sound.isTidy || !after.isTidy || after.bytes != sound.bytes) return 0;
    const std::string written = file.bytes();
    promise(file.change(test::setEveryField) != TagUpdate::Written && file.bytes() == written);
    return 0;
}
