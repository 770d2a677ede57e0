#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <string_view>

#include "core/ExternalTools.h"
#include "platform/PriorityClass.h"

namespace tavlo {

/// What a person may change while programs run, from any thread.
struct RunControl {
    std::atomic<PriorityClass> priority{PriorityClass::Normal};
    std::atomic<bool> showsWindows{false};
    std::atomic<bool> endsNow{false};  ///< the running program is ended at once
};

/// Runs external programs one after the other.
class ProcessRunner {
 public:
    /// What happens at least ten times a second while a program runs; it is told the program.
    using Tick = std::function<void(std::string_view program)>;

    ProcessRunner(ToolPlaces places, const RunControl& control, Tick tick = {})
        : places_(std::move(places)), control_(control), tick_(std::move(tick)) {}

    /// Starts a command line, whose first word is looked for in the program's folder and in PATH,
    /// and waits for its end; in between, changes of `RunControl` are applied to it. It runs in
    /// `folder`, or where this program does. False at once when it cannot be started. How it ended
    /// is not looked at: what it made tells.
    bool RunProcessAndWait(const std::string& commandLine, bool showWindow,
                           PriorityClass priorityClass, const std::string& folder = {});

    /// The last of what the program said.
    [[nodiscard]] const std::string& output() const { return output_; }
    /// Whether a program such as "lame.exe" could be started.
    [[nodiscard]] bool hasTool(std::string_view tool) const;

 private:
    const ToolPlaces places_;
    const RunControl& control_;
    const Tick tick_;
    std::string output_;
};

/// The first word of a command line: "lame.exe".
std::string programOf(std::string_view commandLine);

}  // namespace tavlo
