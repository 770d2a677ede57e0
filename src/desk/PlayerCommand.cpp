#include "desk/PlayerCommand.h"

#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/PlainText.h"
#include "platform/Process.h"
#include "platform/SystemOpen.h"

namespace tavlo {

namespace {
constexpr std::string_view filePlace = "%1";

// A player may be named by its path, or by its name alone when it lies in PATH.
std::string findPlayer(const std::string& player, const ToolPlaces& places) {
    const bool hasFolder = lastSeparator(player, places.style) != std::string_view::npos;
    if (!hasFolder) return findTool(player, places);
    return places.exists(player) ? player : std::string();
}
}  // namespace

std::string playerArguments(const std::string& pattern, const std::string& path) {
    const std::string file = quotedArgument(path);
    std::string result = pattern;
    // Who has put the quotes into the setting gets them once.
    replaceAll(result, "\"%1\"", filePlace);
    if (result.find(filePlace) == std::string::npos) {
        return result + (result.empty() ? "" : " ") + file;
    }
    replaceAll(result, filePlace, file);
    return result;
}

PlayerOrders playerOrders(const Settings& settings, const std::vector<std::string>& files,
                          PlayWish wish, const ToolPlaces& places) {
    if (!settings.flag(Setting::PlayerEn)) return {};
    const std::string& player = settings.text(Setting::PlayerPath);
    if (trimBlanks(player).empty()) return {{}, {}, Text::PlayerNotChosen};
    PlayerOrders orders{findPlayer(player, places), {}, {}};
    if (orders.program.empty()) return {player, {}, Text::PlayerNotFound};
    Setting options = wish == PlayWish::Play ? Setting::PlayerPlayback : Setting::PlayerEnqueue;
    for (const std::string& file : files) {
        orders.lines.push_back(quotedArgument(orders.program) + ' ' +
                               playerArguments(settings.text(options), file));
        options = Setting::PlayerEnqueue;
    }
    return orders;
}

std::string playList(const std::vector<std::string>& files) {
    std::string list = "#EXTM3U\n";
    for (const std::string& file : files) list += file + '\n';
    return list;
}

namespace {
// It has to stay while it is played; the next one takes its place.
std::string playListPath() {
    return joinPath(settingsFolder(), "play.m3u8", nativePathStyle());
}

bool writePlayList(const std::vector<std::string>& files) {
    return createFolders(settingsFolder()) && replaceFile(playListPath(), playList(files));
}

bool startAll(Services& services, const PlayerOrders& orders) {
    for (const std::string& line : orders.lines) {
        if (startAndForget(orders.program, line)) continue;
        services.errors.report(Text::PlayerNotStarted, orders.program);
        return false;
    }
    return true;
}

bool openAll(Services& services, const std::string& file) {
    if (openWithSystem(file)) return true;
    services.errors.report(Text::NoSystemPlayer, file);
    return false;
}
}  // namespace

bool playFiles(Services& services, const std::vector<std::string>& files, PlayWish wish) {
    if (files.empty()) return true;
    std::vector<std::string> played = files;
    const bool hasPlayer = services.settings.flag(Setting::PlayerEn);
    if (files.size() > (hasPlayer ? mostPlayerStarts : 1)) {
        if (!writePlayList(files)) {
            services.errors.report(Text::PlayListNotWritten, playListPath());
            return false;
        }
        played = {playListPath()};
    }
    const PlayerOrders orders = playerOrders(services.settings, played, wish);
    if (orders.fault) {
        services.errors.report(*orders.fault, orders.program);
        return false;
    }
    return hasPlayer ? startAll(services, orders) : openAll(services, played.front());
}

}  // namespace tavlo
