#include "platform/Rescue.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

const std::string before = std::string(9000, 'o');
const std::string after = std::string(4096, 'n') + std::string(4904, 'N');

// A song on the disk and the rescue file of a run that was killed while it wrote it.
class RescueOnDisk : public testing::Test {
 protected:
    const TempFolder folder;
    const std::string song = folder.write("music/song", before);
    const std::string rescues = folder.path("rescue");

    // Gives the rescue file as it is at work.
    std::unique_ptr<Rescue> made(const std::string& path) const {
        auto rescue = std::make_unique<Rescue>(systemCalls());
        const auto status = systemCalls().status(song);
        SavedFile saved{path, status->id, status->modified, before.size(), after.size(), {}};
        saved.runs.push_back({100, after.size() - 100, 0});
        const auto source = [&](Rescue::Side side, std::uint64_t at, std::uint8_t* to,
                                std::size_t count) {
            const std::string& bytes = side == Rescue::Side::Old ? before : after;
            std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), count, to);
            return true;
        };
        EXPECT_TRUE(rescue->create(rescues) && rescue->save(saved, source) && rescue->seal());
        return rescue;
    }
    void killed(const std::string& path) const { made(path)->keep(); }
    void write(const std::string& bytes) const { folder.write("music/song", bytes); }
    [[nodiscard]] std::vector<std::string> left() const {
        std::vector<std::string> names = systemCalls().names(rescues);
        std::ranges::sort(names);
        return names;
    }
    using Names = std::vector<std::string>;
};

TEST_F(RescueOnDisk, HalfAFileIsPutBack) {
    struct Row {
        const char* name;
        std::string now;
        std::string then;
        std::size_t putBack;
        Names left;
    };
    const std::string started = before.substr(0, 100);
    const std::string half = started + after.substr(100, 3996) + before.substr(4096);
    const std::string whole = started + after.substr(100);
    std::string foreign = half;
    foreign[5000] = '?';
    std::string outside = half;
    outside[50] = '?';
    std::string outsidePutBack = before;
    outsidePutBack[50] = '?';
    const Names none, aside{"1.rescue.kept"};
    for (const Row& row :
         {Row{"untouched", before, before, 0, none}, Row{"half", half, before, 1, none},
          Row{"written", whole, whole, 0, none},
          Row{"changed by others", foreign, foreign, 0, aside},
          Row{"cut by others", half.substr(0, 8000), half.substr(0, 8000), 0, aside},
          Row{"changed elsewhere", outside, outsidePutBack, 1, none}}) {
        SCOPED_TRACE(row.name);
        write(before);
        killed(song);
        write(row.now);
        const Recovered found = recoverFiles(rescues);
        EXPECT_EQ(found.putBack, row.putBack);
        EXPECT_EQ(found.setAside.size(), row.left.size());
        EXPECT_TRUE(folder.read("music/song") == row.then);
        EXPECT_EQ(left(), row.left);
        const Recovered again = recoverFiles(rescues);
        EXPECT_TRUE(again.putBack == 0 && again.setAside.empty()) << "told twice";
        for (const std::string& name : left()) std::filesystem::remove(rescues + "/" + name);
    }
}

TEST_F(RescueOnDisk, AnotherFileInItsPlaceIsLeftAlone) {
    const std::string half = before.substr(0, 4096) + after.substr(4096);
    killed(song);
    std::filesystem::rename(folder.write("music/copy", half), song);
    const Recovered found = recoverFiles(rescues);
    EXPECT_EQ(found.putBack, 0U);
    EXPECT_EQ(found.setAside, Names{folder.path("rescue/1.rescue.kept")});
    EXPECT_TRUE(folder.read("music/song") == half);
}

TEST_F(RescueOnDisk, AFileThatIsNotThereNowIsKeptFor) {
    killed(folder.path("gone/song"));
    EXPECT_TRUE(recoverFiles(rescues).setAside.empty());
    EXPECT_EQ(left(), Names{"1.rescue"});
    std::filesystem::remove(folder.path("rescue/1.rescue"));
    killed(folder.path("music/deleted"));
    EXPECT_EQ(recoverFiles(rescues).setAside.size(), 1U);
    EXPECT_EQ(left(), Names{"1.rescue.kept"});
}

TEST_F(RescueOnDisk, ARunThatIsAtWorkIsLeftAlone) {
    const std::string half = before.substr(0, 4096) + after.substr(4096);
    auto atWork = made(song);
    write(half);
    EXPECT_EQ(recoverFiles(rescues).putBack, 0U);
    EXPECT_TRUE(folder.read("music/song") == half);
    atWork->keep();
    atWork.reset();
    EXPECT_EQ(recoverFiles(rescues).putBack, 1U);
    EXPECT_TRUE(folder.read("music/song") == before);
}

// Whatever of a rescue file came to the disk, no song is touched by what is not all there.
TEST_F(RescueOnDisk, ATornRescueFileIsNone) {
    const std::string half = before.substr(0, 4096) + after.substr(4096);
    killed(song);
    write(half);
    const std::string whole = folder.read("rescue/1.rescue");
    const auto torn = [&](std::size_t size, std::size_t flipped) {
        std::string bytes = whole.substr(0, size);
        if (flipped < size) bytes[flipped] = static_cast<char>(bytes[flipped] ^ 1);
        return bytes;
    };
    const auto check = [&](const std::string& bytes) {
        FileStatus status;
        const FileHandle file =
            systemCalls().open(folder.path("rescue/1.rescue"), Access::Own, status);
        ASSERT_NE(file, noFile);
        systemCalls().truncate(file, 0);
        systemCalls().write(file, 0, bytesOfText(bytes));
        systemCalls().close(file);
        EXPECT_EQ(recoverFiles(rescues).putBack, 0U);
        EXPECT_TRUE(folder.read("music/song") == half);
        EXPECT_TRUE(left().empty());
        write(before);
        killed(song);
        write(half);
    };
    for (std::size_t size = 0; size < whole.size(); size += 997) check(torn(size, whole.size()));
    for (std::size_t at = 0; at < whole.size(); at += 1009) check(torn(whole.size(), at));
    check(torn(whole.size() - 1, whole.size()));
}

}  // namespace
}  // namespace tavlo::test
