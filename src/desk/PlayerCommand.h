#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/ExternalTools.h"
#include "core/Settings.h"
#include "core/StartUp.h"

namespace tavlo {

enum class PlayWish {
    Play,     ///< now
    Enqueue,  ///< behind what the player has already
};

/// What has to be started so that a file is played.
struct PlayerOrder {
    std::string program;        ///< empty: the system knows a player for the file
    std::string line;           ///< command line of the program
    std::optional<Text> fault;  ///< why nothing can be started; told with `program`
};

/// A setting's options with the file's path, quoted, in place of every "%1"; behind them where
/// there is none.
std::string playerArguments(const std::string& pattern, const std::string& path);

/// The command line that the settings make for a file; none where the system's player is to play
/// it. A player without a folder is looked for in `places`.
PlayerOrder playerOrder(const Settings& settings, const std::string& file, PlayWish wish,
                        const ToolPlaces& places = systemToolPlaces());

/// Extended M3U in UTF-8 that names the files.
std::string playList(const std::vector<std::string>& files);

/// Starts what plays the files and does not wait for it. Several go as one playlist, for as many
/// starts at once would arrive in any order. False, and reported, when that failed.
bool playFiles(Services& services, const std::vector<std::string>& files, PlayWish wish);

}  // namespace tavlo
