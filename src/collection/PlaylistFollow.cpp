#include "collection/PlaylistFollow.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include "collection/Playlist.h"
#include "core/TextCase.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "tags/FileType.h"

namespace tavlo {

namespace {
// Two paths with one key name one file.
std::string keyOf(std::string_view path) {
    return nativePathStyle() == PathStyle::Windows ? lowerCase(path) : std::string(path);
}

class NewPaths {
 public:
    explicit NewPaths(const RenamePlan& done) {
        for (const RenameStep& step : done) {
            if (step.isMoved) paths_.emplace(keyOf(step.from), step.to);
        }
    }
    [[nodiscard]] std::optional<std::string> applied(std::string_view list, std::string_view path,
                                                     const CodePage& ansi) const {
        return rewrittenPlaylist(list, playlistPlace(path), ansi, [&](const std::string& file) {
            const auto found = paths_.find(keyOf(file));
            return found == paths_.end() ? std::string() : std::string(found->second);
        });
    }

 private:
    std::unordered_map<std::string, std::string_view> paths_;
};

using Folders = std::set<std::string, std::less<>>;

Folders touchedFolders(const RenamePlan& plan) {
    Folders folders;
    for (const RenameStep& step : plan) {
        if (step.to == step.from) continue;
        for (const std::string& path : {step.from, step.to}) {
            const std::string_view folder = folderOf(path, nativePathStyle());
            if (!folders.contains(folder)) folders.emplace(folder);
        }
    }
    return folders;
}

// The innermost folder that all lie in; empty where there is none.
std::string commonFolder(const Folders& folders) {
    std::string_view common = folders.empty() ? std::string_view() : *folders.begin();
    for (const std::string& folder : folders) {
        while (!common.empty() && !liesIn(folder, common, nativePathStyle())) {
            common = parentOf(common, nativePathStyle());
        }
    }
    return std::string(common);
}
}  // namespace

std::vector<std::string> playlistsIn(const std::string& folder, bool subfolders) {
    std::vector<std::string> lists;
    std::vector<std::string> below;
    for (const FolderEntry& entry : listFolder(folder)) {
        std::string path = joinPath(folder, entry.name, nativePathStyle());
        if (entry.isFolder) {
            if (subfolders && !entry.isLink) below.push_back(std::move(path));
        } else if (isPlaylist(entry.name)) {
            lists.push_back(std::move(path));
        }
    }
    std::sort(lists.begin(), lists.end());
    std::sort(below.begin(), below.end());
    for (const std::string& subfolder : below) {
        std::ranges::move(playlistsIn(subfolder, true), std::back_inserter(lists));
    }
    return lists;
}

std::vector<std::string> playlistsAround(const RenamePlan& plan) {
    const Folders touched = touchedFolders(plan);
    const std::string common = commonFolder(touched);
    const std::string_view end = parentOf(common, nativePathStyle());
    Folders all(touched.begin(), touched.end());
    for (std::string_view folder : touched) {
        while (folder.size() > end.size()) {
            folder = parentOf(folder, nativePathStyle());
            // Without a common folder, one above each is far enough.
            if (folder.empty() || !all.emplace(folder).second || common.empty()) break;
        }
    }
    std::vector<std::string> lists;
    for (const std::string& folder : all) {
        std::ranges::move(playlistsIn(folder, false), std::back_inserter(lists));
    }
    return lists;
}

std::vector<std::string> relativeEntries(std::span<const std::string> lists, const CodePage& ansi) {
    std::vector<std::string> paths;
    std::set<std::string> seen;
    for (const std::string& list : lists) {
        for (PlaylistEntry& entry : readPlaylistEntries(list, ansi).value_or(PlaylistEntries())) {
            const bool isAudio = (GetFileType(entry.path) & FileType::Audio) != 0;
            if (entry.isAbsolute || !isAudio || !fileInfo(entry.path)) continue;
            if (seen.insert(keyOf(entry.path)).second) paths.push_back(std::move(entry.path));
        }
    }
    return paths;
}

std::optional<std::string> followed(std::string_view before, std::string_view path,
                                    const RenamePlan& done, const CodePage& ansi) {
    return NewPaths(done).applied(before, path, ansi);
}

std::vector<ListChange> listChanges(std::vector<std::string> lists, const RenamePlan& done,
                                    const CodePage& ansi) {
    std::sort(lists.begin(), lists.end());
    lists.erase(std::unique(lists.begin(), lists.end()), lists.end());
    const NewPaths newPaths(done);
    std::vector<ListChange> changes;
    for (const std::string& list : lists) {
        auto before = readFile(list, largestPlaylist);
        if (!before) continue;
        auto after = newPaths.applied(*before, list, ansi);
        if (after) changes.push_back({list, std::move(*before), std::move(*after)});
    }
    return changes;
}

void writeLists(std::span<const ListChange> changes, ErrorReport& errors, FileCalls& calls) {
    for (const ListChange& change : changes) {
        if (!replaceFile(change.path, change.after, calls)) {
            errors.report(Text::FileNotWritten, change.path);
        }
    }
}

}  // namespace tavlo
