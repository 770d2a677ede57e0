#pragma once

#include <string>
#include <string_view>

#include "platform/CodePage.h"
#include "tags/ID3v2Frame.h"

namespace tavlo {

/// A frame of one version as a frame of version 3 or 4: its size, flags and prefixes in the other
/// form, a name of version 2 in four letters, text encodings that version 3 lacks as UTF-16. A
/// frame that the other version has no form for is put whole into a PRIV frame.
std::string convertFrame(const FrameHeader& header, std::string_view body, int from, int to,
                         const CodePage& ansi);

/// The four-letter name of a frame of version 2; empty where it has none, or another form.
std::string_view successorOf(std::string_view oldId);

/// A PRIV frame (ID3v2.3.0, 4.28) around bytes that have no other place.
std::string privateFrame(std::string_view owner, std::string_view bytes, int majorVersion);

}  // namespace tavlo
