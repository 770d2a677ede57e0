#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/Process.h"
#include "platform/SystemOpen.h"

namespace tavlo {

namespace {
// A session of its own, so that closing the terminal does not end it, and nothing of this program's
// input and output, which it may outlive.
class ForgottenStart {
 public:
    ForgottenStart() {
        sigset_t signals;
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        posix_spawn_file_actions_init(&actions_);
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&actions_, file, "/dev/null", O_RDWR, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    }
    ForgottenStart(const ForgottenStart&) = delete;
    ForgottenStart& operator=(const ForgottenStart&) = delete;
    ~ForgottenStart() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }

    /// A program without a "/" is looked for in PATH.
    bool run(const std::string& program, std::vector<std::string> words) const {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        pid_t child = 0;
        if (posix_spawnp(&child, program.c_str(), &actions_, &attributes_, arguments.data(),
                         environ) != 0)
            return false;
        waitInBackground(child);
        return true;
    }

 private:
    // Nobody but its parent can take an ended process out of the system's list.
    static void waitInBackground(pid_t child) {
        try {
            std::thread([child] { ::waitpid(child, nullptr, 0); }).detach();
        } catch (const std::system_error&) {
            // Without a thread it stays in the list until this process ends.
        }
    }

    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t actions_{};
};
}  // namespace

bool startAndForget(const std::string& program, const std::string& commandLine) {
    std::vector<std::string> words = splitCommandLine(commandLine);
    return !words.empty() && ForgottenStart().run(program, std::move(words));
}

bool openWithSystem(const std::string& path) {
    // A full path cannot be taken for an option.
    return isTaken(path) && ForgottenStart().run("xdg-open", {"xdg-open", absolutePath(path)});
}

bool showInFolder(const std::string& path) {
    return openWithSystem(std::filesystem::path(absolutePath(path)).parent_path().string());
}

}  // namespace tavlo
