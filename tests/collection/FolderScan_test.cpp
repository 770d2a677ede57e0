#include "collection/FolderScan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/TempFolder.h"
#include "support/TestProgress.h"

namespace tavlo::test {
namespace {

class DeliveringScan : public testing::Test {
 protected:
    DeliveringScan() {
        for (const char* name : {"1.mp3", "2.mp3", "a/3.mp3", "a/b/4.mp3", "a/b/5.mp3", "c/6.mp3"})
            folder.write(name, "x");
        folder.makeFolder("empty");
    }
    // What came, a folder each; the scan is cancelled when it had so many.
    std::vector<std::string> scan(bool subfolders, std::size_t cancelAt = 100) {
        std::vector<std::string> heaps;
        FolderScan run(progress, progress.cancel, false);
        run.run(folder.path(), subfolders, [&](std::string_view paths) {
            if (!paths.empty()) heaps.emplace_back(paths);
            if (heaps.size() == cancelAt) progress.cancel = true;
        });
        std::size_t found = 0;
        for (const std::string& heap : heaps) {
            found += static_cast<std::size_t>(std::ranges::count(heap, '\0'));
        }
        EXPECT_EQ(run.count(), found);
        return heaps;
    }
    [[nodiscard]] std::string heap(const std::vector<std::string>& names) const {
        std::string paths;
        for (const std::string& name : names) paths += folder.path(name) + '\0';
        return paths;
    }

    const TempFolder folder;
    TestProgress progress;
};

TEST_F(DeliveringScan, HandsOverFolderByFolderWhatAWholeScanGives) {
    const std::vector<std::string> heaps = scan(true);
    EXPECT_EQ(heaps, (std::vector<std::string>{heap({"a/b/4.mp3", "a/b/5.mp3"}), heap({"a/3.mp3"}),
                                               heap({"c/6.mp3"}), heap({"1.mp3", "2.mp3"})}));
    FolderScan whole(progress, progress.cancel, false);
    std::string joined;
    for (const std::string& each : heaps) joined += each;
    EXPECT_EQ(whole.run(folder.path(), true), joined);
    EXPECT_EQ(scan(false), std::vector<std::string>{heap({"1.mp3", "2.mp3"})});
}

TEST_F(DeliveringScan, CancelledScanVisitsNoFurtherFolder) {
    const auto heaps = scan(true, 1);
    EXPECT_EQ(heaps.front(), heap({"a/b/4.mp3", "a/b/5.mp3"}));
    EXPECT_EQ(std::ranges::count(heaps, heap({"c/6.mp3"})), 0);
}

TEST_F(DeliveringScan, FolderThatIsNotThereIsTold) {
    FolderScan run(progress, progress.cancel, false);
    bool hasPaths = false;
    run.run(folder.path("none"), true, [&](std::string_view paths) { hasPaths |= !paths.empty(); });
    EXPECT_FALSE(hasPaths);
    EXPECT_EQ(run.unreadFolders(), std::vector<std::string>{folder.path("none")});
}

}  // namespace
}  // namespace tavlo::test
