#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>

#include "platform/Process.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
struct HandleCloser {
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

Handle owned(HANDLE handle) {
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

struct FirstWindow {
    DWORD process;
    bool isShown;
};

// Windows that belong to another one are helpers of its.
BOOL CALLBACK showFirst(HWND window, LPARAM parameter) {
    const auto* wanted = reinterpret_cast<const FirstWindow*>(parameter);
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    if (process != wanted->process || ::GetWindow(window, GW_OWNER) != nullptr) return TRUE;
    ::ShowWindowAsync(window, wanted->isShown ? SW_SHOWNORMAL : SW_HIDE);
    return FALSE;
}

// Both ends of a pipe. Only a named one can be read while something else is waited for.
struct Pipe {
    Handle readEnd, writeEnd;
};

Pipe makePipe(SECURITY_ATTRIBUTES& inherited) {
    constexpr DWORD room = 65536;
    static std::atomic<unsigned> counter{0};
    const std::wstring name = L"\\\\.\\pipe\\tavlo-" + std::to_wstring(::GetCurrentProcessId()) +
                              L"-" + std::to_wstring(++counter);
    Pipe pipe;
    pipe.readEnd = owned(::CreateNamedPipeW(
        name.c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
        PIPE_TYPE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, room, room, 0, nullptr));
    if (pipe.readEnd != nullptr) {
        pipe.writeEnd = owned(::CreateFileW(name.c_str(), GENERIC_WRITE | FILE_READ_ATTRIBUTES, 0,
                                            &inherited, OPEN_EXISTING, 0, nullptr));
    }
    return pipe;
}

// A program and the end of the pipe that it writes to, from which one read is always under way.
struct Child {
    Child(Handle program, DWORD number, Handle pipe)
        : process(std::move(program)), id(number), outputEnd(std::move(pipe)) {
        reading.hEvent = isRead.get();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        DWORD count = 0;
        if (!isReading) return;
        ::CancelIoEx(outputEnd.get(), &reading);
        ::GetOverlappedResult(outputEnd.get(), &reading, &count, TRUE);
    }

    const Handle process;
    const DWORD id;
    const Handle outputEnd;
    const Handle isRead = owned(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    OVERLAPPED reading{};
    std::array<char, 4096> block;
    bool isReading = false;
    bool isSilent = false;
};

class WindowsProcess final : public Process {
 public:
    explicit WindowsProcess(std::unique_ptr<Child> child) : child_(std::move(child)) {}
    // A program fails when nobody takes in what it says.
    ~WindowsProcess() override {
        if (!waitFor(0)) leave(std::make_unique<WindowsProcess>(std::move(child_)));
    }

    bool waitFor(int milliseconds) override {
        using Clock = std::chrono::steady_clock;
        const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
        for (;;) {
            takeOutput();
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
            const HANDLE waited[] = {child_->process.get(), child_->isRead.get()};
            const DWORD found =
                ::WaitForMultipleObjects(child_->isSilent ? 1 : 2, waited, FALSE,
                                         static_cast<DWORD>(std::max<LONGLONG>(left.count(), 0)));
            const bool hasEnded = found == WAIT_OBJECT_0;
            if (hasEnded) takeOutput();
            if (hasEnded || left.count() <= 0) return hasEnded;
        }
    }

    void setPriority(PriorityClass priority) override {
        setPriorityClassOf(reinterpret_cast<std::intptr_t>(child_->process.get()), priority);
    }
    void setShown(bool isShown) override {
        FirstWindow wanted{child_->id, isShown};
        ::EnumWindows(showFirst, reinterpret_cast<LPARAM>(&wanted));
    }
    void kill() override { ::TerminateProcess(child_->process.get(), 1); }

 private:
    void takeOutput() {
        for (std::size_t taken = 0; taken < mostAtOnce && !child_->isSilent;) {
            DWORD count = 0;
            beginReading();
            if (!child_->isReading ||
                !::GetOverlappedResult(child_->outputEnd.get(), &child_->reading, &count, FALSE)) {
                if (child_->isReading && ::GetLastError() == ERROR_IO_INCOMPLETE) return;
                child_->isSilent = true;
            }
            child_->isReading = false;
            keepOutput(child_->block.data(), count);
            taken += count;
        }
    }

    void beginReading() {
        if (child_->isReading) return;
        const auto size = static_cast<DWORD>(child_->block.size());
        child_->isReading = ::ReadFile(child_->outputEnd.get(), child_->block.data(), size, nullptr,
                                       &child_->reading) != 0 ||
                            ::GetLastError() == ERROR_IO_PENDING;
    }

    std::unique_ptr<Child> child_;
};

// Lets a new process have these handles and no others.
class HandleList {
 public:
    explicit HandleList(std::array<HANDLE, 2> handles) : handles_(handles) {
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        room_.resize(size);
        isMade_ = ::InitializeProcThreadAttributeList(get(), 1, 0, &size) &&
                  ::UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                              handles_.data(), sizeof handles_, nullptr, nullptr);
    }
    HandleList(const HandleList&) = delete;
    HandleList& operator=(const HandleList&) = delete;
    ~HandleList() {
        if (isMade_) ::DeleteProcThreadAttributeList(get());
    }

    [[nodiscard]] bool isMade() const { return isMade_; }
    LPPROC_THREAD_ATTRIBUTE_LIST get() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(room_.data());
    }

 private:
    std::array<HANDLE, 2> handles_;
    std::vector<char> room_;
    bool isMade_ = false;
};
}  // namespace

std::unique_ptr<Process> startProcess(const ProcessStart& start) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    Pipe pipe = makePipe(inherited);
    const Handle nothing =
        owned(::CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                            OPEN_EXISTING, 0, nullptr));
    HandleList handles({nothing.get(), pipe.writeEnd.get()});
    if (nothing == nullptr || pipe.writeEnd == nullptr || !handles.isMade()) return nullptr;
    STARTUPINFOEXW info{};
    info.StartupInfo.cb = sizeof info;
    info.StartupInfo.dwFlags = STARTF_USESHOWWINDOW | STARTF_USESTDHANDLES;
    info.StartupInfo.wShowWindow = start.isShown ? SW_SHOWNORMAL : SW_HIDE;
    info.StartupInfo.hStdInput = nothing.get();
    info.StartupInfo.hStdOutput = pipe.writeEnd.get();
    info.StartupInfo.hStdError = pipe.writeEnd.get();
    info.lpAttributeList = handles.get();
    std::wstring line = wideText(start.commandLine);
    const std::wstring folder = plainWidePath(start.folder);
    // A console of its own can be shown and hidden, and gets no Ctrl+C that is meant for this one.
    constexpr DWORD flags = CREATE_NEW_CONSOLE | EXTENDED_STARTUPINFO_PRESENT;
    PROCESS_INFORMATION child{};
    if (!::CreateProcessW(plainWidePath(start.program).c_str(), line.data(), nullptr, nullptr, TRUE,
                          flags, nullptr, folder.empty() ? nullptr : folder.c_str(),
                          &info.StartupInfo, &child)) {
        return nullptr;
    }
    ::CloseHandle(child.hThread);
    auto process = std::make_unique<WindowsProcess>(
        std::make_unique<Child>(owned(child.hProcess), child.dwProcessId, std::move(pipe.readEnd)));
    process->setPriority(start.priority);
    return process;
}

}  // namespace tavlo
