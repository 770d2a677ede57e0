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

PlayerOrder playerOrder(const Settings& settings, const std::string& file, PlayWish wish,
                        const ToolPlaces& places) {
    if (!settings.flag(Setting::PlayerEn)) return {};
    const std::string& player = settings.text(Setting::PlayerPath);
    if (trimBlanks(player).empty()) return {{}, {}, Text::PlayerNotChosen};
    const std::string program = findPlayer(player, places);
    if (program.empty()) return {player, {}, Text::PlayerNotFound};
    const Setting options =
        wish == PlayWish::Play ? Setting::PlayerPlayback : Setting::PlayerEnqueue;
    return {
        program, quotedArgument(program) + ' ' + playerArguments(settings.text(options), file), {}};
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

bool startPlayer(Services& services, const PlayerOrder& order) {
    if (startAndForget(order.program, order.line)) return true;
    services.errors.report(Text::PlayerNotStarted, order.program);
    return false;
}

bool openAll(Services& services, const std::string& file) {
    if (openWithSystem(file)) return true;
    services.errors.report(Text::NoSystemPlayer, file);
    return false;
}
}  // namespace

bool playFiles(Services& services, const std::vector<std::string>& files, PlayWish wish) {
    if (files.empty()) return true;
    std::string played = files.front();
    if (files.size() > 1) {
        played = playListPath();
        if (!writePlayList(files)) {
            services.errors.report(Text::PlayListNotWritten, played);
            return false;
        }
    }
    const PlayerOrder order = playerOrder(services.settings, played, wish);
    if (order.fault) {
        services.errors.report(*order.fault, order.program);
        return false;
    }
    return order.program.empty() ? openAll(services, played) : startPlayer(services, order);
}

}  // namespace tavlo
