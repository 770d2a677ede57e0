#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Reads the APEv2 (or APEv1) tag whose footer lies in the file's last 256 bytes, or in front of
/// the Lyrics3 block that the record already knows of, into the record. Says where the tag lies;
/// nothing where there is none. With `ReadDepth::List` the picture is noted without its bytes and
/// unknown items are passed over.
std::optional<TagSpan> ReadAPETag(File& file, ID3tag& record, const ReadContext& context);

/// The whole tag for the record's fields, header to footer, be there items or not.
std::string encodeAPETag(const ID3tag& record);

}  // namespace tavlo
