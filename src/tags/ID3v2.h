#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/ID3v2Frame.h"
#include "tags/TagReading.h"

namespace tavlo {

/// A frame as it lies in its tag.
struct FoundFrame {
    FrameHeader header;       ///< with the size that the frame really has
    std::uint64_t begin = 0;  ///< of the header; the body follows
    bool isRead = false;      ///< its field was made of it, or would be had it a value
    bool hasOddSize = false;  ///< the header tells the size in the other version's form
};

/// Where the frames of a tag lie, for a writer that keeps what was not edited. Offsets are the
/// file's, or those of `plain` where the tag's unsynchronisation had to be undone.
struct FoundFrames {
    std::vector<FoundFrame> frames;
    std::uint64_t end = 0;            ///< behind the last frame
    std::uint64_t restEnd = 0;        ///< the tag's end where bytes there are no padding, or `end`
    std::vector<std::uint8_t> plain;  ///< the tag's body without unsynchronisation
    bool isPlain = false;             ///< `plain` is used
};

/// Reads the ID3v2.2, 2.3 or 2.4 tag at the file's start into the record and says where it lies;
/// nothing where there is none. With `ReadDepth::List` the picture is noted without its bytes and
/// frames that the program does not interpret are passed over. `found` says where the frames lie.
std::optional<TagSpan> ReadID3v2Tag(File& file, ID3tag& record, const ReadContext& context);
std::optional<TagSpan> ReadID3v2Tag(File& file, ID3tag& record, const ReadContext& context,
                                    FoundFrames& found);

/// Gives every frame of the tag at the file's start, understood or not, in the file's order: its
/// header with the size that it really has, and its body, which holds until the call returns.
/// Unsynchronisation of the whole tag is undone, what a frame's own flags say is not.
using FrameTaker = std::function<void(const FrameHeader&, Bytes body)>;
void ListID3v2Frames(File& file, const CodePage& ansi, const FrameTaker& take);

/// The offset behind the tag that begins at `begin`, its footer included where there really is one;
/// `begin` itself where there is no tag. Never beyond the file's end.
std::uint64_t ID3v2TagEnd(File& file, std::uint64_t begin = 0);

}  // namespace tavlo
