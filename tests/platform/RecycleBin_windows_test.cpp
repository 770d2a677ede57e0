#include <gtest/gtest.h>

#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/RecycleBin.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(RecycleBinOnWindows, FileGoesAndWhatIsNotThereDoesNot) {
    const std::string bin = environmentVariable("TAVLO_TEST_BIN").value_or("");
    if (bin.empty()) GTEST_SKIP() << "only where the bin is none of the user's";
    const TempFolder folder;
    // A name that no earlier run put there.
    const std::string name = "Ж " + folder.path().substr(folder.path().rfind("tavlo-")) + ".mp3";
    EXPECT_TRUE(moveToRecycleBin(folder.write(name, "a")));
    EXPECT_FALSE(fileInfo(folder.path(name)));
    EXPECT_TRUE(fileInfo(bin + "\\Trash\\files\\" + name));
    EXPECT_FALSE(moveToRecycleBin(folder.path("none")));
    EXPECT_FALSE(moveToRecycleBin(R"(\\computer\folder\a.mp3)"));
}

}  // namespace
}  // namespace tavlo::test
