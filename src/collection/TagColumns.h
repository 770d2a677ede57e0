#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/Options.h"
#include "core/StartUp.h"
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

/// The job's options with the texts that go into tags, and the template of names, as UTF-8 text.
/// Nothing where one of them is no text; that is reported.
std::optional<JobOptions> decodedOptions(Services& services);

/// Whether a field that was to be changed is found as it was: in a tag that was not written.
bool staysOld(std::string_view before, std::string_view wanted, std::string_view shown);

}  // namespace tavlo
