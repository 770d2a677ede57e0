#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/Process.h"

extern char** environ;

namespace tavlo {

namespace {
// Becomes readable when the process ends; -1 where the system has none.
int watchOf(pid_t child) {
    return static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
}

class PosixProcess final : public Process {
 public:
    PosixProcess(pid_t child, int outputEnd)
        : child_(child), outputEnd_(outputEnd), watch_(watchOf(child)) {}
    ~PosixProcess() override {
        ::close(outputEnd_);
        if (watch_ >= 0) ::close(watch_);
    }

    bool waitFor(int milliseconds) override {
        if (hasEnded_) return true;
        constexpr int withoutWatch = 10;  // milliseconds between two looks
        std::array<pollfd, 2> watched{{{outputEnd_, POLLIN, 0}, {watch_, POLLIN, 0}}};
        if (isSilent_) watched[0].fd = -1;
        const int wait = watch_ >= 0 ? milliseconds : std::min(milliseconds, withoutWatch);
        ::poll(watched.data(), watched.size(), wait);
        takeOutput();
        int status = 0;
        hasEnded_ = ::waitpid(child_, &status, WNOHANG) != 0;
        if (hasEnded_) takeOutput();
        return hasEnded_;
    }

    void setPriority(PriorityClass priority) override {
        if (!hasEnded_) setPriorityClassOf(child_, priority);
    }
    void setShown(bool) override {}
    void kill() override {
        if (!hasEnded_) ::kill(child_, SIGKILL);
    }

 private:
    void takeOutput() {
        std::array<char, 4096> block;
        for (;;) {
            const ssize_t count = ::read(outputEnd_, block.data(), block.size());
            if (count > 0) keepOutput(block.data(), static_cast<std::size_t>(count));
            // At its end a pipe would be readable for ever.
            if (count == 0) isSilent_ = true;
            if (count <= 0) return;
        }
    }

    const pid_t child_;
    const int outputEnd_;
    const int watch_;
    bool isSilent_ = false;
    bool hasEnded_ = false;
};

// What the child gets in place of this program's input, output and errors, and where it runs.
class SpawnActions {
 public:
    SpawnActions(int outputEnd, const std::string& folder) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, outputEnd, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, outputEnd, STDERR_FILENO);
        if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
    }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
    posix_spawn_file_actions_t actions_{};
};
}  // namespace

std::unique_ptr<Process> startProcess(const ProcessStart& start) {
    std::vector<std::string> words = splitCommandLine(start.commandLine);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (words.empty() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return nullptr;
    const SpawnActions actions(ends[1], start.folder);
    pid_t child = 0;
    const int error = posix_spawn(&child, start.program.c_str(), actions.get(), nullptr,
                                  arguments.data(), environ);
    ::close(ends[1]);
    if (error != 0) {
        ::close(ends[0]);
        return nullptr;
    }
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    setPriorityClassOf(child, start.priority);
    return std::make_unique<PosixProcess>(child, ends[0]);
}

}  // namespace tavlo
