#pragma once

#include <cstdint>
#include <string>

#include "platform/File.h"
#include "tags/Pieces.h"

namespace tavlo {

/// The bytes from one offset to another; none where the first is not before the second.
std::string bytesBetween(File& file, std::uint64_t begin, std::uint64_t end);

/// New bytes for a file's two ends. What lies between `headEnd` and `tailBegin` stays.
struct NewEnds {
    std::uint64_t headEnd = 0;  ///< `head` takes the place of the bytes before it
    Pieces head;
    std::uint64_t tailBegin = 0;  ///< `tail` takes the place of the bytes from it on
    Pieces tail;
};

enum class Rewrite {
    Unchanged,   ///< the file says so already
    Done,        ///< in place, or by a new file in its place
    NotCreated,  ///< no temporary file could be made beside it; the file is as it was
    NotWritten   ///< the disk refused; the file is as it was
};

/// Changes the ends of a file that is open for writing. An end that keeps its size, or a tail that
/// grows, is one write in place, taken back should it fail. Otherwise a new file is written beside
/// the old one, named after it with ".tmp", brought to the disk and put in its place in one step;
/// it then has the old one's permissions, owner and attributes, and `file` is closed.
Rewrite rewriteEnds(File& file, const std::string& path, const NewEnds& ends, bool keepTime);

/// Whether the file would change at all.
bool wouldChange(File& file, const NewEnds& ends);

}  // namespace tavlo
