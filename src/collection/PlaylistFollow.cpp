#include "collection/PlaylistFollow.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include "collection/FilesIn.h"
#include "collection/Playlist.h"
#include "core/TextCase.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "tags/FileType.h"

namespace tavlo {

namespace {
// Two paths with one key name one file, links to folders looked through.
class PathKeys {
 public:
    [[nodiscard]] std::string of(std::string_view path) {
        const std::string folder(folderOf(path, nativePathStyle()));
        const auto [found, isNew] = folders_.try_emplace(folder);
        if (isNew) found->second = canonicalPath(folder);
        const std::string_view known = found->second.empty() ? folder : found->second;
        std::string key = joinPath(known, fileNameOf(path, nativePathStyle()), nativePathStyle());
        return nativePathStyle() == PathStyle::Windows ? lowerCase(key) : key;
    }

 private:
    std::unordered_map<std::string, std::string> folders_;  // empty: there is none
};

class RowsByPath {
 public:
    // The rows for which `counts` holds.
    template <typename Counts>
    RowsByPath(const RenamePlan& plan, Counts counts) {
        for (std::size_t i = 0; i < plan.size(); ++i) {
            if (counts(plan[i])) rows_.emplace(keys_.of(plan[i].from), i);
        }
    }
    [[nodiscard]] std::optional<std::size_t> find(const std::string& path) {
        const auto found = rows_.find(keys_.of(path));
        return found == rows_.end() ? std::nullopt : std::optional(found->second);
    }

 private:
    PathKeys keys_;
    std::unordered_map<std::string, std::size_t> rows_;
};

bool isMoved(const RenameStep& step) {
    return step.isMoved;
}

std::optional<std::string> applied(std::string_view list, std::string_view path,
                                   const RenamePlan& done, RowsByPath& rows, const CodePage& ansi) {
    return rewrittenPlaylist(list, playlistPlace(path), ansi, [&](const std::string& file) {
        const auto row = rows.find(file);
        return row ? done[*row].to : std::string();
    });
}

// Each once, by the path that comes first.
void sortOut(std::vector<std::string>& lists) {
    PathKeys keys;
    std::set<std::string> seen;
    std::erase_if(lists,
                  [&](const std::string& list) { return !seen.insert(keys.of(list)).second; });
    std::sort(lists.begin(), lists.end());
}
}  // namespace

std::vector<std::string> playlistsIn(const std::string& folder, bool subfolders) {
    return filesIn(folder, subfolders, isPlaylist);
}

std::vector<std::string> playlistsAround(const RenamePlan& plan) {
    std::set<std::string, std::less<>> touched;
    for (const RenameStep& step : plan) {
        if (step.to == step.from) continue;
        for (const std::string& path : {step.from, step.to}) {
            const std::string_view folder = folderOf(path, nativePathStyle());
            if (!touched.contains(folder)) touched.emplace(folder);
        }
    }
    std::set<std::string, std::less<>> folders;
    std::vector<std::string> lists;
    const auto addFrom = [&](std::string_view folder) {
        for (; !folder.empty() && !folders.contains(folder);
             folder = parentOf(folder, nativePathStyle())) {
            folders.emplace(folder);
            std::ranges::move(playlistsIn(std::string(folder), false), std::back_inserter(lists));
        }
    };
    for (const std::string& folder : touched) addFrom(folder);
    // Behind a link there are other folders above.
    for (const std::string& folder : touched) addFrom(canonicalPath(folder));
    return lists;
}

void eraseLists(std::vector<std::string>& lists, std::span<const std::string> others) {
    PathKeys keys;
    std::set<std::string> out;
    for (const std::string& list : others) out.insert(keys.of(list));
    std::erase_if(lists, [&](const std::string& list) { return out.contains(keys.of(list)); });
}

std::vector<std::string> relativeEntries(std::span<const std::string> lists, const CodePage& ansi,
                                         const CancelFlag* cancel) {
    std::vector<std::string> paths;
    PathKeys keys;
    std::set<std::string> seen;
    for (const std::string& list : lists) {
        const auto take = [&](PlaylistEntry entry) {
            const bool isAudio = (GetFileType(entry.path) & FileType::Audio) != 0;
            if (entry.isAbsolute || !isAudio || !fileInfo(entry.path)) return true;
            if (seen.insert(keys.of(entry.path)).second) paths.push_back(std::move(entry.path));
            return true;
        };
        eachEntryOf(list, ansi, take, cancel);
    }
    return paths;
}

HeldRows rowsThatListsHold(std::vector<std::string> lists, const RenamePlan& plan,
                           const CodePage& ansi) {
    sortOut(lists);
    std::erase_if(lists, [](const std::string& list) { return canBeReplaced(list); });
    HeldRows held;
    if (lists.empty()) return held;
    RowsByPath rows(plan, [](const RenameStep& step) { return step.moves(); });
    for (const std::string& list : lists) {
        const auto take = [&](const PlaylistEntry& entry) {
            if (const auto row = rows.find(entry.path)) held.rows.push_back(*row);
            return true;
        };
        if (!eachEntryOf(list, ansi, take)) held.unread.push_back(list);
    }
    return held;
}

std::string followed(std::string_view before, std::string_view path, const RenamePlan& done,
                     const CodePage& ansi) {
    RowsByPath rows(done, isMoved);
    auto after = applied(before, path, done, rows, ansi);
    return after ? std::move(*after) : std::string(before);
}

bool hasOnlyFollowed(std::string_view now, std::string_view before, std::string_view path,
                     const RenamePlan& done, const CodePage& ansi) {
    const PlaylistPlace place = playlistPlace(path);
    PlaylistLines lines(now, place, ansi);
    PlaylistLines old(before, place, ansi);
    RowsByPath rows(done, isMoved);
    while (lines.next()) {
        if (!old.next()) return false;
        const std::string a = lines.isEntry ? lines.path() : lines.text;
        const std::string b = old.isEntry ? old.path() : old.text;
        if (a == b) continue;
        const auto row = rows.find(b);
        if (!row || done[*row].to != a) return false;
    }
    return !old.next();
}

std::vector<ListChange> listChanges(std::vector<std::string> lists, const RenamePlan& done,
                                    const CodePage& ansi) {
    sortOut(lists);
    std::vector<ListChange> changes;
    if (lists.empty()) return changes;
    RowsByPath rows(done, isMoved);
    for (const std::string& list : lists) {
        auto before = readFile(list, largestPlaylist);
        if (!before) continue;
        auto after = applied(*before, list, done, rows, ansi);
        if (after) changes.push_back({list, std::move(*before), std::move(*after)});
    }
    return changes;
}

bool writeLists(std::span<const ListChange> changes, ErrorReport& errors, FileCalls& calls) {
    bool all = true;
    for (const ListChange& change : changes) {
        if (replaceFile(change.path, change.after, calls)) continue;
        errors.report(Text::FileNotWritten, change.path);
        all = false;
    }
    return all;
}

}  // namespace tavlo
