#include <windows.h>

#include <algorithm>
#include <string>

#include "platform/Console.h"
#include "platform/Utf16.h"

namespace tavlo {
namespace {

constexpr std::size_t consoleChunk = 8192;  // UTF-16 units; older consoles refuse 64 KB

// A control handler is handed nothing but the event, so the flag's place is kept here.
std::atomic<std::atomic<bool>*> interruptFlag{nullptr};
std::atomic<std::atomic<bool>*> secondFlag{nullptr};

BOOL WINAPI onInterrupt(DWORD event) {
    auto* flag = interruptFlag.load();
    if (event != CTRL_C_EVENT || flag == nullptr) return FALSE;
    if (!flag->exchange(true)) return TRUE;
    auto* second = secondFlag.load();
    return second != nullptr && !second->exchange(true) ? TRUE : FALSE;
}

HANDLE handleOf(Stream stream) {
    return GetStdHandle(stream == Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool endsInsidePair(std::u16string_view text) {
    return (text.back() & 0xFC00) == 0xD800;
}

bool writeConsole(HANDLE console, std::u16string_view text) {
    while (!text.empty()) {
        std::size_t count = std::min(text.size(), consoleChunk);
        if (count < text.size() && endsInsidePair(text.substr(0, count))) --count;
        DWORD written = 0;
        if (WriteConsoleW(console, text.data(), static_cast<DWORD>(count), &written, nullptr) == 0)
            return false;
        if (written == 0) return false;
        text.remove_prefix(std::min<std::size_t>(written, text.size()));
    }
    return true;
}

bool writeBytes(HANDLE file, std::string_view bytes) {
    constexpr std::size_t largest = std::size_t{1} << 30;
    while (!bytes.empty()) {
        DWORD written = 0;
        const auto count = static_cast<DWORD>(std::min(bytes.size(), largest));
        if (WriteFile(file, bytes.data(), count, &written, nullptr) == 0 || written == 0)
            return false;
        bytes.remove_prefix(written);
    }
    return true;
}

}  // namespace

bool isTerminal(Stream stream) {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != 0;
}

// Whoever sends the output to nowhere has a stream for it.
bool isHeard(Stream stream) {
    const HANDLE handle = handleOf(stream);
    return handle != nullptr && handle != INVALID_HANDLE_VALUE &&
           GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

void joinConsole() {
    if (isHeard(Stream::Output) || isHeard(Stream::Error)) return;
    if (AttachConsole(ATTACH_PARENT_PROCESS) == 0) return;
    const HANDLE console =
        CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (console == INVALID_HANDLE_VALUE) return;
    SetStdHandle(STD_OUTPUT_HANDLE, console);
    SetStdHandle(STD_ERROR_HANDLE, console);
}

int terminalColumns(Stream stream) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(handleOf(stream), &info) == 0) return 80;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

bool writeText(Stream stream, std::string_view text) {
    const HANDLE handle = handleOf(stream);
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return false;
    return isTerminal(stream) ? writeConsole(handle, utf16FromUtf8(text))
                              : writeBytes(handle, text);
}

void cancelOnInterrupt(std::atomic<bool>& flag) {
    interruptFlag.store(&flag);
    SetConsoleCtrlHandler(onInterrupt, TRUE);
}

void surviveClosedPipes() {}

void heedSecondInterrupt(std::atomic<bool>* flag) {
    secondFlag.store(flag);
}

}  // namespace tavlo
