#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/CodePage.h"
#include "platform/File.h"
#include "tags/ID3tag.h"

namespace tavlo {

inline constexpr std::uint8_t frontCover = 3;

/// A picture's description, and where in its frame or item the picture's own bytes begin.
struct ParsedPicture {
    cAlbumArt art;  ///< without data
    std::size_t dataOffset = 0;
};

/// An ID3v2 picture: APIC (ID3v2.3.0, 4.15), or PIC of version 2. `head` are the first bytes of
/// the content of `contentSize` bytes. Nothing when it is a link, no image or cut short.
std::optional<ParsedPicture> parsePictureFrame(Bytes head, std::size_t contentSize,
                                               int majorVersion, const CodePage& ansi);

/// An APEv2 cover: a file name, NUL, and the picture.
std::optional<ParsedPicture> parsePictureItem(Bytes head, std::size_t contentSize,
                                              const CodePage& ansi);

/// The file name that an APEv2 cover begins with; its ending tells the picture's kind.
std::string pictureItemName(const cAlbumArt& art);

/// Jpeg, Png or Bmp by the MIME type; None for any other.
FileTypes pictureType(std::string_view mime);

}  // namespace tavlo
