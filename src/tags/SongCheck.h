#pragma once

#include <string>

#include "platform/File.h"
#include "tags/AudioFile.h"
#include "tags/StreamReaders.h"
#include "tags/TagWriting.h"

namespace tavlo {

/// A file of which a writer has to know whether it is a song at all.
struct SongCandidate {
    File& file;
    FileTypes type;
    const std::string& path;
    SoundSpan sound;  ///< what lies between the tags

    SongCandidate(File& file, FileTypes type, const std::string& path, const TagLayout& layout);
};

/// Whether it holds sound of its type. With `force` any file will do, but not behind a link, which
/// may lead to anything.
bool isSong(const SongCandidate& candidate, bool force);

/// What a person is told of a file that is none.
std::string noSoundLine(const SongCandidate& candidate, const Texts& texts);

}  // namespace tavlo
