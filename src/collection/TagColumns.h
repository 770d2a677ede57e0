#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/Options.h"
#include "core/Texts.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// A tag field that batches change: its name in JSON, its caption, where a batch gives it, the
/// option that does, and how it is read and set.
struct TagColumn {
    std::string_view name;
    Text caption;
    std::string_view BasicFields::*given;
    std::optional<std::string> JobOptions::*option;
    std::string (*get)(const ID3tag&);
    void (ID3tag::*set)(std::string_view);
};

/// Artist, Title, Mix, Album, Year, TrackNumber, Genre.
std::span<const TagColumn> tagColumns();

}  // namespace tavlo
