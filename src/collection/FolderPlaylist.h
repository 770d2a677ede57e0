#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/Progress.h"
#include "platform/CodePage.h"
#include "platform/FileCalls.h"

namespace tavlo {

struct PlaylistWish {
    std::string folder;
    std::string playlistPath = {};  ///< empty: "!Playlist.m3u" in the folder
    std::string mask = "*.*";       ///< of the files' names
    bool absolutePaths = false;
    bool subfolders = false;
    bool utf8 = false;  ///< a second list in UTF-8 beside it, ".m3u8"
};

/// An extended M3U list of a folder's audio files, hidden ones included, in their order.
struct FolderPlaylist {
    std::string path;
    std::string bytes;                     ///< in the code page
    std::string utf8;                      ///< the same in UTF-8
    std::vector<std::string> unread;       ///< folders that could not be read
    std::vector<std::string> unreadFiles;  ///< left out: no file, or one that cannot be opened
    std::size_t files = 0;
    std::size_t notHeld = 0;  ///< entries that the list in the code page cannot hold
};

/// Reads the folder; nothing when it was cancelled.
std::optional<FolderPlaylist> folderPlaylist(const PlaylistWish& wish, const CodePage& ansi,
                                             Progress& progress, const CancelFlag& cancel);

/// Writes the list in place of one of that name. False when it cannot be written; the old list is
/// then still there.
bool writePlaylist(const FolderPlaylist& list, bool utf8, FileCalls& calls = systemCalls());

/// Both. False when it was cancelled or could not be written.
bool MakeFolderPlaylist(const PlaylistWish& wish, const CodePage& ansi, Progress& progress,
                        const CancelFlag& cancel);

}  // namespace tavlo
