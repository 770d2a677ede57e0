#include "convert/ProcessRunner.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/ConversionDesk.h"

namespace tavlo::test {
namespace {

constexpr PriorityClass normal = PriorityClass::Normal;

TEST(ProcessRunner, WhatCannotBeStartedIsTold) {
    ConversionDesk desk({}, "lame", "print=3 exit=1");
    desk.folder.write("tools/" + toolFileName("mac.exe", nativePathStyle()), "text");
    EXPECT_TRUE(desk.runner.RunProcessAndWait("lame.exe x", false, normal));
    EXPECT_EQ(desk.runner.output(), "abc");
    EXPECT_FALSE(desk.runner.RunProcessAndWait("oggenc.exe x", false, normal));
    EXPECT_FALSE(desk.runner.RunProcessAndWait("mac.exe x", false, normal));
    EXPECT_FALSE(desk.runner.RunProcessAndWait("lame.exe", false, normal, desk.folder.path("no")));
    EXPECT_EQ(desk.runner.output(), "");
    EXPECT_TRUE(desk.runner.hasTool("lame.exe") && !desk.runner.hasTool("oggenc.exe"));
}

TEST(ProcessRunner, ChangesReachARunningProgramInTime) {
    ConversionDesk desk({}, "lame", "await priority");
    int ticks = 0;
    std::chrono::steady_clock::time_point begin;
    desk.tick = [&] {
        if (desk.told().empty()) return;
        desk.control.priority = PriorityClass::Idle;
        desk.control.showsWindows = true;
        if (++ticks == 1) begin = std::chrono::steady_clock::now();
        if (ticks == 5) desk.folder.write("gate", "");
    };
    const std::string line = "lame.exe \"" + desk.folder.path("gate") + "\"";
    EXPECT_TRUE(desk.runner.RunProcessAndWait(line, false, normal));
    EXPECT_EQ(desk.runner.output(), "idle");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
}

}  // namespace
}  // namespace tavlo::test
