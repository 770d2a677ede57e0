#pragma once

#include "collection/cFilesCollection.h"
#include "core/StartUp.h"

namespace tavlo {

/// Which files a job works on.
struct JobFiles {
    FileTypes types = FileType::Audio;
    Text otherType = Text::NoAudioFile;  ///< told of a file that was named and is none of them
};

/// Gathers the files of the folders, playlists and files that the command line names, by its mask.
/// False when none of them exists; what is missing is reported.
bool gatherJobFiles(Services& services, const JobFiles& wanted, cFilesCollection& files);

}  // namespace tavlo
