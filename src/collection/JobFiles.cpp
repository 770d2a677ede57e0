#include "collection/JobFiles.h"

#include "collection/Playlist.h"
#include "core/WildcardMask.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
// Adds a folder's files, a playlist's, or the one file that the path names; false when it cannot be
// read.
bool gatherPath(Services& services, const JobFiles& wanted, const std::string& path,
                cFilesCollection& files) {
    const auto info = fileInfo(path);
    if (!info) {
        services.errors.report(Text::FolderNotFound, path);
        return false;
    }
    if (info->isFolder && !isReadableFolder(path)) {
        services.errors.report(Text::FolderNotRead, path);
        return false;
    }
    if (info->isFolder) {
        return files.FillFromFolder(path, wanted.types, services.options.subfolders, false, false);
    }
    if (isPlaylist(path)) {
        const CodePage ansi(services.ansiCodePage);
        if (files.FillFromPlaylist(path, wanted.types, ansi)) return true;
        services.errors.report(Text::FileNotRead, path);
        return false;
    }
    if ((GetFileType(path) & wanted.types) != 0) {
        files.AddFile(path);
    } else {
        services.errors.report(wanted.otherType, path);
    }
    return true;
}

}  // namespace

// What was asked for; without it a window shows what the settings name, a job works where it was
// started.
std::vector<std::string> wantedPaths(const Services& services) {
    const JobOptions& options = services.options;
    if (options.paths.size() > 1) return options.paths;
    if (options.folder) return {*options.folder};
    if (options.mode == RunMode::MainWindow) {
        const Settings& settings = services.settings;
        const bool hasStartup = settings.flag(Setting::StartupFolderEn);
        for (const Setting kept : {Setting::StartupFolder, Setting::CurrentFolder}) {
            const bool asked = kept != Setting::StartupFolder || hasStartup;
            if (asked && folderExists(settings.text(kept))) return {settings.text(kept)};
        }
    }
    return {options.startFolder};
}

bool gatherJobFiles(Services& services, const JobFiles& wanted, cFilesCollection& files) {
    bool found = false;
    const std::vector<std::string> paths = wantedPaths(services);
    for (const std::string& path : paths) {
        found = gatherPath(services, wanted, absolutePath(path), files) || found;
    }
    for (const std::string& folder : files.unreadFolders()) {
        services.errors.report(Text::FolderNotRead, folder);
    }
    const std::string first = absolutePath(paths.front());
    if (paths.size() > 1) {
        files.CheckBaseFolder();
    } else {
        files.BaseFolder =
            folderExists(first) ? first : std::string(folderOf(first, nativePathStyle()));
    }
    const WildcardMask mask(services.options.mask);
    if (!mask.takesAll()) {
        files.keepIf([&](std::string_view path) {
            return mask.matches(fileNameOf(path, nativePathStyle()));
        });
    }
    return found;
}

std::string folderInTarget(const cFilesCollection& files, std::size_t index,
                           const std::string& target, bool keepPaths) {
    const std::string below = keepPaths ? files.GetFileSubPathOnly(index) : std::string();
    return below.empty() || isAbsolutePath(below, nativePathStyle())
               ? target
               : joinPath(target, below, nativePathStyle());
}

bool isUnderstood(Services& services) {
    const JobOptions& options = services.options;
    for (const std::string& word : options.valueless) {
        services.errors.report(Text::ValueMissing, word);
    }
    if (options.ignored.empty() && options.valueless.empty()) return true;
    services.errors.report(Text::NothingDone);
    return false;
}

bool gatherFilesToChange(Services& services, const JobFiles& wanted, cFilesCollection& files) {
    if (!isUnderstood(services)) return false;
    const std::size_t errors = services.errors.count();
    const bool found = gatherJobFiles(services, wanted, files);
    if (found && services.errors.count() == errors + files.unreadFolders().size()) return true;
    services.errors.report(Text::NothingDone);
    return false;
}

}  // namespace tavlo
