#pragma once

#include <string>
#include <vector>

#include "core/Texts.h"
#include "tags/ID3tag.h"

namespace tavlo {

struct FactRow {
    Text caption = {};
    std::string value;
};

/// What a file and its sound are, as rows for a person; what is not known has no row.
std::vector<FactRow> streamFacts(const ID3tag& record, const Texts& texts);

/// "5 MB (5 554 112 bytes)"; below 10,240 bytes these alone.
std::string wholeSizeText(std::uint64_t bytes, const Texts& texts);

}  // namespace tavlo
