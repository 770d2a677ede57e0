#pragma once

#include "core/Progress.h"
#include "core/TextSink.h"

namespace tavlo {

/// What the work measured tells goes nowhere.
class NoSink : public TextSink {
 public:
    bool write(std::string_view) override { return true; }
};

class NoProgress : public Progress {
 public:
    void setRange(std::size_t) override {}
    void step() override {}
    void report(std::string_view) override {}
    void pumpMessages() override {}
};

}  // namespace tavlo
