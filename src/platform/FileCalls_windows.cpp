#include <aclapi.h>
#include <windows.h>

#include <algorithm>
#include <vector>

#include "platform/FileCalls.h"
#include "platform/FileSystem.h"
#include "platform/FileTicks.h"
#include "platform/WidePath.h"

namespace tavlo {

namespace {
// One ReadFile or WriteFile call takes a 32-bit count.
constexpr std::size_t mostAtOnce = std::size_t{1} << 30;

HANDLE native(FileHandle file) {
    return reinterpret_cast<HANDLE>(file);
}

OVERLAPPED placeAt(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32U);
    return place;
}

// Repeats `call`, which takes offset, place in the buffer and a count, and gives the bytes done.
template <typename Call>
std::size_t repeat(std::uint64_t offset, std::size_t count, Call call) {
    std::size_t done = 0;
    while (done < count) {
        OVERLAPPED place = placeAt(offset + done);
        const DWORD step =
            call(done, static_cast<DWORD>(std::min(count - done, mostAtOnce)), place);
        if (step == 0) break;
        done += step;
    }
    return done;
}

void carryAccessList(HANDLE from, HANDLE to) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (::GetSecurityInfo(from, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                          nullptr, &descriptor) != ERROR_SUCCESS) {
        return;
    }
    ::SetSecurityInfo(to, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, list,
                      nullptr);
    ::LocalFree(descriptor);
}

bool renameOpen(HANDLE file, const std::wstring& to) {
    const std::size_t nameSize = to.size() * sizeof(wchar_t);
    std::vector<std::uint64_t> room((sizeof(FILE_RENAME_INFO) + nameSize) / 8 + 2);
    auto* info = reinterpret_cast<FILE_RENAME_INFO*>(room.data());
    info->ReplaceIfExists = TRUE;
    info->FileNameLength = static_cast<DWORD>(nameSize);
    std::copy(to.begin(), to.end(), info->FileName);
    return ::SetFileInformationByHandle(file, FileRenameInfo, info,
                                        static_cast<DWORD>(room.size() * 8)) != 0;
}

