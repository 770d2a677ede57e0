#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/ErrorReport.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "platform/CodePage.h"
#include "platform/FileCalls.h"
#include "tags/ID3tag.h"
#include "tags/RewriteWays.h"

namespace tavlo {

/// The settings that steer the tag writers.
struct TagSettings {
    bool id3v1 = true;          ///< make an ID3v1 block where there is none
    bool id3v2 = true;          ///< make an ID3v2 tag where there is none
    bool id3v24 = false;        ///< write version 2.4 instead of 2.3
    bool id3v2Unicode = false;  ///< write ID3v2 text as UTF-16
    bool ape2 = false;          ///< write APEv2 tags into MP3 files
    bool keepTime = false;      ///< a changed file keeps its modification time
    bool force = false;         ///< a file without sound gets its tags as well
};
TagSettings tagSettings(const Settings& settings);

/// What a writer has to say of a file beyond its answer, each in a line that a person is told.
struct WriteNotes {
    std::string refusal;             ///< why nothing, or not all of it, was written
    std::vector<std::string> notes;  ///< what else is to be known
    /// What a list will show of the file, where a tag that stays as it is may hide what is written.
    std::optional<ID3tag> shown;
};

struct WriteContext {
    const CodePage& ansi;  ///< for 8-bit text
    TagSettings settings;
    ErrorReport& errors;
    Progress& progress;  ///< lets messages run while a file is waited for
    FileCalls& calls = systemCalls();
    bool dryRun = false;  ///< only find out what would be done
    RewriteWays ways = {};
    /// Gets what is told of a file; the error report gets it in any case.
    WriteNotes* notes = nullptr;
};

}  // namespace tavlo
