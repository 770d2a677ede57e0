#include <gtest/gtest.h>
#include <sys/stat.h>

#include "convert/WorkFolder.h"
#include "platform/FileSystem.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(WorkFolderPosix, NobodyElseGetsIn) {
    const TempFolder parent;
    const mode_t before = ::umask(0);
    const WorkFolder one(parent.path()), other(parent.path());
    ::umask(before);
    struct stat status {};
    ASSERT_EQ(::stat(one.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    // Two of 60 random bits differ in more than a number that counts up.
    std::size_t same = 0;
    ASSERT_EQ(one.path().size(), other.path().size());
    for (std::size_t i = one.path().size() - 12; i < one.path().size(); ++i) {
        same += one.path()[i] == other.path()[i] ? 1 : 0;
    }
    EXPECT_LT(same, 6U) << one.path() << " " << other.path();
}

TEST(WorkFolderPosix, NothingThatIsThereIsTaken) {
    const TempFolder parent;
    parent.makeFolder("folder");
    std::filesystem::create_symlink("folder", parent.path("link"));
    std::filesystem::create_symlink("none", parent.path("dangling"));
    for (const char* name : {"folder", "link", "dangling"}) {
        EXPECT_EQ(createOwnFolder(parent.path(name)), Created::Exists) << name;
    }
}

}  // namespace
}  // namespace tavlo::test
