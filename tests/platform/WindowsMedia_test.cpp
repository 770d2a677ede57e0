#include "platform/WindowsMedia.h"

#include <gtest/gtest.h>

namespace tavlo::test {
namespace {

TEST(WindowsMedia, IsUnavailableWhereItIsNotInstalled) {
    EXPECT_EQ(encodeWindowsMedia("a.wav", "a.wma", "a.prx", "tool", "1", [] { return true; }),
              MediaEncode::Unavailable);
}

}  // namespace
}  // namespace tavlo::test
