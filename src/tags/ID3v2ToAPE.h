#pragma once

#include <string>
#include <vector>

#include "platform/CodePage.h"
#include "tags/APEv2.h"
#include "tags/ID3v2.h"

namespace tavlo {

/// What an ID3v2 tag holds beyond the fields of a record, for the APEv2 tag of a file that keeps no
/// other.
struct Carried {
    std::vector<CarriedItem> items;     ///< under the keys that other taggers use
    std::vector<std::string> homeless;  ///< identifiers of frames that no item can hold
};

/// Where an item of `items` already has a frame's key, the frame is homeless unless it says the
/// same or its field is edited.
Carried carriedItems(File& file, const FoundFrames& frames, const TagChange& change,
                     const FoundItems& items, const CodePage& ansi);

}  // namespace tavlo
