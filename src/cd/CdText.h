#pragma once

#include <array>
#include <string>

#include "platform/FileCalls.h"

namespace tavlo {

/// Titles and performers of a disc as CD-TEXT tells them, UTF-8; index 0 is the album.
struct CdText {
    std::array<std::string, 100> titles, artists;

    [[nodiscard]] bool isEmpty() const;
};

/// Takes the answer to READ TOC, format 5, apart (SCSI MMC-3, annex J; IEC 61866): packs with a
/// wrong checksum are dropped, and the texts that run through them; only the first language is
/// read.
/// `firstTrack` is the number of the disc's first one.
CdText parseCdText(Bytes answer, std::size_t firstTrack = 1);

}  // namespace tavlo
