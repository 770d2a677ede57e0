#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/Progress.h"

namespace tavlo::test {

/// Keeps what is told; sets the cancel flag at the `cancelAt`th step.
class TestProgress : public Progress {
 public:
    void setRange(std::size_t count) override { ranges.push_back(count); }
    void step() override {
        if (++steps == cancelAt) cancel = true;
    }
    void report(std::string_view name) override { reported.emplace_back(name); }
    void pumpMessages() override {}

    CancelFlag cancel{false};
    std::vector<std::size_t> ranges;
    std::vector<std::string> reported;
    std::size_t steps = 0, cancelAt = 0;
};

}  // namespace tavlo::test
