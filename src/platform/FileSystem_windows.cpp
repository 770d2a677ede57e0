#include <windows.h>

#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/FileTicks.h"
#include "platform/Utf16.h"
#include "platform/WidePath.h"
#include "platform/WindowsPath.h"

namespace tavlo {

namespace {
std::string narrow(std::wstring_view text) {
    return utf8FromUtf16({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

class Search {
 public:
    explicit Search(const std::wstring& pattern)
        : handle_(::FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found_,
                                     FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH)) {}
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    ~Search() {
        if (isOpen()) ::FindClose(handle_);
    }
    [[nodiscard]] bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    bool next() { return ::FindNextFileW(handle_, &found_) != 0; }
    [[nodiscard]] const WIN32_FIND_DATAW& found() const { return found_; }

 private:
    WIN32_FIND_DATAW found_{};
    HANDLE handle_;
};

HANDLE openForQuery(const std::string& path) {
    return ::CreateFileW(widePath(path).c_str(), 0,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

// The system keeps a current folder for each drive.
std::string folderOfDrive(std::string_view drive) {
    if (drive.empty()) return absolutePath(currentFolder());
    const std::wstring wide = wideText(drive);
    std::wstring text(::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD length =
        ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(text.size()), text.data(), nullptr);
    if (length == 0 || length >= text.size()) return std::string(drive) + '\\';
    text.resize(length);
    return narrow(text);
}

// A cloud placeholder is a reparse point as well, yet no link.
bool isLinkTag(DWORD attributes, DWORD tag) {
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (tag == IO_REPARSE_TAG_SYMLINK || tag == IO_REPARSE_TAG_MOUNT_POINT);
}

std::wstring everythingIn(const std::string& folder) {
    return widePath(folder + "\\*");
}
}  // namespace

std::vector<FolderEntry> listFolder(const std::string& folder) {
    std::vector<FolderEntry> entries;
    Search search(everythingIn(folder));
    if (!search.isOpen()) return entries;
    do {
        const WIN32_FIND_DATAW& found = search.found();
        const std::wstring_view name = found.cFileName;
        if (name == L"." || name == L"..") continue;
        FolderEntry& entry = entries.emplace_back();
        entry.name = narrow(name);
        entry.isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        entry.isHidden = (found.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0;
        entry.isLink = isLinkTag(found.dwFileAttributes, found.dwReserved0);
    } while (search.next());
    return entries;
}

std::optional<FileInfo> fileInfo(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!::GetFileAttributesExW(widePath(path).c_str(), GetFileExInfoStandard, &data)) {
        return std::nullopt;
    }
    FileInfo info;
    info.size = static_cast<std::uint64_t>(data.nFileSizeHigh) << 32U | data.nFileSizeLow;
    info.modified =
        halvedTicks(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime);
    info.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    info.isHidden = (data.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0;
    info.isReadOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    return info;
}

bool clearReadOnly(const std::string& path) {
    const std::wstring wide = widePath(path);
    const DWORD attributes = ::GetFileAttributesW(wide.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if ((attributes & FILE_ATTRIBUTE_READONLY) == 0) return true;
    return ::SetFileAttributesW(wide.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}) != 0;
}

bool folderExists(const std::string& path) {
    const auto info = fileInfo(path);
    return info && info->isFolder;
}

bool isReadableFolder(const std::string& path) {
    return Search(everythingIn(path)).isOpen();
}

// Access lists are told by the attempt only; the read-only mark of a folder means nothing.
bool isWritableFolder(const std::string& path) {
    return folderExists(path);
}

std::optional<FileId> folderId(const std::string& path) {
    HANDLE opened = openForQuery(path);
    if (opened == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION info{};
    const bool known = ::GetFileInformationByHandle(opened, &info) != 0;
    ::CloseHandle(opened);
    if (!known) return std::nullopt;
    return FileId{info.dwVolumeSerialNumber,
                  static_cast<std::uint64_t>(info.nFileIndexHigh) << 32U | info.nFileIndexLow};
}

// FAT makes a file's number from the place of its name.
std::optional<FileId> lastingFileId(const std::string& path) {
    HANDLE opened = openForQuery(path);
    if (opened == INVALID_HANDLE_VALUE) return std::nullopt;
    DWORD flags = 0;
    const bool isTold =
        ::GetVolumeInformationByHandleW(opened, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0);
    ::CloseHandle(opened);
    const bool keepsNumbers = isTold && (flags & FILE_SUPPORTS_OPEN_BY_FILE_ID) != 0;
    return keepsNumbers ? folderId(path) : std::nullopt;
}

bool isOwn(const std::string& path) {
    return isTaken(path) && !isLink(path);
}

bool makeOwn(const std::string& path) {
    return isOwn(path);
}

std::string canonicalPath(const std::string& path) {
    HANDLE opened = openForQuery(path);
    if (opened == INVALID_HANDLE_VALUE) return {};
    std::wstring text(::GetFinalPathNameByHandleW(opened, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    const DWORD length = ::GetFinalPathNameByHandleW(
        opened, text.data(), static_cast<DWORD>(text.size()), FILE_NAME_NORMALIZED);
    ::CloseHandle(opened);
    text.resize(length < text.size() ? length : 0);
    return absolutePath(narrow(text));
}

bool isLink(const std::string& path) {
    HANDLE opened = ::CreateFileW(
        widePath(path).c_str(), FILE_READ_ATTRIBUTES,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return false;
    FILE_ATTRIBUTE_TAG_INFO info{};
    const bool isTold =
        ::GetFileInformationByHandleEx(opened, FileAttributeTagInfo, &info, sizeof info) != 0;
    ::CloseHandle(opened);
    return isTold && isLinkTag(info.FileAttributes, info.ReparseTag);
}

std::string withoutLinks(const std::string& path) {
    return isLink(path) ? canonicalPath(path) : path;
}

std::string absolutePath(const std::string& path) {
    return plainPath(path, folderOfDrive);
}

Created writeNewFile(const std::string& path, std::string_view bytes) {
    const std::wstring wide = widePath(path);
    HANDLE file = ::CreateFileW(wide.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return ::GetLastError() == ERROR_FILE_EXISTS ? Created::Exists : Created::Failed;
    }
    DWORD written = 0;
    const auto count = static_cast<DWORD>(bytes.size());
    const bool complete =
        ::WriteFile(file, bytes.data(), count, &written, nullptr) && written == count;
    ::CloseHandle(file);
    if (complete) return Created::Done;
    ::DeleteFileW(wide.c_str());
    return Created::Failed;
}

Created createFolder(const std::string& path) {
    if (::CreateDirectoryW(widePath(path).c_str(), nullptr)) return Created::Done;
    const bool isThere = ::GetLastError() == ERROR_ALREADY_EXISTS && folderExists(path);
    return isThere ? Created::Exists : Created::Failed;
}

// A folder of the user's lets nobody else in, and those below it take that over.
Created createOwnFolder(const std::string& path) {
    if (::CreateDirectoryW(widePath(path).c_str(), nullptr)) return Created::Done;
    return ::GetLastError() == ERROR_ALREADY_EXISTS ? Created::Exists : Created::Failed;
}

bool isTaken(const std::string& path) {
    return ::GetFileAttributesW(widePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool isProgram(const std::string& path) {
    const auto info = fileInfo(path);
    return info && !info->isFolder;
}

bool removeEntry(const std::string& path) {
    return ::DeleteFileW(widePath(path).c_str()) != 0;
}

// A hard link would share the attribute that keeps a read-only file from being removed.
bool linkOrCopy(const std::string& from, const std::string& to) {
    const std::wstring copy = widePath(to);
    if (!::CopyFileW(widePath(from).c_str(), copy.c_str(), TRUE)) return false;
    return ::SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL) != 0;
}

bool removeEmptyFolder(const std::string& path) {
    return ::RemoveDirectoryW(widePath(path).c_str()) != 0;
}

bool isPlainForPrograms(const std::string& path) {
    const std::wstring plain = plainWidePath(path);
    std::wstring seen(plain.size() + 1, L'\0');
    seen.resize(
        ::GetFullPathNameW(plain.c_str(), static_cast<DWORD>(seen.size()), seen.data(), nullptr));
    return seen == plain && !plain.starts_with(L"\\\\?\\");
}

bool isInUse(const std::string& path) {
    HANDLE alone = ::CreateFileW(widePath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                 FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (alone != INVALID_HANDLE_VALUE) {
        ::CloseHandle(alone);
        return false;
    }
    const DWORD error = ::GetLastError();
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

char nativeSeparator() {
    return '\\';
}

}  // namespace tavlo
