#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/PathText.h"

namespace tavlo {

/// Where external programs are looked for, and how a file is found to exist.
struct ToolPlaces {
    PathStyle style = PathStyle::Posix;
    std::string programFolder;
    std::string searchPath;  ///< the variable PATH
    std::function<bool(const std::string& path)> exists;
};

/// The places of the running system.
ToolPlaces systemToolPlaces();

/// A program's file name on this kind of system: without ".exe" where programs have none.
std::string toolFileName(std::string_view tool, PathStyle style);

/// The full path of a program such as "lame.exe": the program's folder first, then PATH; empty
/// when it is in none of them.
std::string findTool(std::string_view tool, const ToolPlaces& places);

/// The names of all external programs, such as "lame.exe".
std::span<const std::string_view> externalTools();

/// Those of them that are not there, and could be on this kind of system. It looks at some hundred
/// paths, so only jobs that start programs ask, and the options.
std::vector<std::string_view> missingToolNames(const ToolPlaces& places);

/// Their file names joined with ", ".
std::string missingTools(const ToolPlaces& places);

}  // namespace tavlo
