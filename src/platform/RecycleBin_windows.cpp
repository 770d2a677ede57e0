// The second needs the first.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include "platform/FileSystem.h"
#include "platform/RecycleBin.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
// The shell deletes for good, without a word, on drives that have no bin.
bool hasBin(const std::string& path) {
    if (path.size() < 3 || path[1] != ':') return false;
    const std::wstring root = plainWidePath(path.substr(0, 3));
    SHQUERYRBINFO info{};
    info.cbSize = sizeof info;
    return ::GetDriveTypeW(root.c_str()) == DRIVE_FIXED &&
           ::SHQueryRecycleBinW(root.c_str(), &info) == S_OK;
}
}  // namespace

bool moveToRecycleBin(const std::string& path) {
    const std::string full = absolutePath(path);
    // The shell would take another file where it does not see the name as it is.
    if (!hasBin(full) || !isPlainForPrograms(full)) return false;
    std::wstring names = plainWidePath(full);
    names += L'\0';
    SHFILEOPSTRUCTW operation{};
    operation.wFunc = FO_DELETE;
    operation.pFrom = names.c_str();
    // What is too large for the bin must be asked about: without the last mark it would be deleted.
    operation.fFlags =
        FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI | FOF_WANTNUKEWARNING;
    return ::SHFileOperationW(&operation) == 0 && !operation.fAnyOperationsAborted &&
           !isTaken(full);
}

}  // namespace tavlo
