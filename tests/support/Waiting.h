#pragma once

#include <chrono>
#include <thread>

namespace tavlo::test {

/// Asks again and again, as fast as it can; false when it did not come true in a time far above
/// what anything here takes.
template <typename Condition>
bool soon(Condition condition) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (Clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

}  // namespace tavlo::test
