#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/Console.h"

namespace tavlo {
namespace {

// A signal handler is handed nothing but the signal's number, so the flag's place is kept here.
std::atomic<std::atomic<bool>*> interruptFlag{nullptr};
std::atomic<std::atomic<bool>*> secondFlag{nullptr};

void onInterrupt(int) {
    auto* first = interruptFlag.load();
    auto* second = secondFlag.load();
    const bool isFirst = first != nullptr && !first->exchange(true);
    if (isFirst && second != nullptr) return;
    if (second != nullptr) second->store(true);
    std::signal(SIGINT, SIG_DFL);
}

void onTermination(int number) {
    if (auto* first = interruptFlag.load()) first->store(true);
    if (auto* second = secondFlag.load()) second->store(true);
    std::signal(number, SIG_DFL);
}

void listen(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

int descriptor(Stream stream) {
    return stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

}  // namespace

bool isTerminal(Stream stream) {
    return isatty(descriptor(stream)) == 1;
}

// A terminal's user may send the output to nowhere; a desktop that starts a program does so, too.
bool isHeard(Stream stream) {
    struct stat status {};
    if (fstat(descriptor(stream), &status) != 0) return false;
    if (!S_ISCHR(status.st_mode) || isTerminal(stream)) return true;
    const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal >= 0) close(terminal);
    return terminal >= 0;
}

void joinConsole() {}

int terminalColumns(Stream stream) {
    winsize size{};
    if (ioctl(descriptor(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return size.ws_col;
}

bool writeText(Stream stream, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor(stream), text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void cancelOnInterrupt(std::atomic<bool>& flag) {
    interruptFlag.store(&flag);
    listen(SIGINT, onInterrupt);
    listen(SIGTERM, onTermination);
    // A program that was started to outlive its terminal goes on.
    struct sigaction kept {};
    sigaction(SIGHUP, nullptr, &kept);
    if (kept.sa_handler != SIG_IGN) listen(SIGHUP, onTermination);
}

void surviveClosedPipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

void heedSecondInterrupt(std::atomic<bool>* flag) {
    secondFlag.store(flag);
}

}  // namespace tavlo
