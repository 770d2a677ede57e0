#pragma once

#include <string>

#include "core/Texts.h"
#include "platform/File.h"
#include "tags/FileType.h"
#include "tags/StreamReaders.h"

namespace tavlo {

/// Whether the span holds sound of a type whose tags are written: MPEG frames that follow one
/// another, or a block that begins like those of WavPack, Monkey's Audio or Musepack. A stream that
/// begins at once costs a look at two places; otherwise the span's first 16 MB are searched.
bool holdsSound(File& file, FileTypes type, SoundSpan span);

/// How sound of that type is called: "MPEG". Empty for other types.
std::string_view soundName(FileTypes type);

/// What the span's first bytes look like, in words: "FLAC", "text". Empty where they tell nothing.
std::string looksLike(File& file, SoundSpan span, const Texts& texts);

}  // namespace tavlo
