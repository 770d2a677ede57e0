#pragma once

#include <string>
#include <vector>

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

/// The same for a job that changes files: false as well, with a word that nothing was done, when an
/// option is not known or any of what was named is missing, for then something else was meant.
bool gatherFilesToChange(Services& services, const JobFiles& wanted, cFilesCollection& files);

/// Whether every option was understood and has its value; otherwise the word that nothing was done.
bool isUnderstood(Services& services);

/// The folder that the result of a file goes to: the target or, with `keepPaths`, the folder below
/// it that the file has in the collection.
std::string folderInTarget(const cFilesCollection& files, std::size_t index,
                           const std::string& target, bool keepPaths);

/// The paths that the command line names; without one the settings' or the current folder.
std::vector<std::string> wantedPaths(const Services& services);

}  // namespace tavlo
