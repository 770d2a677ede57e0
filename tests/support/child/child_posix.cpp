#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "child.h"

namespace tavlo::child {

std::filesystem::path variable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? "" : value;
}

std::string priority() {
    const int niceness = getpriority(PRIO_PROCESS, 0);
    if (niceness == 0) return "normal";
    if (niceness == 19) return "idle";
    return niceness == -10 ? "high" : std::to_string(niceness);
}

std::string inheritance() {
    std::string found;
    if (getpgrp() != getpid()) found += "group ";
    for (int file = STDERR_FILENO + 1; file < 1024; ++file) {
        if (fcntl(file, F_GETFD) != -1) found += "file " + std::to_string(file) + " ";
    }
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    for (const int number : {SIGINT, SIGPIPE, SIGTERM, SIGUSR1}) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_DFL || sigismember(&blocked, number) == 1) {
            found += "signal " + std::to_string(number) + " ";
        }
    }
    return found;
}

void leaveAnother(const std::filesystem::path& program, const std::string& milliseconds) {
    const std::string does = "--does=sleep=" + milliseconds;
    if (fork() != 0) return;
    execl(program.c_str(), program.c_str(), does.c_str(), nullptr);
    _exit(1);
}

}  // namespace tavlo::child

int main(int count, char** arguments) {
    return tavlo::child::run({arguments, arguments + count});
}
