#pragma once

#include <cstdint>

#include "platform/CodePage.h"

namespace tavlo {

/// How much of a tag is brought into memory.
enum class ReadDepth {
    Tags,    ///< as for a list, but nothing of the stream
    List,    ///< what a list shows: pictures are only noted, unknown frames and items passed over
    Places,  ///< as for a list, without the stream, and where each frame and item lies
    Full     ///< everything, pictures and what is not understood too
};

struct ReadContext {
    const CodePage& ansi;  ///< for 8-bit text
    ReadDepth depth = ReadDepth::List;
};

/// The tags that a file may carry, from the weakest to the strongest.
enum class TagKind { ID3v1, Lyrics3, APEv2, ID3v2 };

/// Where a tag lies in its file: the offset of its first byte and that behind its last.
struct TagSpan {
    std::uint64_t begin = 0, end = 0;
    bool operator==(const TagSpan&) const = default;
};

}  // namespace tavlo
