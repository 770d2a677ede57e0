#include "collection/FilesIn.h"

#include <algorithm>
#include <iterator>

#include "core/PathText.h"
#include "platform/FileSystem.h"

namespace tavlo {

std::vector<std::string> filesIn(const std::string& folder, bool subfolders,
                                 const std::function<bool(std::string_view name)>& isWanted) {
    std::vector<std::string> files;
    std::vector<std::string> below;
    for (const FolderEntry& entry : listFolder(folder)) {
        std::string path = joinPath(folder, entry.name, nativePathStyle());
        if (entry.isFolder) {
            if (subfolders && !entry.isLink) below.push_back(std::move(path));
        } else if (isWanted(entry.name)) {
            files.push_back(std::move(path));
        }
    }
    std::sort(files.begin(), files.end());
    std::sort(below.begin(), below.end());
    for (const std::string& subfolder : below) {
        std::ranges::move(filesIn(subfolder, true, isWanted), std::back_inserter(files));
    }
    return files;
}

}  // namespace tavlo
