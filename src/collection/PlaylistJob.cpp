#include "collection/PlaylistJob.h"

#include "collection/FolderPlaylist.h"
#include "collection/JobFiles.h"
#include "core/JsonLine.h"
#include "platform/FileSystem.h"
#include "platform/PlainText.h"

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

std::string textOf(const FolderPlaylist& list, bool isPlanned, const Texts& texts) {
    std::string line = list.path + "  " +
                       texts.get(isPlanned ? Text::SummaryWouldList : Text::SummaryListed,
                                 std::to_string(list.files));
    if (list.notHeld > 0) {
        line += "  " + texts.get(Text::SummaryNotHeld, std::to_string(list.notHeld));
    }
    return withoutControls(line) + '\n';
}

// Why a list cannot be written; nothing where it was, or may be.
std::optional<Text> failureOf(const FolderPlaylist& list, const JobOptions& options) {
    if (isLink(list.path) || (options.utf8List && isLink(list.path + "8"))) {
        return Text::LinkNotWritten;
    }
    if (options.dryRun || writePlaylist(list, options.utf8List)) return std::nullopt;
    return isInUse(list.path) ? Text::FileInUse : Text::FileNotCreated;
}

// What is told of a list that was made, or would be.
std::string makeList(Services& services, const FolderPlaylist& list) {
    const JobOptions& options = services.options;
    const auto failure = failureOf(list, options);
    const bool done = !failure;
    if (failure) services.errors.report(*failure, list.path);
    if (!options.json) return done ? textOf(list, options.dryRun, services.texts) : std::string();
    return jsonOf(list,
                  !done            ? "failed"
                  : options.dryRun ? "planned"
                                   : "written",
                  done ? std::string() : services.texts.get(*failure, list.path));
}
// The job's folders; nothing when any of what was named is none.
std::optional<std::vector<std::string>> wantedFolders(Services& services) {
    const std::size_t errors = services.errors.count();
    std::vector<std::string> folders;
    for (const std::string& wanted : wantedPaths(services)) {
        folders.push_back(absolutePath(wanted));
        const auto info = fileInfo(folders.back());
        if (!info) {
            services.errors.report(Text::FolderNotFound, folders.back());
        } else if (!info->isFolder) {
            services.errors.report(Text::NotAFolder, folders.back());
        } else if (!isReadableFolder(folders.back())) {
            services.errors.report(Text::FolderNotRead, folders.back());
        }
    }
    if (services.errors.count() == errors) return folders;
    services.errors.report(Text::NothingDone);
    return std::nullopt;
}
}  // namespace

int makePlaylists(Services& services) {
    if (!isUnderstood(services)) return unusableCommandLine;
    const auto folders = wantedFolders(services);
    if (!folders) return unusableCommandLine;
    const CodePage ansi(services.ansiCodePage);
    const JobOptions& options = services.options;
    for (const std::string& folder : *folders) {
        const PlaylistWish wish{folder, {}, options.mask, options.keepPaths, options.subfolders};
        const auto list = folderPlaylist(wish, ansi, services.progress, services.cancel);
        if (!list) break;
        for (const std::string& unread : list->unread) {
            services.errors.report(Text::FolderNotRead, unread);
        }
        for (const std::string& unread : list->unreadFiles) {
            services.errors.report(Text::FileNotRead, unread);
        }
        if (!services.output.write(makeList(services, *list))) {
            services.errors.report(Text::OutputNotWritten);
        }
    }
    if (services.cancel.load()) services.errors.report(Text::Cancelled);
    return services.errors.exitCode();
}

}  // namespace tavlo
