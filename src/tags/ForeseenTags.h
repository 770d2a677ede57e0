#pragma once

#include "tags/AudioFile.h"
#include "tags/FileRewriter.h"

namespace tavlo {

/// The record that a list will show of a file once its ends are written. `layout` says where its
/// tags lie now: those between the ends stay, and may tell what is to be changed.
ID3tag foreseenRecord(File& file, FileTypes type, const TagLayout& layout, const NewEnds& ends,
                      const CodePage& ansi);

}  // namespace tavlo
