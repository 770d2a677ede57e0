#include "platform/DriveKind.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(DriveKind, NetworkPathsBeginWithAComputer) {
    const TempFolder folder;
    EXPECT_TRUE(isNetworkPath(R"(\\computer\folder)"));
    for (const char* path : {"", "\\", R"(\folder)", R"(C:\\folder)", "//folder"}) {
        EXPECT_FALSE(isNetworkPath(path)) << path;
    }
    for (const std::string& path : {folder.path(), folder.path("a/b/none"),
                                    std::string(R"(\\computer\folder)"), std::string()}) {
        EXPECT_FALSE(isRemovableDrive(path)) << path;
    }
}

}  // namespace
}  // namespace tavlo::test
