#include "platform/Console.h"

#include <gtest/gtest.h>

#include "platform/Environment.h"

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

TEST(Environment, AMissingVariableIsNone) {
    EXPECT_FALSE(environmentVariable("TAVLO_NO_SUCH_VARIABLE").has_value());
    EXPECT_FALSE(environmentVariable("PATH").value_or("").empty());
}

TEST(Environment, FoldersAreKnownAndHaveNoSeparatorAtTheEnd) {
    for (const std::string& folder : {programFolder(), currentFolder()}) {
        ASSERT_FALSE(folder.empty());
        EXPECT_EQ(std::string("/\\").find(folder.back()), std::string::npos) << folder;
    }
}

}  // namespace
}  // namespace tavlo
