#include "tags/TagTransfer.h"

#include <algorithm>

#include "tags/AudioFile.h"
#include "tags/FileRewriter.h"

namespace tavlo {

namespace {
// Where the sound begins and ends between the tags; nothing where a tag lies elsewhere.
std::optional<TagSpan> soundOf(File& file, FileTypes type, const CodePage& ansi) {
    ID3tag record;
    record.FileType = type;
    const TagLayout layout = readTags(file, record, {ansi, ReadDepth::Tags});
    TagSpan sound{0, file.size()};
    if (layout.id3v2) {
        if (layout.id3v2->begin != 0 || record.ID3v2Ext.bDamaged) return std::nullopt;
        sound.begin = layout.id3v2->end;
    }
    for (const auto& tag : {layout.ape, layout.lyrics, layout.id3v1}) {
        if (tag) sound.end = std::min(sound.end, tag->begin);
    }
    return sound.begin < sound.end ? std::optional(sound) : std::nullopt;
}
}  // namespace

bool copyTags(const std::string& from, const std::string& to, const CodePage& ansi,
              FileCalls& calls) {
    File source(calls);
    File target(calls);
    const FileTypes type = GetFileType(to);
    if (GetFileType(from) != type) return false;
    if (!source.open(from, Access::Read) || !target.open(to, Access::ReadWrite)) return false;
    const auto tagged = soundOf(source, type, ansi);
    const auto plain = soundOf(target, type, ansi);
    if (!tagged || !plain) return false;
    const NewEnds ends{plain->begin, bytesBetween(source, 0, tagged->begin), plain->end,
                       bytesBetween(source, tagged->end, source.size())};
    if (source.hasFailed()) return false;
    const Rewrite done = rewriteEnds(target, to, ends, false);
    return done == Rewrite::Done || done == Rewrite::Unchanged;
}

}  // namespace tavlo
