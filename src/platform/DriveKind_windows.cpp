#include <windows.h>

#include "platform/DriveKind.h"
#include "platform/FileSystem.h"
#include "platform/WidePath.h"

namespace tavlo {

bool isRemovableDrive(const std::string& path) {
    const std::string full = absolutePath(path);
    if (full.size() < 2 || full[1] != ':') return false;
    return ::GetDriveTypeW(plainWidePath(full.substr(0, 2) + "\\").c_str()) == DRIVE_REMOVABLE;
}

}  // namespace tavlo
