#include "platform/File.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/TagBytes.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

std::string pattern(std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * 31 + i / 251);
    return bytes;
}

std::string viewed(File& file, std::uint64_t offset, std::size_t count) {
    const Bytes bytes = file.view(offset, count);
    return {bytes.begin(), bytes.end()};
}

// Reads around every edge of the file and of its windows, forwards and backwards.
void expectAllBytes(File& file, const std::string& bytes) {
    std::vector<std::size_t> edges{0, 1, 127, 128, 299, 300, 301, 1024, 4095, 4096, 4097};
    for (const std::size_t back : {0U, 1U, 128U, 300U, 301U, 4096U}) {
        if (back <= bytes.size()) edges.push_back(bytes.size() - back);
    }
    edges.insert(edges.end(), edges.rbegin(), edges.rend());
    for (const std::size_t offset : edges) {
        for (const std::size_t count : {0U, 1U, 3U, 128U, 300U, 1025U, 5000U}) {
            const std::string expected =
                offset < bytes.size() ? bytes.substr(offset, count) : std::string();
            ASSERT_EQ(viewed(file, offset, count), expected) << offset << ' ' << count;
        }
    }
}

TEST(File, EveryByteIsSeenThroughTheWindows) {
    const TempFolder folder;
    for (const std::size_t size :
         {0U, 1U, 127U, 299U, 300U, 301U, 4095U, 4096U, 4097U, 4396U, 9000U}) {
        const std::string bytes = pattern(size);
        const std::string path = folder.write("a.bin", bytes);
        File file;
        ASSERT_TRUE(file.open(path, Access::Read));
        EXPECT_EQ(file.size(), size);
        expectAllBytes(file, bytes);
        File memory;
        memory.openMemory(bytesOf(bytes));
        EXPECT_EQ(memory.size(), size);
        expectAllBytes(memory, bytes);
    }
}

TEST(File, ViewsBeyondTheEndAreEmpty) {
    const TempFolder folder;
    constexpr auto far = std::numeric_limits<std::uint64_t>::max();
    const std::string bytes = pattern(5000);
    File file, memory;
    ASSERT_TRUE(file.open(folder.write("a.bin", bytes), Access::Read));
    memory.openMemory(bytesOf(bytes));
    for (File* each : {&file, &memory}) {
        for (const std::uint64_t offset :
             {std::uint64_t{5000}, std::uint64_t{5001}, far - 1, far}) {
            EXPECT_TRUE(each->view(offset, 10).empty()) << offset;
        }
        EXPECT_EQ(viewed(*each, 4990, std::numeric_limits<std::size_t>::max()), bytes.substr(4990));
    }
}

TEST(File, OnlyRegularFilesAreOpened) {
    const TempFolder folder;
    File file;
    EXPECT_FALSE(file.open(folder.path("none"), Access::Read));
    EXPECT_FALSE(file.open(folder.path(), Access::Read));
    EXPECT_FALSE(file.open(folder.path("none"), Access::ReadWrite));
    EXPECT_FALSE(std::filesystem::exists(folder.path("none")));
    EXPECT_TRUE(file.open(folder.write("Пёс 日本.bin", "x"), Access::Read));
}

TEST(File, TruncationNeedsAWritableFile) {
    const TempFolder folder;
    const std::string bytes = pattern(5000);
    const std::string path = folder.write("a.bin", bytes);
    File file;
    ASSERT_TRUE(file.open(path, Access::Read));
    EXPECT_FALSE(file.isWritable());
    EXPECT_FALSE(file.truncate(10));
    EXPECT_EQ(file.size(), 5000U);
    file.close();
    ASSERT_TRUE(file.open(path, Access::ReadWrite));
    EXPECT_TRUE(file.isWritable());
    expectAllBytes(file, bytes);
    EXPECT_TRUE(file.truncate(4500));
    EXPECT_EQ(file.size(), 4500U);
    expectAllBytes(file, bytes.substr(0, 4500));
    file.close();
    EXPECT_EQ(folder.read("a.bin"), bytes.substr(0, 4500));
}

TEST(File, OneObjectOpensOneFileAfterAnother) {
    const TempFolder folder;
    const std::string first = pattern(6000), second(6000, 's');
    const std::string a = folder.write("a", first), b = folder.write("b", second);
    File file;
    ASSERT_TRUE(file.open(a, Access::Read));
    expectAllBytes(file, first);
    file.close();
    ASSERT_TRUE(file.open(b, Access::Read));
    expectAllBytes(file, second);
}

TEST(File, WholeFilesAreReadUpToALimit) {
    const TempFolder folder;
    const std::string bytes = pattern(5000);
    const std::string path = folder.write("a.bin", bytes);
    EXPECT_EQ(readFile(path, 5000), bytes);
    EXPECT_EQ(readFile(path, 4999), std::nullopt);
    EXPECT_EQ(readFile(folder.write("empty", ""), 10), "");
    EXPECT_EQ(readFile(folder.path("none"), 10), std::nullopt);
}

}  // namespace
}  // namespace tavlo::test