class SystemCalls : public FileCalls {
 public:
    FileHandle open(const std::string& path, Access access, FileStatus& status) override {
        const bool writes = access == Access::ReadWrite;
        const DWORD rights = writes ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
        const DWORD share =
            writes ? FILE_SHARE_READ : FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        HANDLE opened = ::CreateFileW(widePath(path).c_str(), rights, share, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
        if (opened == INVALID_HANDLE_VALUE) return noFile;
        BY_HANDLE_FILE_INFORMATION info{};
        if (::GetFileType(opened) != FILE_TYPE_DISK ||
            !::GetFileInformationByHandle(opened, &info)) {
            ::CloseHandle(opened);
            return noFile;
        }
        status.size = static_cast<std::uint64_t>(info.nFileSizeHigh) << 32U | info.nFileSizeLow;
        status.modified =
            halvedTicks(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime);
        status.isReadOnly = (info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
        status.isTemporary = (info.dwFileAttributes & FILE_ATTRIBUTE_TEMPORARY) != 0;
        status.names = info.nNumberOfLinks;
        return reinterpret_cast<FileHandle>(opened);
    }

    FileHandle create(const std::string& path) override {
        // WRITE_DAC: the access list of the file that it is to replace is set on it; DELETE: it is
        // renamed while it is open, so that nobody else can lay hands on it.
        HANDLE created =
            ::CreateFileW(widePath(path).c_str(), GENERIC_READ | GENERIC_WRITE | WRITE_DAC | DELETE,
                          0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY, nullptr);
        return created == INVALID_HANDLE_VALUE ? noFile : reinterpret_cast<FileHandle>(created);
    }

    void close(FileHandle file) override { ::CloseHandle(native(file)); }

    std::size_t read(FileHandle file, std::uint64_t offset, std::uint8_t* to,
                     std::size_t count) override {
        return repeat(offset, count, [&](std::size_t at, DWORD wanted, OVERLAPPED& place) {
            DWORD got = 0;
            return ::ReadFile(native(file), to + at, wanted, &got, &place) ? got : 0;
        });
    }

    std::size_t write(FileHandle file, std::uint64_t offset, Bytes bytes) override {
        return repeat(offset, bytes.size(), [&](std::size_t at, DWORD wanted, OVERLAPPED& place) {
            DWORD put = 0;
            return ::WriteFile(native(file), bytes.data() + at, wanted, &put, &place) ? put : 0;
        });
    }

    bool copy(FileHandle from, std::uint64_t fromOffset, FileHandle to, std::uint64_t toOffset,
              std::uint64_t count) override {
        return copyThroughMemory(from, fromOffset, to, toOffset, count);
    }

    bool truncate(FileHandle file, std::uint64_t size) override {
        LARGE_INTEGER place{};
        place.QuadPart = static_cast<LONGLONG>(size);
        return ::SetFilePointerEx(native(file), place, nullptr, FILE_BEGIN) &&
               ::SetEndOfFile(native(file));
    }

    bool flush(FileHandle file) override { return ::FlushFileBuffers(native(file)) != 0; }

    bool setModified(FileHandle file, std::int64_t modified) override {
        const FILETIME time{static_cast<DWORD>(modified & 0xFFFFFFFF),
                            static_cast<DWORD>(modified >> 32)};
        return ::SetFileTime(native(file), nullptr, nullptr, &time) != 0;
    }

    bool carryAttributes(FileHandle from, FileHandle to) override {
        FILE_BASIC_INFO source{};
        FILE_BASIC_INFO target{};  // a time of 0 stays as it is
        target.FileAttributes = FILE_ATTRIBUTE_NORMAL;
        if (from != noFile &&
            ::GetFileInformationByHandleEx(native(from), FileBasicInfo, &source, sizeof source)) {
            target.CreationTime = source.CreationTime;
            target.FileAttributes = source.FileAttributes;
        }
        if (from != noFile) carryAccessList(native(from), native(to));
        return ::SetFileInformationByHandle(native(to), FileBasicInfo, &target, sizeof target) != 0;
    }

    bool replace(FileHandle temporary, const std::string& temporaryPath, FileHandle original,
                 const std::string& path) override {
        if (original != noFile) ::CloseHandle(native(original));
        const std::wstring to = widePath(path);
        const bool done = renameOpen(native(temporary), to);
        ::CloseHandle(native(temporary));
        return done || ::MoveFileExW(widePath(temporaryPath).c_str(), to.c_str(),
                                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    }

    // Nobody else can rename or remove it while it is open here without sharing.
    bool remove(FileHandle file, const std::string& path) override {
        ::CloseHandle(native(file));
        const std::wstring name = widePath(path);
        if (::DeleteFileW(name.c_str())) return true;
        const DWORD attributes = ::GetFileAttributesW(name.c_str());
        const bool isReadOnly =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
        if (!isReadOnly || !tavlo::clearReadOnly(path)) return false;
        if (::DeleteFileW(name.c_str())) return true;
        ::SetFileAttributesW(name.c_str(), attributes);
        return false;
    }

    Moved move(const std::string& from, const std::string& to) override {
        if (::MoveFileExW(widePath(from).c_str(), widePath(to).c_str(), 0)) return Moved::Done;
        const DWORD error = ::GetLastError();
        if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS) return Moved::Exists;
        return error == ERROR_NOT_SAME_DEVICE ? Moved::OtherDisk : Moved::Failed;
    }

    bool clearReadOnly(const std::string& path) override { return tavlo::clearReadOnly(path); }
};

class UnflushedCalls final : public SystemCalls {
 public:
    bool flush(FileHandle) override { return true; }
};
}  // namespace

FileCalls& systemCalls() {
    static SystemCalls calls;
    return calls;
}

FileCalls& unflushedCalls() {
    static UnflushedCalls calls;
    return calls;
}

}  // namespace tavlo
