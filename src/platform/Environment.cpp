#include "platform/Environment.h"

#include "platform/FileSystem.h"

namespace tavlo {

std::string stateFolder(const std::string& name) {
    const std::string folder = settingsFolder();
    return folder.empty() ? folder : folder + nativeSeparator() + name;
}

}  // namespace tavlo
