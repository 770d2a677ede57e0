#pragma once

#include <chrono>
#include <string>

#include "core/Progress.h"
#include "core/TextSink.h"

namespace tavlo {

/// One line "12/340 name" on a terminal, drawn anew at most ten times a second. Messages written
/// through it go above that line.
class ConsoleProgress : public Progress, public TextSink {
 public:
    using Clock = std::chrono::steady_clock;

    /// Draws on `terminal`; with 0 columns it only passes messages on.
    ConsoleProgress(TextSink& terminal, int columns) : terminal_(terminal), columns_(columns) {}
    ~ConsoleProgress() override { erase(); }
    ConsoleProgress(const ConsoleProgress&) = delete;
    ConsoleProgress& operator=(const ConsoleProgress&) = delete;

    void setRange(std::size_t count) override;
    void step() override { ++done_; }
    void report(std::string_view name) override { reportAt(name, Clock::now()); }
    void pumpMessages() override {}

    bool write(std::string_view text) override;

    /// `report` at a given time.
    void reportAt(std::string_view name, Clock::time_point now);

 private:
    void erase();
    void draw(std::string_view name);

    TextSink& terminal_;
    int columns_;
    std::size_t count_ = 0;
    std::size_t done_ = 0;
    std::size_t drawn_ = 0;  // characters on the line
    Clock::time_point nextDraw_{};
};

}  // namespace tavlo
