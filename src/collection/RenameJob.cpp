#include "collection/RenameJob.h"

#include <algorithm>

#include "collection/JobFiles.h"
#include "collection/NotedRename.h"
#include "collection/Playlist.h"
#include "collection/RenameBasics.h"
#include "collection/RenameReport.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
void chooseFormat(const Services& services, cFilesRename& renamer) {
    const JobOptions& options = services.options;
    const Settings& settings = services.settings;
    renamer.Format = "6";
    if (options.nameTemplate) {
        renamer.Template = *options.nameTemplate;
    } else if (options.mode == RunMode::AutoRename) {
        renamer.Template = settings.text(Setting::RenameTemplateDef);
    } else {
        renamer.Template = settings.text(Setting::TAGSRenTemplate);
        renamer.Format =
            std::to_string(options.outputFormat.value_or(settings.number(Setting::TAGSRenFormat)));
    }
}

struct RenameBatch {
    std::vector<std::string> paths;
    std::vector<std::string> roots;  // the folders among what was named
    std::vector<std::string> lists;  // playlists that have to follow, besides those around
    std::vector<std::string> named;  // the folders that were named, or hold what was
};

// Lists may name files anywhere; those that do not lie in any folder that was named stay unless
// they are asked for.
void leaveOutside(Services& services, RenameBatch& batch) {
    const auto isInside = [&](const std::string& path) {
        return std::ranges::any_of(batch.named, [&](const std::string& folder) {
            return liesIn(path, folder, nativePathStyle());
        });
    };
    std::erase_if(batch.paths, [&](const std::string& path) {
        if (services.options.outside || isInside(path)) return false;
        services.errors.report(Text::OutsideOfList, path);
        return true;
    });
}

// What the job was asked to rename. False when it cannot be told.
bool gatherBatch(Services& services, const cFilesRename& renamer, RenameBatch& batch) {
    const bool byLists = services.options.mode == RunMode::Rename2;
    cFilesCollection files(services.progress, services.cancel);
    if (!gatherFilesToChange(services, {}, files)) return false;
    std::vector<std::string> chosen;
    for (const std::string& wanted : wantedPaths(services)) {
        const std::string path = absolutePath(wanted);
        const bool isFolder = folderExists(path);
        batch.named.emplace_back(isFolder ? path : folderOf(path, nativePathStyle()));
        if (isFolder) {
            batch.roots.push_back(path);
            std::ranges::move(playlistsIn(path, true), std::back_inserter(batch.lists));
            if (byLists) std::ranges::move(renamer.playlistsOf(path), std::back_inserter(chosen));
        } else if (isPlaylist(path)) {
            batch.lists.push_back(path);
            chosen.push_back(path);
        }
    }
    if (byLists) {
        batch.paths = relativeEntries(chosen, CodePage(services.ansiCodePage), &services.cancel);
    } else {
        for (std::size_t i = 1; i <= files.count(); ++i) batch.paths.push_back(files.GetFile(i));
    }
    leaveOutside(services, batch);
    return true;
}

// The folder that the new names go below; empty for each file's own. Nothing where it is missing.
std::optional<std::string> targetOf(Services& services) {
    const std::string target = services.options.targetFolder.value_or("");
    if (target.empty()) return target;
    std::string path = absolutePath(target);
    if (folderExists(path)) return path;
    services.errors.report(Text::FolderNotFound, path);
    services.errors.report(Text::NothingDone);
    return std::nullopt;
}
}  // namespace

int renameFiles(Services& services) {
    const CodePage ansi(services.ansiCodePage);
    cFilesRename renamer(renameContext(services, ansi));
    chooseFormat(services, renamer);
    renamer.Mask = services.options.mask;
    RenameBatch batch;
    const auto target = targetOf(services);
    RenameJournal journal(journalFolder());
    if (!mayRename(services, journal)) return services.errors.exitCode();
    if (!target || !gatherBatch(services, renamer, batch)) return unusableCommandLine;
    if (journal.isBrokenOff()) {
        services.errors.report(Text::RenamingBrokenOff);
        return services.errors.exitCode();
    }
    RenameReport report(services);
    // A scan that was cancelled found a part of the files only: then nothing is renamed.
    if (!services.cancel.load()) {
        RenamePlan plan = renamer.plan(batch.paths, *target, batch.lists);
        if (!services.options.dryRun) {
            performNoted(renamer, journal, plan, batch.roots, batch.lists);
        }
        report.tell(plan);
    }
    return report.finish();
}

}  // namespace tavlo
