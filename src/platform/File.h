#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/FileCalls.h"

namespace tavlo {

/// An open file, read through windows: one read covers its head, one its tail, and only what lies
/// between them costs more. A file may also be bytes in memory.
class File {
 public:
    /// Bytes read at once from the file's start: a usual tag and the audio's first frames.
    static constexpr std::size_t headSize = 4096;
    /// Bytes read at once from the file's end: an ID3v1 block and the footer in front of it.
    static constexpr std::size_t tailSize = 300;
    /// Least bytes read at once anywhere else. All three are small because copying costs more than
    /// calling: most of a list's time goes into bytes that come out of the page cache.
    static constexpr std::size_t windowSize = 1024;

    explicit File(FileCalls& calls = systemCalls()) : calls_(calls) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    /// Opens a regular file; false when there is none, it is a folder or the rights are missing.
    bool open(const std::string& path, Access access);
    /// Reads from `bytes`, which must outlive this object.
    void openMemory(Bytes bytes);
    void close();

    [[nodiscard]] std::uint64_t size() const { return status_.size; }
    /// Whether the file's attributes (elsewhere: its owner's rights) forbid writing.
    [[nodiscard]] bool isReadOnly() const { return status_.isReadOnly; }
    /// The time of the last change before the file was opened.
    [[nodiscard]] std::int64_t modified() const { return status_.modified; }
    [[nodiscard]] bool isWritable() const { return access_ != Access::Read && isOpen(); }
    [[nodiscard]] bool isTemporary() const { return status_.isTemporary; }
    /// As it was when the file was opened, but for the size, which follows what is written here.
    [[nodiscard]] const FileStatus& status() const { return status_; }
    /// Under how many names it can be found.
    [[nodiscard]] std::uint64_t names() const { return status_.names; }
    [[nodiscard]] FileHandle handle() const { return handle_; }
    /// Gives the handle away without closing it.
    FileHandle release();
    /// Whether bytes that the file has could not be read.
    [[nodiscard]] bool hasFailed() const { return failed_; }
    [[nodiscard]] FileCalls& calls() const { return calls_; }

    /// The bytes from `offset`, fewer than `count` only where the file ends or cannot be read. They
    /// hold until the next view of this file or change to it.
    Bytes view(std::uint64_t offset, std::size_t count);

    /// Writes all the bytes or tells that it failed; a part of them may then be written. Beyond the
    /// end the file grows. Both change nothing on a handle opened for reading.
    bool write(std::uint64_t offset, Bytes bytes);
    bool truncate(std::uint64_t size);

 private:
    // A run of bytes that lies in memory: file offset of its first byte, and the bytes.
    struct Window {
        std::uint64_t offset = 0;
        Bytes bytes;
        [[nodiscard]] bool covers(std::uint64_t from, std::size_t count) const {
            return from >= offset && from + count <= offset + bytes.size();
        }
    };

    [[nodiscard]] bool isOpen() const { return handle_ != noFile; }
    void load(Window& window, std::uint8_t* buffer, std::uint64_t offset, std::size_t count);
    void dropWindows() { head_ = tail_ = middle_ = {}; }

    FileCalls& calls_;
    FileHandle handle_ = noFile;
    Access access_ = Access::Read;
    FileStatus status_;
    bool failed_ = false;
    Window head_, tail_, middle_;
    std::unique_ptr<std::uint8_t[]> middleBuffer_;  // not a vector: bytes to be read need no zeroes
    std::size_t middleRoom_ = 0;
    std::array<std::uint8_t, tailSize> tailBuffer_;
    std::array<std::uint8_t, headSize> headBuffer_;
};

/// A whole file; nothing when it cannot be read, is larger than `most` bytes, or `cancel` is set
/// meanwhile.
std::optional<std::string> readFile(const std::string& path, std::uint64_t most,
                                    const std::atomic<bool>* cancel = nullptr);

}  // namespace tavlo
