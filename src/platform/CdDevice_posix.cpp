#include <fstream>
#include <sstream>

#include "platform/CdDevice.h"

namespace tavlo {

namespace {
// What follows `begin` in the first line that begins so.
std::string lineAfter(const std::string& path, const std::string& begin) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(begin)) return line.substr(begin.size());
    }
    return {};
}

// The drives of all drivers, SCSI or not, stand in one list: "drive name:  sr1  sr0".
bool isListed(const std::string& name, const std::string& root) {
    std::istringstream names(lineAfter(root + "/proc/sys/dev/cdrom/info", "drive name:"));
    for (std::string one; names >> one;) {
        if (one == name) return true;
    }
    return false;
}
}  // namespace

bool isCdDevice(const DeviceNumber& device, const std::string& root) {
    constexpr unsigned scsiCdMajor = 11;
    if (device.isBlock && device.major == scsiCdMajor) return true;
    const std::string folder = root + "/sys/dev/" + (device.isBlock ? "block/" : "char/") +
                               std::to_string(device.major) + ":" + std::to_string(device.minor);
    const std::string scsiType = lineAfter(folder + "/device/type", "");
    return scsiType == "5" ||
           (device.isBlock && isListed(lineAfter(folder + "/uevent", "DEVNAME="), root));
}

}  // namespace tavlo
