#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tavlo {

/// Gives the current folder of a drive ("C:"), or of the program where the drive is empty; full.
using CurrentFolderOf = std::function<std::string(std::string_view drive)>;

/// How Windows names files, by the text alone, so that it can be tested everywhere. Inside the
/// program a path is plain, "C:\Music\a.mp3" or "\\server\share\a.mp3", and every name in it is
/// meant as it stands; the system is asked by `systemPath`, which keeps it from dropping dots and
/// blanks behind a name and from taking "con.mp3" for a device.

/// The full plain path: "/" becomes "\", "." and ".." steps go, and so do doubled separators and
/// one at the end. "\\?\C:\..." becomes plain as well; what has no plain form stays.
std::string plainPath(std::string_view path, const CurrentFolderOf& current);

/// The form that the system takes to the letter, "\\?\C:\..." or "\\?\UNC\server\...", of a full
/// plain path; of "\\?\..." and "\\.\..." themselves.
std::string systemPath(std::string_view plain);

}  // namespace tavlo
