#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/File.h"

namespace tavlo {

namespace {
int descriptor(std::intptr_t handle) {
    return static_cast<int>(handle);
}
}  // namespace

bool File::openHandle(const std::string& path, Access access) {
    // O_NONBLOCK: opening a pipe that bears a music file's name must not wait for a writer.
    const int flags = (access == Access::ReadWrite ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
    const int opened = ::open(path.c_str(), flags);
    if (opened < 0) return false;
    struct stat status {};
    if (::fstat(opened, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(opened);
        return false;
    }
    handle_ = opened;
    size_ = static_cast<std::uint64_t>(status.st_size);
    readOnly_ = (status.st_mode & S_IWUSR) == 0;
    return true;
}

void File::closeHandle() const {
    ::close(descriptor(handle_));
}

std::size_t File::readHandle(std::uint64_t offset, std::uint8_t* to, std::size_t count) const {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = ::pread(descriptor(handle_), to + done, count - done,
                                    static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

bool File::truncateHandle(std::uint64_t size) const {
    return ::ftruncate(descriptor(handle_), static_cast<off_t>(size)) == 0;
}

}  // namespace tavlo
