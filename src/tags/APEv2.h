#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/File.h"
#include "tags/FieldEdits.h"
#include "tags/ID3tag.h"
#include "tags/Pieces.h"
#include "tags/TagReading.h"

namespace tavlo {

/// An item as it lies in its tag.
struct FoundItem {
    std::string key;
    std::uint64_t begin = 0, value = 0, end = 0;  ///< offsets in the file
    bool isRead = false;                          ///< its field was made of it
};

/// Where the items of a tag lie, for a writer that keeps what was not edited.
struct FoundItems {
    std::vector<FoundItem> items;
    std::uint64_t end = 0;      ///< behind the last item that could be read
    std::uint64_t restEnd = 0;  ///< where the footer begins
    bool isOld = false;         ///< APEv1: 8-bit text
    bool isBroken = false;      ///< there is a footer, but no tag, or too few items, that fit it
};

/// Reads the APEv2 (or APEv1) tag whose footer lies in the file's last 256 bytes, or in front of
/// the Lyrics3 block that the record already knows of, into the record. Says where the tag lies;
/// nothing where there is none. With `ReadDepth::List` the picture is noted without its bytes and
/// unknown items are passed over. `found` says where the items lie.
std::optional<TagSpan> ReadAPETag(File& file, ID3tag& record, const ReadContext& context);
std::optional<TagSpan> ReadAPETag(File& file, ID3tag& record, const ReadContext& context,
                                  FoundItems& found);

/// An item that a file's other tag holds.
struct CarriedItem {
    std::string key;
    std::uint32_t flags = 0;
    Pieces value;
};

/// A whole tag, header to footer, be there items or not.
struct NewAPETag {
    Pieces pieces;
    bool isChanged = false;  ///< its items are not those of the file, byte for byte
};

/// The tag with the file's items in their order, each as it is unless its field was edited; behind
/// them those of fields that the tag did not tell, in the order of `fieldItems`, and those of
/// `carried` whose keys are free.
NewAPETag encodeAPETag(const TagChange& change, File& file, const FoundItems& found,
                       std::vector<CarriedItem> carried, const CodePage& ansi);

}  // namespace tavlo
