#include "platform/SystemOpen.h"

#include <gtest/gtest.h>

#include "support/ChildProgram.h"
#include "support/TempFolder.h"

namespace tavlo::test {
namespace {

TEST(SystemOpen, AForgottenProgramGetsItsArgumentsAndRuns) {
    const TempFolder folder;
    const std::string made = folder.path("made by it");
    EXPECT_TRUE(startAndForget(TAVLO_CHILD, "child --does=garbage -o " + quotedArgument(made)));
    EXPECT_TRUE(comesTrue([&] { return folder.read("made by it") == "garbage"; }));
}

TEST(SystemOpen, WhatIsNotThereIsNotStarted) {
    const TempFolder folder;
    EXPECT_FALSE(startAndForget(folder.path("none.exe"), "none.exe"));
    EXPECT_FALSE(openWithSystem(folder.path("none.mp3")));
}

}  // namespace
}  // namespace tavlo::test
