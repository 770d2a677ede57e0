// The others need the first.
// clang-format off
#include <windows.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>
// clang-format on

#include "platform/FileSystem.h"
#include "platform/SystemOpen.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
// What the shell opens may be served by objects that need this.
class ComUse {
 public:
    ComUse() : result_(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ComUse(const ComUse&) = delete;
    ComUse& operator=(const ComUse&) = delete;
    ~ComUse() {
        if (SUCCEEDED(result_)) ::CoUninitialize();
    }

 private:
    HRESULT result_;
};
}  // namespace

bool openWithSystem(const std::string& path) {
    if (!isPlainForPrograms(path)) return false;
    const ComUse com;
    SHELLEXECUTEINFOW what{};
    what.cbSize = sizeof what;
    what.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
    const std::wstring file = plainWidePath(path);
    what.lpFile = file.c_str();
    what.nShow = SW_SHOWNORMAL;
    return ::ShellExecuteExW(&what) != 0;
}

bool showInFolder(const std::string& path) {
    if (!isPlainForPrograms(path)) return false;
    const ComUse com;
    PIDLIST_ABSOLUTE item = nullptr;
    if (FAILED(::SHParseDisplayName(plainWidePath(path).c_str(), nullptr, &item, 0, nullptr)))
        return false;
    const HRESULT result = ::SHOpenFolderAndSelectItems(item, 0, nullptr, 0);
    ::CoTaskMemFree(item);
    return SUCCEEDED(result);
}

bool startAndForget(const std::string& program, const std::string& commandLine) {
    STARTUPINFOW info{};
    info.cb = sizeof info;
    PROCESS_INFORMATION process{};
    std::wstring line = wideText(commandLine);
    if (!::CreateProcessW(plainWidePath(program).c_str(), line.data(), nullptr, nullptr, FALSE, 0,
                          nullptr, nullptr, &info, &process))
        return false;
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return true;
}

}  // namespace tavlo
