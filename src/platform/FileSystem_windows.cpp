#include <windows.h>

#include "platform/FileSystem.h"
#include "platform/FileTicks.h"
#include "platform/Utf16.h"
#include "platform/WidePath.h"

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

// A cloud placeholder is a reparse point as well, yet no link.
bool isLink(const WIN32_FIND_DATAW& found) {
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}
}  // namespace

std::vector<FolderEntry> listFolder(const std::string& folder) {
    std::vector<FolderEntry> entries;
    Search search(widePath(folder + "\\*"));
    if (!search.isOpen()) return entries;
    do {
        const WIN32_FIND_DATAW& found = search.found();
        const std::wstring_view name = found.cFileName;
        if (name == L"." || name == L"..") continue;
        FolderEntry& entry = entries.emplace_back();
        entry.name = narrow(name);
        entry.isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        entry.isHidden = (found.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0;
        entry.isLink = isLink(found);
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
    return Search(widePath(path + "\\*")).isOpen();
}

// Access lists are told by the attempt only; the read-only mark of a folder means nothing.
bool isWritableFolder(const std::string& path) {
    return folderExists(path);
}

std::optional<FolderId> folderId(const std::string& path) {
    HANDLE opened = openForQuery(path);
    if (opened == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION info{};
    const bool known = ::GetFileInformationByHandle(opened, &info) != 0;
    ::CloseHandle(opened);
    if (!known) return std::nullopt;
    return FolderId{info.dwVolumeSerialNumber,
                    static_cast<std::uint64_t>(info.nFileIndexHigh) << 32U | info.nFileIndexLow};
}

std::string canonicalPath(const std::string& path) {
    HANDLE opened = openForQuery(path);
    if (opened == INVALID_HANDLE_VALUE) return {};
    std::wstring text(::GetFinalPathNameByHandleW(opened, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    const DWORD length = ::GetFinalPathNameByHandleW(
        opened, text.data(), static_cast<DWORD>(text.size()), FILE_NAME_NORMALIZED);
    ::CloseHandle(opened);
    text.resize(length < text.size() ? length : 0);
    return narrow(text);
}

std::string withoutLinks(const std::string& path) {
    const Search search(widePath(path));
    return search.isOpen() && isLink(search.found()) ? canonicalPath(path) : path;
}

std::string absolutePath(const std::string& path) {
    const std::wstring wide = widePath(path);
    std::wstring text(::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD length =
        ::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(text.size()), text.data(), nullptr);
    if (length == 0 || length >= text.size()) return path;
    text.resize(length);
    // A folder is named without a separator behind it; only a drive needs its own.
    if (text.size() > 3 && text.back() == L'\\') text.pop_back();
    return narrow(text);
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

char nativeSeparator() {
    return '\\';
}

}  // namespace tavlo
