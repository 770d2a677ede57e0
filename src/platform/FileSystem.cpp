#include "platform/FileSystem.h"

namespace tavlo {

bool createFolders(const std::string& path) {
    if (path.empty() || folderExists(path)) return true;
    const std::size_t separator = path.find_last_of(nativeSeparator());
    if (separator != std::string::npos && !createFolders(path.substr(0, separator))) return false;
    return createFolder(path) != Created::Failed;
}

}  // namespace tavlo
