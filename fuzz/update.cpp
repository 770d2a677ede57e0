#include "fuzz/Promise.h"
#include "support/MemoryFile.h"
#include "support/RecordTexts.h"
#include "tags/ByteCursor.h"
#include "tags/UpdateTags.h"

using namespace tavlo;

namespace {
TagSettings settingsOf(std::uint8_t chosen) {
    const auto bit = [&](unsigned place) { return (chosen >> place & 1U) != 0; };
    return {bit(0), bit(1), bit(2), bit(3), bit(4)};
}

std::string soundOf(test::MemoryFile& file) {
    file.read();
    const TagLayout& layout = file.layout;
    const std::uint64_t begin = layout.id3v2 ? layout.id3v2->end : 0;
    std::uint64_t end = file.bytes().size();
    for (const auto& tag : {layout.id3v1, layout.lyrics, layout.ape}) {
        if (tag) end = std::min(end, tag->begin);
    }
    return begin < end ? file.bytes().substr(begin, end - begin) : std::string();
}

void checkWritten(test::MemoryFile& file, bool onlyCommon) {
    static const ID3tag wanted = [] {
        ID3tag record;
        test::setEveryField(record);
        return record;
    }();
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
    const std::string sound = soundOf(file);
    const TagUpdate result = file.change(test::setEveryField);
    const bool onlyApe = file.record.Refused == Refusal::NoID3v2Tag;
    const bool wroteApe = onlyApe && file.context.settings.ape2;
    promise(result != TagUpdate::Refused || wroteApe || file.bytes() == bytes);
    promise(soundOf(file) == sound);
    if (result != TagUpdate::Refused || wroteApe) checkWritten(file, onlyApe || !isMp3);
    const std::string written = file.bytes();
    promise(file.change(test::setEveryField) != TagUpdate::Written && file.bytes() == written);
    return 0;
}
