#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>

#include "platform/Process.h"

namespace tavlo {

namespace {
// Becomes readable when the process ends; -1 where the system has none.
int watchOf(pid_t child) {
    return static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
}

// A program that leads a process group of its own, and the end of the pipe that it writes to.
struct Child {
    Child(pid_t group, int pipe) : id(group), outputEnd(pipe), watch(watchOf(group)) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        ::close(outputEnd);
        if (watch >= 0) ::close(watch);
    }

    const pid_t id;
    const int outputEnd;
    const int watch;
    bool isSilent = false;
    bool hasEnded = false;
};

class PosixProcess final : public Process {
 public:
    explicit PosixProcess(std::unique_ptr<Child> child) : child_(std::move(child)) {}
    // Nobody but its parent can take an ended process out of the system's list.
    ~PosixProcess() override {
        if (!waitFor(0)) leave(std::make_unique<PosixProcess>(std::move(child_)));
    }

    bool waitFor(int milliseconds) override {
        using Clock = std::chrono::steady_clock;
        const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
        for (auto now = Clock::now(); !child_->hasEnded; now = Clock::now()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - now).count();
            look(static_cast<int>(std::max<std::int64_t>(left, 0)));
            if (left <= 0) break;
        }
        return child_->hasEnded;
    }

    void setPriority(PriorityClass priority) override {
        if (!child_->hasEnded) setPriorityClassOf(child_->id, priority);
    }
    void setShown(bool) override {}
    void kill() override {
        if (!child_->hasEnded) ::kill(-child_->id, SIGKILL);
    }

 private:
    void look(int milliseconds) {
        constexpr int withoutWatch = 10;  // milliseconds between two looks
        std::array<pollfd, 2> watched{{{child_->outputEnd, POLLIN, 0}, {child_->watch, POLLIN, 0}}};
        if (child_->isSilent) watched[0].fd = -1;
        ::poll(watched.data(), watched.size(),
               child_->watch >= 0 ? milliseconds : std::min(milliseconds, withoutWatch));
        takeOutput();
        int status = 0;
        child_->hasEnded = ::waitpid(child_->id, &status, WNOHANG) != 0;
        if (child_->hasEnded) takeOutput();
    }

    void takeOutput() {
        std::array<char, 4096> block;
        for (std::size_t taken = 0; taken < mostAtOnce && !child_->isSilent;) {
            const ssize_t count = ::read(child_->outputEnd, block.data(), block.size());
            if (count < 0) return;
            // At its end a pipe would be readable for ever.
            child_->isSilent = count == 0;
            keepOutput(block.data(), static_cast<std::size_t>(count));
            taken += static_cast<std::size_t>(count);
        }
    }

    std::unique_ptr<Child> child_;
};

// What the child gets in place of this program's input, output and errors, and where it runs.
class SpawnActions {
 public:
    SpawnActions(int outputEnd, const std::string& folder) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, outputEnd, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, outputEnd, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
    }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
    posix_spawn_file_actions_t actions_{};
};

// A group of its own, which a terminal's Ctrl+C does not reach, and signals as at log-in.
class SpawnAttributes {
 public:
    SpawnAttributes() {
        sigset_t signals;
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
    posix_spawnattr_t attributes_{};
};
}  // namespace

std::unique_ptr<Process> startProcess(const ProcessStart& start) {
    std::vector<std::string> words = splitCommandLine(start.commandLine);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (words.empty() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return nullptr;
    const SpawnActions actions(ends[1], start.folder);
    pid_t child = 0;
    const int error = posix_spawn(&child, start.program.c_str(), actions.get(),
                                  SpawnAttributes().get(), arguments.data(), environ);
    ::close(ends[1]);
    if (error != 0) {
        ::close(ends[0]);
        return nullptr;
    }
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    setPriorityClassOf(child, start.priority);
    return std::make_unique<PosixProcess>(std::make_unique<Child>(child, ends[0]));
}

}  // namespace tavlo
