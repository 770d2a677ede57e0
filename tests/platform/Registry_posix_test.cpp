#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "platform/Registry.h"
#include "support/TestRegistry.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

const RegistryKey key{0x80000001, "K"};

bool stores(const std::string& file) {
    return Registry(file).write(key, "x", RegistryValue(1U)) && Registry(file).read(key, "x");
}

TEST(RegistryPosix, NobodyElsesLinkChoosesWhatIsWritten) {
    const TempFolder folder;
    folder.write("victim", "mine");
    fs::create_symlink("real.txt", folder.path("own"));
    EXPECT_TRUE(stores(folder.path("own")));
    EXPECT_TRUE(fs::is_symlink(folder.path("own")));
    for (const char* beside : {"settings.tmp", "settings.lock"}) {
        fs::remove(folder.path(beside));
        fs::create_symlink("victim", folder.path(beside));
        stores(folder.path("settings"));
        EXPECT_EQ(folder.read("victim"), "mine") << beside;
    }
    fs::create_symlink("victim", folder.path("planted"));
    if (::lchown(folder.path("planted").c_str(), 65534, 65534) != 0) return;
    EXPECT_FALSE(stores(folder.path("planted")));
    EXPECT_EQ(folder.read("victim"), "mine");
}

}  // namespace
}  // namespace tavlo::test
