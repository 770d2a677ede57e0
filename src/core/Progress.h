#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>

namespace tavlo {

/// The one flag that every scan and batch loop polls after each file; set by a cancel button or
/// Ctrl+C.
using CancelFlag = std::atomic<bool>;

/// Where long work tells how far it is; implemented by the console and by windows.
class Progress {
 public:
    virtual ~Progress() = default;

    /// Starts a display from 1 to `count` steps; 0 takes the display away.
    virtual void setRange(std::size_t count) = 0;

    /// One file is done.
    virtual void step() = 0;

    /// The file being worked on; cheap enough to be called for every file.
    virtual void report(std::string_view name) = 0;

    /// Lets pending window messages run.
    virtual void pumpMessages() = 0;
};

}  // namespace tavlo
