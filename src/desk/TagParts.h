#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "desk/TagLayers.h"

namespace tavlo {

/// A frame of ID3v2, an item of APEv2 or a field of Lyrics3 as it lies in its tag.
struct TagPart {
    TagKind tag = TagKind::ID3v2;
    std::string id;          ///< "TIT2"
    std::uint64_t size = 0;  ///< bytes of its content
    std::string text;        ///< what it says, in one line of bounded length; empty for bytes
};

struct TagPicture {
    TagKind tag = TagKind::ID3v2;
    cAlbumArt art;  ///< with its bytes
};

struct TagParts {
    std::vector<TagPart> parts;
    std::vector<TagPicture> pictures;
};

/// All parts of a file's layers, understood or not, and every picture in them.
TagParts readParts(File& file, const std::vector<TagLayer>& layers, const CodePage& ansi);

/// Format and size in pixels as the picture's bytes tell them: "JPEG, 600 × 600".
std::string describePicture(const cAlbumArt& art);

/// What a picture shows (ID3v2.3.0, 4.15), as a text for a person.
Text pictureTypeText(std::uint8_t type);

}  // namespace tavlo
