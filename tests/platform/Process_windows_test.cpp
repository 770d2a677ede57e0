#include <gtest/gtest.h>
#include <windows.h>

#include "platform/WidePath.h"
#include "support/ChildProgram.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(ProcessOnWindows, OpenFilesAreNotPassedOn) {
    const TempFolder folder;
    const std::string path = folder.write("held", "");
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const HANDLE held = ::CreateFileW(widePath(path).c_str(), GENERIC_READ, 0, &inherited,
                                      OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    const auto child = startChild("print=1 await", folder.path("gate"));
    ASSERT_NE(child, nullptr);
    ::CloseHandle(held);
    EXPECT_TRUE(saysSomething(*child));
    EXPECT_TRUE(::DeleteFileW(widePath(path).c_str()));
    child->kill();
    EXPECT_TRUE(child->waitFor(longWait));
}

}  // namespace
}  // namespace tavlo::test
