#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/PriorityClass.h"

namespace tavlo {

/// How another program is started.
struct ProcessStart {
    std::string program;      ///< full path of its file
    std::string commandLine;  ///< the whole line, the program's name first; by Windows' rules
    std::string folder = {};  ///< where it runs; empty: where this one does
    bool isShown = false;     ///< its windows, where the system has such
    PriorityClass priority = PriorityClass::Normal;
};

/// A program that was started. It is not ended when this object goes: as long as this process
/// lives, somebody goes on taking in what it says. One thread at a time may use an object.
class Process {
 public:
    Process() = default;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    virtual ~Process() = default;

    /// Waits so many milliseconds, taking in what the program says; true as soon as it has ended,
    /// whatever it started itself. It says nothing about how it ended.
    virtual bool waitFor(int milliseconds) = 0;
    virtual void setPriority(PriorityClass priority) = 0;
    /// Shows or hides its first window; without effect where the system cannot.
    virtual void setShown(bool isShown) = 0;
    /// Ends it at once; `waitFor` still has to say that it has ended.
    virtual void kill() = 0;
    /// The last of what it wrote to standard output and error, at most `mostOutput` bytes.
    [[nodiscard]] const std::string& output() const { return output_; }

    static constexpr std::size_t mostOutput = 16384;

 protected:
    /// The most that is taken in without a look at the program and the clock: more than a pipe
    /// holds.
    static constexpr std::size_t mostAtOnce = std::size_t{1} << 20U;

    void keepOutput(const char* bytes, std::size_t count) {
        output_.append(bytes, count);
        if (output_.size() > mostOutput) output_.erase(0, output_.size() - mostOutput);
    }

    /// Stays with a program that nobody waits for any more.
    static void leave(std::unique_ptr<Process> running);

 private:
    std::string output_;
};

/// Starts a program without a shell; nothing when it cannot be started. It gets no input, no open
/// file of this process, and not the Ctrl+C that is meant for this one.
std::unique_ptr<Process> startProcess(const ProcessStart& start);

/// The words of a command line by Windows' rules for programs: blanks part them, double quotes keep
/// blanks, a backslash is itself unless a quote follows it.
std::vector<std::string> splitCommandLine(std::string_view line);

/// A text in double quotes that `splitCommandLine` and programs on Windows read back as one word.
std::string quotedArgument(std::string_view text);

}  // namespace tavlo
