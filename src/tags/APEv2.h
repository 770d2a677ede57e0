#pragma once

#include <cstdint>
#include <optional>

#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"

namespace tavlo {

/// Reads the APEv2 (or APEv1) tag whose footer lies in the file's last 256 bytes into the record.
/// Returns the offset of the tag's first byte, nothing where there is no tag. With
/// `ReadDepth::List` the picture is noted without its bytes and unknown items are passed over.
std::optional<std::uint64_t> ReadAPETag(File& file, ID3tag& record, const ReadContext& context);

}  // namespace tavlo
