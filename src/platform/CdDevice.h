#pragma once

#include <string>

namespace tavlo {

/// The numbers by which the kernel knows a device.
struct DeviceNumber {
    bool isBlock = false;  ///< otherwise it is read byte by byte
    unsigned major = 0, minor = 0;
};

/// Whether the kernel has a device as a drive for CDs, without opening it. `root` is the folder in
/// which its "sys" and "proc" lie.
bool isCdDevice(const DeviceNumber& device, const std::string& root = {});

}  // namespace tavlo
