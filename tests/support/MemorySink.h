#pragma once

#include <string>

#include "core/TextSink.h"

namespace tavlo::test {

/// Keeps what is written; refuses everything once `full` is set.
class MemorySink : public TextSink {
 public:
    bool write(std::string_view written) override {
        if (full) return false;
        text += written;
        return true;
    }

    std::string text;
    bool full = false;
};

}  // namespace tavlo::test
