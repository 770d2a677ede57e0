#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <fstream>

#include "platform/DriveKind.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
bool saysRemovable(const std::string& device) {
    return std::ifstream(device + "/removable").get() == '1';
}
}  // namespace

bool isRemovableDrive(const std::string& path) {
    struct stat status {};
    std::string place = absolutePath(path);
    while (::stat(place.c_str(), &status) != 0) {
        if (place.size() <= 1) return false;
        place.resize(std::max<std::size_t>(place.rfind('/'), 1));
    }
    const std::string device = "/sys/dev/block/" + std::to_string(major(status.st_dev)) + ":" +
                               std::to_string(minor(status.st_dev));
    // A partition leaves it to the whole device, in whose folder its own lies.
    return saysRemovable(device) || saysRemovable(device + "/..");
}

}  // namespace tavlo
