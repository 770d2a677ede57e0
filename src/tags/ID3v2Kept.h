#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/CodePage.h"

namespace tavlo {

/// Text frames that can stand in a tag only once: those that the writer makes itself, and those
/// whose field was emptied, so that no second one of them comes to light.
struct FieldIds {
    std::vector<std::string_view> written, emptied;
    bool hasDate = false;  ///< a date that was kept would contradict the one written or emptied
};

/// Raw frames of one version as raw frames of version 3 or 4: sizes, flags and prefixes in the
/// other form, names of version 2 in four letters, text encodings that version 3 lacks as UTF-16.
/// A frame that the other version has no form for is put whole into a PRIV frame.
std::string convertFrames(std::string_view frames, int from, int to, const CodePage& ansi,
                          const FieldIds& fields = {});

/// A PRIV frame (ID3v2.3.0, 4.28) around bytes that have no other place.
std::string privateFrame(std::string_view owner, std::string_view bytes, int majorVersion);

}  // namespace tavlo
