#pragma once

#include <optional>
#include <string>

#include "cd/CDDB.h"
#include "core/StartUp.h"

namespace tavlo {

/// The CD drive, or other device, that the command line names as its folder; nothing where that is
/// none.
std::optional<std::string> wantedDrive(const JobOptions& options);

/// Prints the table of contents of a disc: the TOC text, the disc id, a line per track (number,
/// start, length, audio or data, artist and title); with `json` one object. What is no disc with
/// audio tracks is told. Gives the exit code.
int printDisc(Services& services, const std::string& drive, const DiscContents& disc);

}  // namespace tavlo
