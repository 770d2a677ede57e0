#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileId.h"

namespace tavlo {

/// Bytes of a file.
using Bytes = std::span<const std::uint8_t>;

/// The bytes as 8-bit text.
inline std::string_view textOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The text's bytes.
inline Bytes bytesOfText(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

enum class Access {
    Read,
    ReadWrite,
    Own  ///< as ReadWrite, but never what a link leads to: for files that this program made
};

enum class Moved {
    Done,
    Exists,     ///< the new name is taken; nothing was changed
    OtherDisk,  ///< it lies on another disk; nothing was changed
    Failed
};

using FileHandle = std::intptr_t;
inline constexpr FileHandle noFile = -1;

enum class Replaced {
    Done,
    OtherFile,  ///< the path leads to another file or to other bytes by now; it stays as it is
    Failed
};

struct FileStatus {
    std::uint64_t size = 0;     ///< bytes
    std::int64_t modified = 0;  ///< in the system's own ticks, to be compared or put back
    bool isReadOnly = false;    ///< attribute; elsewhere: the owner may not write
    bool isTemporary = false;   ///< made by `create` and not yet given another file's attributes
    FileId id;
    std::uint64_t names = 1;  ///< hard links, this one counted

    /// Whether it is the same file and nobody has written to it in between.
    [[nodiscard]] bool isSameAs(const FileStatus& other) const {
        return id == other.id && size == other.size && modified == other.modified;
    }
};

/// The system's calls that opening, changing and replacing a file are made of. Whatever touches a
/// file that exists goes through here, so that a test can let every single call fail.
class FileCalls {
 public:
    FileCalls() = default;
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;
    virtual ~FileCalls() = default;

    /// Opens a regular file; `noFile` when there is none, it is a folder, the rights are missing
    /// or, for writing, when another process of this program writes it.
    virtual FileHandle open(const std::string& path, Access access, FileStatus& status) = 0;
    /// Makes a file that is not there yet, to be written by this process only, and marks it as
    /// temporary, so that one that a killed process left is known.
    virtual FileHandle create(const std::string& path) = 0;
    virtual void close(FileHandle file) = 0;
    /// What a path leads to now; nothing when that is no regular file.
    virtual std::optional<FileStatus> status(const std::string& path) = 0;
    /// Whether bytes that the file has can be written over without new room on the disk. Where
    /// that is not known the answer is no.
    virtual bool overwrites(FileHandle file) = 0;

    /// Both give the number of bytes done; fewer than asked for only at the end or on failure.
    virtual std::size_t read(FileHandle file, std::uint64_t offset, std::uint8_t* to,
                             std::size_t count) = 0;
    virtual std::size_t write(FileHandle file, std::uint64_t offset, Bytes bytes) = 0;
    /// Copies bytes to where a file has none yet, inside the system where it can. Holes stay holes
    /// and spans are shared where both the system and the disk do that.
    virtual bool copy(FileHandle from, std::uint64_t fromOffset, FileHandle to,
                      std::uint64_t toOffset, std::uint64_t count) = 0;
    virtual bool truncate(FileHandle file, std::uint64_t size) = 0;
    /// Brings what was written onto the disk.
    virtual bool flush(FileHandle file) = 0;
    virtual bool setModified(FileHandle file, std::int64_t modified) = 0;
    /// Gives a file the permissions, the owner and the further attributes of another, as far as the
    /// system and the user's rights have them; from `noFile`, those of a new file. False when the
    /// file still is marked as temporary.
    virtual bool carryAttributes(FileHandle from, FileHandle to) = 0;

    /// Puts a temporary file in another's place in one step. Both, `original` may be `noFile`, are
    /// closed afterwards, whatever comes of it. With `expected` only that file gives way; where
    /// another has its place the temporary one goes.
    virtual Replaced replace(FileHandle temporary, const std::string& temporaryPath,
                             FileHandle original, const std::string& path,
                             const std::optional<FileStatus>& expected) = 0;
    /// Removes a file that is open, read-only or not, if it still is what the path leads to, and
    /// closes it.
    virtual bool remove(FileHandle file, const std::string& path) = 0;
    /// Gives a closed file another name, never one that is taken.
    virtual Moved move(const std::string& from, const std::string& to) = 0;
    /// Makes a file writable for its owner; other attributes stay. False when it could not be done.
    virtual bool clearReadOnly(const std::string& path) = 0;
    /// Whether a path is itself a link, wherever that leads.
    virtual bool isLink(const std::string& path);

    /// The names of a folder's files, in no order.
    virtual std::vector<std::string> names(const std::string& folder) = 0;
    /// Makes a folder that is its owner's alone, and those above it; true when it is there already.
    virtual bool makeOwnFolder(const std::string& folder) = 0;

 protected:
    bool copyThroughMemory(FileHandle from, std::uint64_t fromOffset, FileHandle to,
                           std::uint64_t toOffset, std::uint64_t count);
};

/// The running system's.
FileCalls& systemCalls();

/// The same for files that nobody misses when the power goes: flushing does nothing.
FileCalls& unflushedCalls();

}  // namespace tavlo
