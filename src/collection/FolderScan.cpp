#include "collection/FolderScan.h"

#include <algorithm>

#include "core/TextCase.h"

namespace tavlo {

std::string FolderScan::run(const std::string& folder, bool subfolders) {
    const PathStyle style = nativePathStyle();
    std::string at = folder;
    if (!at.empty() && !isSeparator(at.back(), style)) at += separatorOf(style);
    root_ = canonicalPath(folder);
    ancestors_ = {folderId(folder).value_or(FileId{})};
    collect(at, subfolders, false);
    return std::move(paths_);
}

void FolderScan::run(const std::string& folder, bool subfolders,
                     std::function<void(std::string_view paths)> deliver) {
    deliver_ = std::move(deliver);
    run(folder, subfolders);
    deliver_ = {};
}

std::vector<FolderEntry> FolderScan::sortedEntries(const std::string& folder) const {
    std::vector<FolderEntry> entries = listFolder(folder);
    if (!hidden_) std::erase_if(entries, [](const FolderEntry& entry) { return entry.isHidden; });
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
        return std::is_lt(compareNatural(a.name, b.name));
    });
    return entries;
}

// `folder` ends in a separator; it is lengthened and cut back while subfolders are visited.
void FolderScan::collect(std::string& folder, bool subfolders, bool insideLink) {
    const std::vector<FolderEntry> entries = sortedEntries(folder);
    if (entries.empty() && !isReadableFolder(folder)) {
        unread_.push_back(folder.substr(0, folder.size() - 1));
    }
    for (const FolderEntry& entry : entries) {
        if (!subfolders || !entry.isFolder) continue;
        collectSubfolder(folder, entry, insideLink);
        progress_.pumpMessages();
        if (isCancelled()) break;
    }
    for (const FolderEntry& entry : entries) {
        if (entry.isFolder) continue;
        paths_.append(folder).append(entry.name) += '\0';
        ++count_;
        if (subfolders) progress_.report(entry.name);
    }
    if (!deliver_) return;
    deliver_(paths_);
    paths_.clear();
}

void FolderScan::collectSubfolder(std::string& folder, const FolderEntry& entry, bool insideLink) {
    const std::size_t length = folder.size();
    folder.append(entry.name) += separatorOf(nativePathStyle());
    const bool linked = insideLink || entry.isLink;
    const auto id = folderId(folder);
    // A mounted folder may lie in itself without being marked as a link.
    if (id && !isAncestor(*id) && (!linked || enterLink(folder))) {
        ancestors_.push_back(*id);
        collect(folder, true, linked);
        ancestors_.pop_back();
    }
    folder.resize(length);
}

bool FolderScan::isAncestor(const FileId& id) const {
    return std::find(ancestors_.begin(), ancestors_.end(), id) != ancestors_.end();
}

// Whether a folder behind a link is to be taken: not what the scan meets by its own path, and
// nothing twice.
bool FolderScan::enterLink(const std::string& folder) {
    const std::string target = canonicalPath(folder);
    if (target.empty() || liesIn(target, root_, nativePathStyle())) return false;
    return followed_.insert(target).second;
}

}  // namespace tavlo
