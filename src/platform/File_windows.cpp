#include <windows.h>

#include <algorithm>

#include "platform/File.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
// One ReadFile call takes a 32-bit count.
constexpr std::size_t mostAtOnce = std::size_t{1} << 30;

HANDLE native(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}
}  // namespace

bool File::openHandle(const std::string& path, Access access) {
    const DWORD rights = access == Access::ReadWrite ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
    const DWORD share = access == Access::ReadWrite
                            ? FILE_SHARE_READ
                            : FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE opened = ::CreateFileW(widePath(path).c_str(), rights, share, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION info{};
    if (::GetFileType(opened) != FILE_TYPE_DISK || !::GetFileInformationByHandle(opened, &info)) {
        ::CloseHandle(opened);
        return false;
    }
    handle_ = reinterpret_cast<std::intptr_t>(opened);
    size_ = static_cast<std::uint64_t>(info.nFileSizeHigh) << 32U | info.nFileSizeLow;
    readOnly_ = (info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    return true;
}

void File::closeHandle() const {
    ::CloseHandle(native(handle_));
}

std::size_t File::readHandle(std::uint64_t offset, std::uint8_t* to, std::size_t count) const {
    std::size_t done = 0;
    while (done < count) {
        const std::uint64_t from = offset + done;
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(from & 0xFFFFFFFFU);
        place.OffsetHigh = static_cast<DWORD>(from >> 32U);
        DWORD got = 0;
        const auto wanted = static_cast<DWORD>(std::min(count - done, mostAtOnce));
        if (!::ReadFile(native(handle_), to + done, wanted, &got, &place) || got == 0) break;
        done += got;
    }
    return done;
}

bool File::truncateHandle(std::uint64_t size) const {
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<LONGLONG>(size);
    return ::SetFilePointerEx(native(handle_), place, nullptr, FILE_BEGIN) &&
           ::SetEndOfFile(native(handle_));
}

}  // namespace tavlo
