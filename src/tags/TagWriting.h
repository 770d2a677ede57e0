#pragma once

#include "core/ErrorReport.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "platform/CodePage.h"
#include "platform/FileCalls.h"
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
};
TagSettings tagSettings(const Settings& settings);

struct WriteContext {
    const CodePage& ansi;  ///< for 8-bit text
    TagSettings settings;
    ErrorReport& errors;
    Progress& progress;  ///< lets messages run while a file is waited for
    FileCalls& calls = systemCalls();
    bool dryRun = false;  ///< only find out what would be done
    RewriteWays ways = {};
};

}  // namespace tavlo
