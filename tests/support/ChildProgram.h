#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "platform/Process.h"

namespace tavlo::test {

/// Far above what anything here takes.
constexpr int longWait = 20'000;

/// Starts the stand-in program; see support/child/child.cpp for what it can do.
inline std::unique_ptr<Process> startChild(const std::string& does, const std::string& arguments,
                                           ProcessStart start = {}) {
    start.program = TAVLO_CHILD;
    start.commandLine = "child \"--does=" + does + "\" " + arguments;
    return startProcess(start);
}

/// What it said until its end.
inline std::string outputOf(const std::string& does, const std::string& arguments = "") {
    const auto child = startChild(does, arguments);
    if (child == nullptr) return "not started";
    return child->waitFor(longWait) ? child->output() : "not ended";
}

/// Asks again and again; false when it did not come true.
template <typename Condition>
bool comesTrue(Condition condition) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(longWait);
    while (!condition()) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

/// Until it has said its first word it may not be wholly there, nor what the system puts beside it.
inline bool saysSomething(Process& child) {
    return comesTrue([&] { return child.waitFor(1) || !child.output().empty(); });
}

}  // namespace tavlo::test
