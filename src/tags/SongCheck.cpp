#include "tags/SongCheck.h"

#include <algorithm>

#include "platform/FileSystem.h"
#include "platform/PlainText.h"
#include "tags/SoundSearch.h"

namespace tavlo {

namespace {
SoundSpan spanOf(const File& file, const TagLayout& layout) {
    SoundSpan span{layout.id3v2 ? layout.id3v2->end : 0, file.size()};
    for (const auto& tag : {layout.id3v1, layout.lyrics, layout.ape}) {
        if (tag) span.end = std::min(span.end, tag->begin);
    }
    return span;
}
}  // namespace

SongCandidate::SongCandidate(File& file, FileTypes type, const std::string& path,
                             const TagLayout& layout)
    : file(file), type(type), path(path), sound(spanOf(file, layout)) {}

bool isSong(const SongCandidate& candidate, bool force) {
    if (force && !isLink(candidate.path)) return true;
    return holdsSound(candidate.file, candidate.type, candidate.sound);
}

std::string noSoundLine(const SongCandidate& candidate, const Texts& texts) {
    const std::string look = looksLike(candidate.file, candidate.sound, texts);
    const bool behindLink = isLink(candidate.path);
    std::string line = texts.get(behindLink ? Text::NoSoundBehindLink : Text::NoSound);
    replaceAll(line, "%2", soundName(candidate.type));
    replaceAll(line, "%3", look.empty() ? look : texts.get(Text::LooksLike, look));
    replaceAll(line, "%1", withoutControls(candidate.path));
    return line;
}

}  // namespace tavlo
