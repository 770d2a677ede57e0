#include "collection/PlaylistJob.h"

#include "collection/FolderPlaylist.h"
#include "collection/JobFiles.h"
#include "collection/JsonLine.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
std::string jsonOf(const FolderPlaylist& list, std::string_view result,
                   const std::string& message) {
    JsonLine line;
    line.addName("Path", list.path);
    line.addNumber("Files", list.files);
    line.addNumber("NotHeld", list.notHeld);
    line.add("Result", result);
    if (!message.empty()) line.add("Message", message);
    return line.finish();
}

std::string textOf(const FolderPlaylist& list, const Texts& texts) {
    std::string line =
        list.path + "  " + texts.get(Text::SummaryListed, std::to_string(list.files));
    if (list.notHeld > 0) {
        line += "  " + texts.get(Text::SummaryNotHeld, std::to_string(list.notHeld));
    }
    return line + '\n';
}

// What is told of a list that was made, or would be.
std::string makeList(Services& services, const FolderPlaylist& list) {
    const JobOptions& options = services.options;
    const bool done = options.dryRun || writePlaylist(list, options.utf8List);
    if (!done) services.errors.report(Text::FileNotCreated, list.path);
    if (!options.json) return done ? textOf(list, services.texts) : std::string();
    return jsonOf(list,
                  !done            ? "failed"
                  : options.dryRun ? "planned"
                                   : "written",
                  done ? std::string() : services.texts.get(Text::FileNotCreated, list.path));
}
}  // namespace

int makePlaylists(Services& services) {
    if (!isUnderstood(services)) return unusableCommandLine;
    const CodePage ansi(services.ansiCodePage);
    const JobOptions& options = services.options;
    for (const std::string& wanted : wantedPaths(services)) {
        const std::string folder = absolutePath(wanted);
        if (!folderExists(folder) || !isReadableFolder(folder)) {
            const bool isThere = folderExists(folder);
            services.errors.report(isThere ? Text::FolderNotRead : Text::FolderNotFound, folder);
            continue;
        }
        const PlaylistWish wish{folder, {}, options.keepPaths, options.subfolders};
        const auto list = folderPlaylist(wish, ansi, services.progress, services.cancel);
        if (!list) break;
        if (!services.output.write(makeList(services, *list))) {
            services.errors.report(Text::OutputNotWritten);
        }
    }
    if (services.cancel.load()) services.errors.report(Text::Cancelled);
    return services.errors.exitCode();
}

}  // namespace tavlo
