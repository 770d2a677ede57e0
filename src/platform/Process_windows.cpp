#include <windows.h>

#include <algorithm>
#include <array>

#include "platform/Process.h"
#include "platform/Utf16.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
struct FirstWindow {
    DWORD process;
    bool isShown;
};

BOOL CALLBACK showFirst(HWND window, LPARAM parameter) {
    const auto* wanted = reinterpret_cast<const FirstWindow*>(parameter);
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    if (owner != wanted->process) return TRUE;
    ::ShowWindow(window, wanted->isShown ? SW_SHOWNORMAL : SW_HIDE);
    return FALSE;
}

class WindowsProcess final : public Process {
 public:
    WindowsProcess(const PROCESS_INFORMATION& child, HANDLE outputEnd)
        : child_(child), outputEnd_(outputEnd) {
        ::CloseHandle(child_.hThread);
    }
    ~WindowsProcess() override {
        ::CloseHandle(outputEnd_);
        ::CloseHandle(child_.hProcess);
    }

    // A pipe cannot be waited for, and one that is full would stop the program.
    bool waitFor(int milliseconds) override {
        constexpr int step = 10;
        for (int waited = 0;; waited += step) {
            const bool hasEnded =
                ::WaitForSingleObject(child_.hProcess,
                                      static_cast<DWORD>(std::min(step, milliseconds - waited))) ==
                WAIT_OBJECT_0;
            takeOutput();
            if (hasEnded || waited + step >= milliseconds) return hasEnded;
        }
    }

    void setPriority(PriorityClass priority) override {
        setPriorityClassOf(reinterpret_cast<std::intptr_t>(child_.hProcess), priority);
    }
    void setShown(bool isShown) override {
        FirstWindow wanted{child_.dwProcessId, isShown};
        ::EnumWindows(showFirst, reinterpret_cast<LPARAM>(&wanted));
    }
    void kill() override { ::TerminateProcess(child_.hProcess, 1); }

 private:
    void takeOutput() {
        std::array<char, 4096> block;
        DWORD ready = 0;
        while (::PeekNamedPipe(outputEnd_, nullptr, 0, nullptr, &ready, nullptr) && ready > 0) {
            DWORD count = 0;
            if (!::ReadFile(outputEnd_, block.data(), static_cast<DWORD>(block.size()), &count,
                            nullptr)) {
                return;
            }
            keepOutput(block.data(), count);
        }
    }

    PROCESS_INFORMATION child_;
    HANDLE outputEnd_;
};
}  // namespace

std::unique_ptr<Process> startProcess(const ProcessStart& start) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (!::CreatePipe(&readEnd, &writeEnd, &inherited, 0)) return nullptr;
    ::SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW info{};
    info.cb = sizeof info;
    info.dwFlags = STARTF_USESHOWWINDOW | STARTF_USESTDHANDLES;
    info.wShowWindow = start.isShown ? SW_SHOWNORMAL : SW_HIDE;
    info.hStdOutput = writeEnd;
    info.hStdError = writeEnd;
    PROCESS_INFORMATION child{};
    const std::u16string text = utf16FromUtf8(start.commandLine);
    std::wstring line(text.begin(), text.end());
    const std::wstring program = widePath(start.program);
    const std::wstring folder = widePath(start.folder);
    const bool isStarted = ::CreateProcessW(
        program.c_str(), line.data(), nullptr, nullptr, TRUE, static_cast<DWORD>(start.priority),
        nullptr, start.folder.empty() ? nullptr : folder.c_str(), &info, &child);
    ::CloseHandle(writeEnd);
    if (!isStarted) {
        ::CloseHandle(readEnd);
        return nullptr;
    }
    return std::make_unique<WindowsProcess>(child, readEnd);
}

}  // namespace tavlo
