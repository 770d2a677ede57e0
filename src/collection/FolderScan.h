#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/PathText.h"
#include "core/Progress.h"
#include "platform/FileSystem.h"

namespace tavlo {

/// Collects every path below a folder, depth first: the contents of subfolders come before the
/// folder's own files, both sorted by name. A folder that is reached through a link is taken once,
/// and not at all where the scan meets it by its own path.
class FolderScan {
 public:
    FolderScan(Progress& progress, const CancelFlag& cancel, bool hidden)
        : progress_(progress), cancel_(cancel), hidden_(hidden) {}

    /// The paths one behind the other, each ended by a NUL: a name cannot hold one.
    std::string run(const std::string& folder, bool subfolders);

    /// The same, handed over folder by folder as they are found.
    void run(const std::string& folder, bool subfolders,
             std::function<void(std::string_view paths)> deliver);

    [[nodiscard]] std::size_t count() const { return count_; }
    /// Subfolders that could not be read.
    [[nodiscard]] const std::vector<std::string>& unreadFolders() const { return unread_; }

 private:
    void collect(std::string& folder, bool subfolders, bool insideLink);
    void collectSubfolder(std::string& folder, const FolderEntry& entry, bool insideLink);
    bool isAncestor(const FileId& id) const;
    bool enterLink(const std::string& folder);
    std::vector<FolderEntry> sortedEntries(const std::string& folder) const;
    [[nodiscard]] bool isCancelled() const { return cancel_.load(std::memory_order_relaxed); }

    Progress& progress_;
    const CancelFlag& cancel_;
    const bool hidden_;
    std::vector<FileId> ancestors_;             // from the scanned folder down to where the scan is
    std::string root_;                          // the scanned folder, links resolved, when needed
    std::unordered_set<std::string> followed_;  // folders met behind links, links resolved
    std::string paths_;
    std::function<void(std::string_view paths)> deliver_;
    std::vector<std::string> unread_;
    std::size_t count_ = 0;
};

}  // namespace tavlo
