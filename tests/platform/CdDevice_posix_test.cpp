#include <gtest/gtest.h>

#include <filesystem>

#include "platform/CdDevice.h"
#include "platform/CdDrive.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(CdDevice, KernelTellsDrivesFromOtherDevices) {
    const TempFolder root;
    root.write("sys/dev/block/8:0/device/type", "0\n");  // a disk
    root.write("sys/dev/block/254:0/uevent", "MAJOR=254\nDEVNAME=vda\n");
    root.write("sys/dev/block/254:16/uevent", "MAJOR=254\nDEVNAME=gdrom\n");
    root.write("sys/dev/block/254:32/uevent", "DEVTYPE=disk\n");
    root.write("sys/dev/char/21:0/device/type", "0\n");
    root.write("sys/dev/char/21:1/device/type", "5\n");
    root.write("proc/sys/dev/cdrom/info",
               "CD-ROM information, Id: cdrom.c 3.20\n\ndrive name:\t\tsr0\tgdrom\n"
               "drive speed:\t\t24\tvda\n");
    const std::pair<DeviceNumber, bool> devices[] = {
        {{true, 11, 0}, true},   {{true, 8, 0}, false},    {{true, 254, 0}, false},
        {{true, 254, 16}, true}, {{true, 254, 32}, false}, {{true, 7, 0}, false},
        {{false, 21, 0}, false}, {{false, 21, 1}, true},   {{false, 21, 2}, false},
        {{false, 11, 0}, false}};
    for (const auto& [device, isDrive] : devices) {
        EXPECT_EQ(isCdDevice(device, root.path()), isDrive) << device.major << ":" << device.minor;
    }
}

// What the machine has: a disk, perhaps no more than a loop.
TEST(CdDevice, DisksAreNoDrives) {
    const TempFolder folder;
    const std::pair<std::string, DriveSort> paths[] = {
        {folder.path(), DriveSort::None},       {folder.write("file", "x"), DriveSort::None},
        {"/dev/null", DriveSort::None},         {"/dev/none", DriveSort::CdDrive},
        {"/dev/none/none", DriveSort::None},    {"D:", DriveSort::CdDrive},
        {folder.path("none"), DriveSort::None}, {"", DriveSort::None}};
    for (const auto& [path, sort] : paths) EXPECT_EQ(driveSort(path), sort) << path;
    for (const std::string name : {"vda", "sda", "nvme0n1", "loop0", "zram0"}) {
        const std::string device = "/dev/" + name;
        if (!std::filesystem::is_block_file(device)) continue;
        EXPECT_EQ(driveSort(device), DriveSort::OtherDevice) << device;
    }
}

}  // namespace
}  // namespace tavlo::test
