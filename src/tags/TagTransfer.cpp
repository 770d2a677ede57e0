#include "tags/TagTransfer.h"

#include <algorithm>

#include "tags/AudioFile.h"
#include "tags/FileRewriter.h"

namespace tavlo {

namespace {
// Whether more tags, which no reader knows, lie between those that were found and the sound.
bool hasTagsInside(File& file, FileTypes type, const TagSpan& sound) {
    constexpr std::uint64_t headSpan = 65536;
    constexpr std::uint64_t tailSpan = 227;
    constexpr std::uint64_t footerSize = 32;
    constexpr std::uint64_t blockSize = 128;
    constexpr std::uint64_t footerSpan = 10;
    const std::uint64_t size = sound.end - sound.begin;
    const std::string_view head =
        textOf(file.view(sound.begin, static_cast<std::size_t>(std::min(size, headSpan))));
    const std::string_view start = head.substr(std::min(head.find_first_not_of('\0'), head.size()));
    const bool isFrame = start.size() > 1 && start[0] == '\xFF' && (start[1] & 0xE0) == 0xE0;
    const bool isOther = start.starts_with("ID3") || start.starts_with("APETAGEX") ||
                         (type == FileType::Mp3 && !isFrame && !start.empty());
    if (isOther) return true;
    const std::uint64_t last = std::min(size, tailSpan);
    const std::string_view tail =
        textOf(file.view(sound.end - last, static_cast<std::size_t>(last)));
    const auto end = [&](std::uint64_t count) { return tail.substr(last - std::min(last, count)); };
    return end(footerSize).starts_with("APETAGEX") || end(footerSpan).starts_with("3DI") ||
           tail.starts_with("TAG+") || end(blockSize).starts_with("TAG") ||
           tail.ends_with("LYRICSEND") || tail.ends_with("LYRICS200");
}

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
    const bool isSound = sound.begin < sound.end && !hasTagsInside(file, type, sound);
    return isSound ? std::optional(sound) : std::nullopt;
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

bool hasKnownTagsOnly(const std::string& path, const CodePage& ansi) {
    File file;
    return file.open(path, Access::Read) && soundOf(file, GetFileType(path), ansi).has_value();
}

}  // namespace tavlo
