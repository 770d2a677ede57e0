#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/FileTicks.h"
#include "platform/FileTransfer.h"

namespace tavlo {

namespace {
struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
struct Freer {
    void operator()(char* text) const { std::free(text); }  // NOLINT: realpath allocates so
};

bool leadsToFolder(int folder, const char* name) {
    struct stat status {};
    return ::fstatat(folder, name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

// Some file systems do not tell the kind of an entry, and of a link nobody does.
void completeKind(int folder, const dirent& found, FolderEntry& entry) {
    if (found.d_type != DT_LNK && found.d_type != DT_UNKNOWN) return;
    struct stat status {};
    entry.isLink = found.d_type == DT_LNK ||
                   (::fstatat(folder, found.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                    S_ISLNK(status.st_mode));
    entry.isFolder = leadsToFolder(folder, found.d_name);
}

bool isHiddenName(std::string_view name) {
    return name.starts_with('.');
}
}  // namespace

std::vector<FolderEntry> listFolder(const std::string& folder) {
    std::vector<FolderEntry> entries;
    const std::unique_ptr<DIR, FolderCloser> opened(::opendir(folder.c_str()));
    if (!opened) return entries;
    while (const dirent* found = ::readdir(opened.get())) {  // NOLINT: one stream, one thread
        const std::string_view name = found->d_name;
        if (name == "." || name == "..") continue;
        FolderEntry& entry = entries.emplace_back();
        entry.name = name;
        entry.isFolder = found->d_type == DT_DIR;
        entry.isHidden = isHiddenName(name);
        completeKind(::dirfd(opened.get()), *found, entry);
    }
    return entries;
}

std::optional<FileInfo> fileInfo(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    FileInfo info;
    info.size = static_cast<std::uint64_t>(status.st_size);
    info.modified = nanosecondTicks(status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    info.isFolder = S_ISDIR(status.st_mode);
    info.isHidden = isHiddenName(std::string_view(path).substr(path.rfind('/') + 1));
    info.isReadOnly = (status.st_mode & S_IWUSR) == 0;
    return info;
}

bool clearReadOnly(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return false;
    if ((status.st_mode & S_IWUSR) != 0) return true;
    constexpr mode_t permissions = 07777;
    return ::chmod(path.c_str(), (status.st_mode & permissions) | S_IWUSR) == 0;
}

bool folderExists(const std::string& path) {
    const auto info = fileInfo(path);
    return info && info->isFolder;
}

bool isReadableFolder(const std::string& path) {
    return folderExists(path) && ::access(path.c_str(), R_OK | X_OK) == 0;
}

bool isWritableFolder(const std::string& path) {
    return ::access(path.c_str(), W_OK | X_OK) == 0;
}

std::optional<FileId> folderId(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileId{status.st_dev, status.st_ino};
}

namespace {
// Of FAT, network and user-space disks a number may be another's when the disk is seen again.
bool keepsNumbers(const struct statfs& disk) {
    constexpr std::array<std::uint64_t, 8> kinds{
        0xEF53 /* ext2 to ext4 */, 0x58465342 /* XFS */,   0x9123683E /* Btrfs */,
        0xF2F52010 /* F2FS */,     0x2FC12FC1 /* ZFS */,   0x3153464A /* JFS */,
        0xCA451A4E /* bcachefs */, 0x01021994 /* tmpfs */,
    };
    return std::ranges::find(kinds, static_cast<std::uint64_t>(disk.f_type)) != kinds.end();
}
}  // namespace

std::optional<FileId> lastingFileId(const std::string& path) {
    struct statfs disk {};
    if (::statfs(path.c_str(), &disk) != 0 || !keepsNumbers(disk)) return std::nullopt;
    return folderId(path);
}

bool isOwn(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && status.st_uid == ::geteuid() &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool makeOwn(const std::string& path) {
    const int opened = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (opened < 0) return false;
    constexpr mode_t permissions = 07777;
    struct stat status {};
    const bool done =
        ::fstat(opened, &status) == 0 && status.st_uid == ::geteuid() &&
        ::fchmod(opened, status.st_mode & permissions & ~mode_t{S_IWGRP | S_IWOTH}) == 0;
    ::close(opened);
    return done && isOwn(path);
}

std::string canonicalPath(const std::string& path) {
    const std::unique_ptr<char, Freer> resolved(::realpath(path.c_str(), nullptr));
    return resolved ? std::string(resolved.get()) : std::string();
}

bool isLink(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::string withoutLinks(const std::string& path) {
    return isLink(path) ? canonicalPath(path) : path;
}

std::string absolutePath(const std::string& path) {
    std::string_view rest = path;
    std::string absolute = path.starts_with('/') ? std::string() : currentFolder();
    if (absolute == "/") absolute.clear();
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        const std::string_view step = rest.substr(0, end);
        if (!step.empty() && step != ".") absolute.append("/").append(step);
        if (step == "..") {
            // What lies above a link is known to the system only.
            const std::string above = canonicalPath(absolute);
            if (!above.empty()) absolute = above == "/" ? std::string() : above;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return absolute.empty() ? "/" : absolute;
}

Created writeNewFile(const std::string& path, std::string_view bytes) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) return errno == EEXIST ? Created::Exists : Created::Failed;
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    const bool complete = bytes.empty();
    if (::close(file) == 0 && complete) return Created::Done;
    ::unlink(path.c_str());
    return Created::Failed;
}

Created createFolder(const std::string& path) {
    if (::mkdir(path.c_str(), 0777) == 0) return Created::Done;
    return errno == EEXIST && folderExists(path) ? Created::Exists : Created::Failed;
}

Created createOwnFolder(const std::string& path) {
    if (::mkdir(path.c_str(), S_IRWXU) == 0) return Created::Done;
    return errno == EEXIST ? Created::Exists : Created::Failed;
}

bool isTaken(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

bool isProgram(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

bool removeEntry(const std::string& path) {
    return ::unlink(path.c_str()) == 0;
}

bool linkOrCopy(const std::string& from, const std::string& to) {
    return ::symlink(from.c_str(), to.c_str()) == 0 || copyFile(from, to) == Transfer::Done;
}

bool removeEmptyFolder(const std::string& path) {
    return ::rmdir(path.c_str()) == 0;
}

bool isPlainForPrograms(const std::string&) {
    return true;
}

bool isInUse(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return errno == ETXTBSY || errno == EBUSY;
    const bool isLocked = ::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(file);
    return isLocked;
}

char nativeSeparator() {
    return '/';
}

}  // namespace tavlo
