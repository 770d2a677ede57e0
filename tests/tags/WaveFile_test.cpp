#include "tags/WaveFile.h"

#include <gtest/gtest.h>

#include "support/TagBytes.h"

namespace tavlo {
namespace {
using namespace test;

std::string chunk(std::string_view id, std::uint64_t size, std::string_view data) {
    return std::string(id).append(littleEndian(size, 4)).append(data);
}

std::string format(std::uint32_t rate) {
    return "fmt \x10\0\0\0\1\0\2\0\xD0\7\0\0"s + littleEndian(rate, 4) + "\4\0\x10\0"s;
}

// In seconds; -1 where it is none.
int lengthOf(const std::string& chunks, const std::string& head = "RIFF\0\0\0\0WAVE"s) {
    const std::string bytes = head + chunks;
    File file;
    file.openMemory(bytesOf(bytes));
    ID3tag record;
    if (!readWave(file, record)) return -1;
    EXPECT_EQ(std::tie(record.Channels, record.SampleRate, record.BitsPerSample, record.Bitrate),
              std::tuple(2, 2000, 16, 64));
    return record.Seconds;
}

TEST(WaveFile, LengthIsThatOfTheSound) {
    const std::string head = format(8000), bytes(24001, '\0'), odd = chunk("LIST", 3, "abc\0"s);
    EXPECT_EQ(lengthOf(odd + head + odd + chunk("data", 24001, bytes)), 3);
    EXPECT_EQ(lengthOf(chunk("data", 0, "") + head + chunk("data", 15999, bytes)), 1);
    // A recorder that was killed leaves a size that is too large, or none.
    EXPECT_EQ(lengthOf(head + chunk("data", 0, bytes)), 3);
    EXPECT_EQ(lengthOf(head + chunk("data", 0xFFFFFFFF, bytes)), 3);
    const std::string whole = head + chunk("data", 24001, "");
    for (std::size_t n = 0; n <= whole.size(); ++n) {
        EXPECT_EQ(lengthOf(whole.substr(0, n)), n < whole.size() ? -1 : 0) << n;
    }
    EXPECT_EQ(lengthOf(format(0) + chunk("data", 24001, bytes)), -1);
    EXPECT_EQ(lengthOf(chunk("junk", 0xFFFFFFFF, "") + whole), -1);
    EXPECT_EQ(lengthOf(whole, "RIFX\0\0\0\0WAVE"s), -1);
    EXPECT_EQ(lengthOf(whole, "RIFF\0\0\0\0AVI "s), -1);
}

}  // namespace
}  // namespace tavlo
