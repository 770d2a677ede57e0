#pragma once

#include <string>
#include <vector>

#include "desk/TagLayers.h"
#include "desk/TagParts.h"

namespace tavlo {

/// All that the file information shows of one file.
struct FileDetails {
    std::string path;
    ID3tag record;  ///< as a list has it; `OK` says that the file could be read
    std::vector<TagLayer> layers;
    std::vector<LayerRow> rows;  ///< none where there is no layer
    TagParts parts;
};

FileDetails readFileInfo(const std::string& path, const CodePage& ansi);

/// How many of the rows conflict.
std::size_t conflictCount(const FileDetails& info);

/// Why the tags of this file cannot be written at all; nothing where they can, as far as is known.
std::optional<std::string> whyNotWritten(const FileDetails& info, const TagSettings& settings,
                                         const Texts& texts);

/// A file name for a picture beside its file: "Song.jpg". Without a folder.
std::string pictureFileName(const std::string& path, const cAlbumArt& art);

}  // namespace tavlo
