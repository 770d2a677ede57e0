#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/FileCalls.h"
#include "platform/FileSystem.h"
#include "platform/FileTicks.h"

namespace tavlo {

namespace {
constexpr std::int64_t nanoseconds = 1'000'000'000;

int descriptor(FileHandle file) {
    return static_cast<int>(file);
}

// Repeats a call that does a part of the work until all is done, nothing more comes or it fails.
template <typename Call>
std::size_t repeat(std::size_t count, Call call) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t step = call(done);
        if (step < 0 && errno == EINTR) continue;
        if (step <= 0) break;
        done += static_cast<std::size_t>(step);
    }
    return done;
}

// Access lists are extended attributes as well.
void carryExtendedAttributes(int from, int to) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size <= 0) return;
    std::string names(static_cast<std::size_t>(size), '\0');
    const ssize_t listed = ::flistxattr(from, names.data(), names.size());
    names.resize(static_cast<std::size_t>(std::max<ssize_t>(listed, 0)));
    std::string value;
    for (std::size_t at = 0; at < names.size();) {
        const char* name = names.c_str() + at;
        at += std::string_view(name).size() + 1;
        const ssize_t length = ::fgetxattr(from, name, nullptr, 0);
        if (length < 0) continue;
        value.resize(static_cast<std::size_t>(length));
        const ssize_t got = ::fgetxattr(from, name, value.data(), value.size());
        if (got >= 0) ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(got), 0);
    }
}

// For the owner alone until it has the permissions of the file that it is to replace; the sticky
// bit, which means nothing on a file, marks it.
constexpr mode_t temporaryMode = S_ISVTX | S_IRUSR | S_IWUSR;
constexpr mode_t permissions = 07777;

