#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <windows.h>

#include <cstdlib>

#include "child.h"

namespace tavlo::child {

std::filesystem::path variable(const std::string& name) {
    const wchar_t* value = _wgetenv(std::wstring(name.begin(), name.end()).c_str());
    return value == nullptr ? L"" : value;
}

std::string priority() {
    switch (const DWORD found = GetPriorityClass(GetCurrentProcess())) {
        case NORMAL_PRIORITY_CLASS:
            return "normal";
        case IDLE_PRIORITY_CLASS:
            return "idle";
        case HIGH_PRIORITY_CLASS:
            return "high";
        default:
            return std::to_string(found);
    }
}

std::string inheritance() {
    DWORD processes[2];
    const DWORD count = GetConsoleProcessList(processes, 2);
    return count == 1 ? "" : "a console with " + std::to_string(count);
}

void leaveAnother(const std::filesystem::path& program, const std::string& milliseconds) {
    const std::wstring does = L"--does=sleep=" + std::filesystem::path(milliseconds).wstring();
    _wspawnl(_P_NOWAIT, program.c_str(), L"another", does.c_str(), nullptr);
}

}  // namespace tavlo::child

int wmain(int count, wchar_t** arguments) {
    _setmode(_fileno(stdout), _O_BINARY);
    return tavlo::child::run({arguments, arguments + count});
}
