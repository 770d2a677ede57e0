#include "collection/FilesIn.h"

#include <algorithm>
#include <iterator>

#include "core/PathText.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
using NameTest = std::function<bool(std::string_view name)>;

// A folder that links lead to is taken once.
void addFiles(const std::string& folder, bool subfolders, const NameTest& isWanted,
              std::vector<FileId>& seen, std::vector<std::string>& files) {
    if (const auto id = subfolders ? folderId(folder) : std::nullopt) {
        if (std::ranges::find(seen, *id) != seen.end()) return;
        seen.push_back(*id);
    }
    std::vector<std::string> own;
    std::vector<std::string> below;
    for (const FolderEntry& entry : listFolder(folder)) {
        std::string path = joinPath(folder, entry.name, nativePathStyle());
        if (entry.isFolder) {
            if (subfolders) below.push_back(std::move(path));
        } else if (isWanted(entry.name)) {
            own.push_back(std::move(path));
        }
    }
    std::sort(own.begin(), own.end());
    std::sort(below.begin(), below.end());
    std::ranges::move(own, std::back_inserter(files));
    for (const std::string& subfolder : below) {
        addFiles(subfolder, true, isWanted, seen, files);
    }
}
}  // namespace

std::vector<std::string> filesIn(const std::string& folder, bool subfolders,
                                 const NameTest& isWanted) {
    std::vector<FileId> seen;
    std::vector<std::string> files;
    addFiles(folder, subfolders, isWanted, seen, files);
    return files;
}

}  // namespace tavlo
