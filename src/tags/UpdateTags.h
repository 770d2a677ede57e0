#pragma once

#include <optional>

#include "tags/ID3tag.h"
#include "tags/TagWriting.h"

namespace tavlo {

enum class TagUpdate {
    Refused,    ///< nothing was written; `Refused` says why, `OK` is false and `Path` empty
    Unchanged,  ///< the file says so already
    Written
};

/// Writes the edited fields of a record into its file: APEv2, ID3v2 and ID3v1 of an MP3 file as
/// the settings and the tags that are there ask for, APEv2 alone of Musepack, WavPack and Monkey's
/// Audio files. Whatever else the tags hold, as the file has them now, stays. Where only the ID3v1
/// block may not be made, or APEv2 was written but no ID3v2 tag may be, the answer is `Written`,
/// and yet `OK` is false and `Path` empty. Failures are reported; `before`, if given, gets the
/// record as the file had it. With `dryRun` nothing is changed, not even the file's attributes.
TagUpdate UpdateTags(ID3tag& record, const WriteContext& context, ID3tag* before = nullptr);

/// Whether tags of files of this type are written at all.
bool hasWriter(FileTypes type);

/// Whether and why `UpdateTags` would leave the file of a record that was just read alone.
Refusal expectedRefusal(const ID3tag& record, const TagSettings& settings);

/// What a person is told of a refusal; nothing where it is no failure.
std::optional<Text> refusalText(Refusal refusal);

/// Each takes one kind of tag off the record's file and clears the record's flag of it. False
/// when the file could not be changed; it then is as it was. A record without an ID3v1 block is
/// left alone; where it has one, everything from the first "TAG" in the file's last 256 bytes on
/// goes.
bool RemoveID3v1Tag(ID3tag& record, const WriteContext& context);
bool RemoveID3v2Tag(ID3tag& record, const WriteContext& context);
bool RemoveAPETag(ID3tag& record, const WriteContext& context);

}  // namespace tavlo
