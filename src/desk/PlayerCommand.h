#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/ExternalTools.h"
#include "core/Settings.h"
#include "core/StartUp.h"

namespace tavlo {

enum class PlayWish {
    Play,     ///< the first file now, the others after it
    Enqueue,  ///< all behind what the player has already
};

/// What has to be started so that files are played.
struct PlayerOrders {
    std::string program;             ///< empty: the system knows a player for the file
    std::vector<std::string> lines;  ///< command lines of the program, in their order
    std::optional<Text> fault;       ///< why nothing can be started; told with `program`
};

/// More files than this go to the player as one playlist.
inline constexpr std::size_t mostPlayerStarts = 32;

/// A setting's options with the file's path, quoted, in place of every "%1"; behind them where
/// there is none.
std::string playerArguments(const std::string& pattern, const std::string& path);

/// The command lines that the settings make for these files; none where the system's player is to
/// play them. A player without a folder is looked for in `places`.
PlayerOrders playerOrders(const Settings& settings, const std::vector<std::string>& files,
                          PlayWish wish, const ToolPlaces& places = systemToolPlaces());

/// Extended M3U in UTF-8 that names the files.
std::string playList(const std::vector<std::string>& files);

/// Starts what plays the files and does not wait for it. False, and reported, when that failed.
bool playFiles(Services& services, const std::vector<std::string>& files, PlayWish wish);

}  // namespace tavlo
