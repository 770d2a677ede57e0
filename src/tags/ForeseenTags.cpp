#include "tags/ForeseenTags.h"

#include <algorithm>

#include "tags/FieldEdits.h"

namespace tavlo {

namespace {
std::string bytesOf(File& file, const Pieces& pieces) {
    std::string bytes;
    for (const Piece& piece : pieces.all()) {
        bytes += piece.bytes.empty() ? bytesBetween(file, piece.begin, piece.end) : piece.bytes;
    }
    return bytes;
}
}  // namespace

// The sound in the middle says nothing and is left out.
ID3tag foreseenRecord(File& file, FileTypes type, const TagLayout& layout, const NewEnds& ends,
                      const CodePage& ansi) {
    std::uint64_t staying = ends.tailBegin;
    for (const auto& tag : {layout.ape, layout.lyrics}) {
        if (tag) staying = std::min(staying, tag->begin);
    }
    staying = std::max(staying, ends.headEnd);
    const std::string bytes = bytesOf(file, ends.head) +
                              bytesBetween(file, staying, ends.tailBegin) +
                              bytesOf(file, ends.tail);
    File foreseen;
    foreseen.openMemory(bytesOfText(bytes));
    ID3tag record;
    record.FileType = type;
    readTags(foreseen, record, {ansi, ReadDepth::List});
    markAsRead(record);
    return record;
}

}  // namespace tavlo