// Some network disks have no locks; there the names alone have to do.
bool lock(int file) {
    return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Some disks count no names.
bool isNamed(const struct stat& opened, const std::string& path) {
    struct stat named {};
    return opened.st_nlink > 0 || (::stat(path.c_str(), &named) == 0 && isSameFile(opened, named));
}

FileHandle told(int file, const struct stat& found, FileStatus& status) {
    status.size = static_cast<std::uint64_t>(found.st_size);
    status.modified = nanosecondTicks(found.st_mtim.tv_sec, found.st_mtim.tv_nsec);
    status.isReadOnly = (found.st_mode & S_IWUSR) == 0;
    status.isTemporary = (found.st_mode & permissions) == temporaryMode;
    status.names = found.st_nlink;
    return file;
}

// Some disks have no modes; there no file is marked either.
bool setMode(int file, mode_t mode) {
    struct stat now {};
    if (::fchmod(file, mode) == 0) return true;
    return ::fstat(file, &now) == 0 && (now.st_mode & permissions) != temporaryMode;
}

mode_t modeOfNewFile() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

Moved reasonOf(int error) {
    if (error == EEXIST) return Moved::Exists;
    return error == EXDEV ? Moved::OtherDisk : Moved::Failed;
}

class SystemCalls : public FileCalls {
 public:
    FileHandle open(const std::string& path, Access access, FileStatus& status) override {
        // O_NONBLOCK: opening a pipe that bears a music file's name must not wait for a writer.
        const int flags =
            (access == Access::ReadWrite ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
        constexpr int mostTries = 4;
        for (int tries = 0; tries < mostTries; ++tries) {
            const int opened = ::open(path.c_str(), flags);
            if (opened < 0) return noFile;
            struct stat found {};
            const bool isMine = access == Access::Read || lock(opened);
            if (isMine && ::fstat(opened, &found) == 0 && S_ISREG(found.st_mode)) {
                // Without a name it was replaced before the lock was ours.
                if (access == Access::Read || isNamed(found, path)) {
                    return told(opened, found, status);
                }
            } else {
                tries = mostTries;
            }
            ::close(opened);
        }
        return noFile;
    }

    FileHandle create(const std::string& path) override {
        const int created =
            ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, temporaryMode);
        if (created < 0) return noFile;
        struct stat found {};
        // Another run may have taken it for a leftover before it was locked.
        if (lock(created) && ::fstat(created, &found) == 0 && isNamed(found, path)) return created;
        ::close(created);
        return noFile;
    }

    void close(FileHandle file) override { ::close(descriptor(file)); }

    std::size_t read(FileHandle file, std::uint64_t offset, std::uint8_t* to,
                     std::size_t count) override {
        return repeat(count, [&](std::size_t done) {
            return ::pread(descriptor(file), to + done, count - done,
                           static_cast<off_t>(offset + done));
        });
    }

    std::size_t write(FileHandle file, std::uint64_t offset, Bytes bytes) override {
        return repeat(bytes.size(), [&](std::size_t done) {
            return ::pwrite(descriptor(file), bytes.data() + done, bytes.size() - done,
                            static_cast<off_t>(offset + done));
        });
    }

    bool copy(FileHandle from, std::uint64_t fromOffset, FileHandle to, std::uint64_t toOffset,
              std::uint64_t count) override {
        auto source = static_cast<off_t>(fromOffset);
        auto target = static_cast<off_t>(toOffset);
        const std::size_t done = repeat(count, [&](std::size_t at) {
            return ::copy_file_range(descriptor(from), &source, descriptor(to), &target, count - at,
                                     0);
        });
        return done == count ||
               copyThroughMemory(from, fromOffset + done, to, toOffset + done, count - done);
    }

    bool truncate(FileHandle file, std::uint64_t size) override {
        return ::ftruncate(descriptor(file), static_cast<off_t>(size)) == 0;
    }

    bool flush(FileHandle file) override { return ::fsync(descriptor(file)) == 0; }

    bool setModified(FileHandle file, std::int64_t modified) override {
        std::int64_t seconds = modified / nanoseconds;
        if (modified % nanoseconds < 0) --seconds;
        const struct timespec times[2] = {{0, UTIME_OMIT},
                                          {seconds, modified - seconds * nanoseconds}};
        return ::futimens(descriptor(file), times) == 0;
    }

    bool carryAttributes(FileHandle from, FileHandle to) override {
        struct stat source {};
        struct stat target {};
        if (from == noFile) return setMode(descriptor(to), modeOfNewFile());
        if (::fstat(descriptor(from), &source) != 0) return false;
        if (::fstat(descriptor(to), &target) != 0) return false;
        const bool foreign = source.st_uid != target.st_uid || source.st_gid != target.st_gid;
        if (foreign && ::fchown(descriptor(to), source.st_uid, source.st_gid) != 0) {
            // Who may not give the file away may still keep its group.
            [[maybe_unused]] const int done =
                ::fchown(descriptor(to), target.st_uid, source.st_gid);
        }
        carryExtendedAttributes(descriptor(from), descriptor(to));
        return setMode(descriptor(to), source.st_mode & permissions);
    }

    // Both stay locked until the new file has the old one's name.
    bool replace(FileHandle temporary, const std::string& temporaryPath, FileHandle original,
                 const std::string& path) override {
        const bool done = ::rename(temporaryPath.c_str(), path.c_str()) == 0;
        ::close(descriptor(temporary));
        if (original != noFile) ::close(descriptor(original));
        return done;
    }

    bool remove(FileHandle file, const std::string& path) override {
        struct stat opened {};
        struct stat named {};
        const bool same = ::fstat(descriptor(file), &opened) == 0 &&
                          ::lstat(path.c_str(), &named) == 0 && isSameFile(opened, named);
        const bool done = same && ::unlink(path.c_str()) == 0;
        ::close(descriptor(file));
        return done;
    }

    Moved move(const std::string& from, const std::string& to) override {
        const char* const source = from.c_str();
        const char* const target = to.c_str();
        if (::renameat2(AT_FDCWD, source, AT_FDCWD, target, RENAME_NOREPLACE) == 0) {
            return Moved::Done;
        }
        if (errno != EINVAL && errno != ENOSYS) return reasonOf(errno);
        // Not every disk can refuse to overwrite; a second name for the file never does.
        if (::link(source, target) == 0) {
            if (::unlink(source) == 0) return Moved::Done;
            ::unlink(target);
            return Moved::Failed;
        }
        if (errno != EPERM && errno != EOPNOTSUPP) return reasonOf(errno);
        struct stat status {};
        if (::lstat(target, &status) == 0) return Moved::Exists;
        return ::rename(source, target) == 0 ? Moved::Done : reasonOf(errno);
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
