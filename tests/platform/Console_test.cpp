#include "platform/Console.h"

#include <gtest/gtest.h>

namespace tavlo {
namespace {

TEST(Console, BytesReachAFileUnchanged) {
    const std::string text = "Привет\nline\xFF";
    testing::internal::CaptureStdout();
    const bool written = writeText(Stream::Output, text);
    const bool terminal = isTerminal(Stream::Output);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), text);
    EXPECT_TRUE(written);
    EXPECT_FALSE(terminal);
}

}  // namespace
}  // namespace tavlo
