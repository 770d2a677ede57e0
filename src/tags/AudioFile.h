#pragma once

#include <optional>
#include <string>

#include "platform/File.h"
#include "tags/APEv2.h"
#include "tags/ID3tag.h"
#include "tags/ID3v2.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Reads a file's record by the type that its name tells. `OK` says that the file was opened;
/// where it could not be, `Path` is empty. Only what can be listened to is opened.
ID3tag ReadAudioFile(const std::string& path, const ReadContext& context);

/// Loads what a list read passed over: the picture's bytes, unknown frames and items. Edited
/// fields stay. False when the file cannot be read any more.
bool LoadDetails(ID3tag& record, const CodePage& ansi);

/// Where the tags of a file lie.
struct TagLayout {
    std::optional<TagSpan> id3v1, lyrics, ape, id3v2;
    FoundFrames frames;  ///< of `id3v2`
    FoundItems items;    ///< of `ape`; both where a reader at `ReadDepth::Places` was asked
};

/// Reads every tag of an open file into the record, from the weakest to the strongest.
TagLayout readTags(File& file, ID3tag& record, const ReadContext& context);

/// The MP3 reader on an open file: tags from the weakest to the strongest, then the stream.
void readMp3(File& file, ID3tag& record, const ReadContext& context);

}  // namespace tavlo
