#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace tavlo {

/// Bytes of a file, valid until the next view of the same file.
using Bytes = std::span<const std::uint8_t>;

enum class Access { Read, ReadWrite };

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

    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    /// Opens a regular file; false when there is none, it is a folder or the rights are missing.
    bool open(const std::string& path, Access access);
    /// Reads from `bytes`, which must outlive this object.
    void openMemory(Bytes bytes);
    void close();

    [[nodiscard]] std::uint64_t size() const { return size_; }
    /// Whether the file's attributes (elsewhere: its owner's rights) forbid writing.
    [[nodiscard]] bool isReadOnly() const { return readOnly_; }
    [[nodiscard]] bool isWritable() const { return access_ == Access::ReadWrite && isOpen(); }

    /// The bytes from `offset`, fewer than `count` only where the file ends or cannot be read.
    Bytes view(std::uint64_t offset, std::size_t count);

    /// Cuts the file; false (and no change) on a handle opened for reading.
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

    // The system's part: one call each.
    bool openHandle(const std::string& path, Access access);
    void closeHandle() const;
    std::size_t readHandle(std::uint64_t offset, std::uint8_t* to, std::size_t count) const;
    bool truncateHandle(std::uint64_t size) const;

    [[nodiscard]] bool isOpen() const { return handle_ != noHandle; }
    void load(Window& window, std::uint8_t* buffer, std::uint64_t offset, std::size_t count) const;

    static constexpr std::intptr_t noHandle = -1;
    std::intptr_t handle_ = noHandle;
    Access access_ = Access::Read;
    std::uint64_t size_ = 0;
    bool readOnly_ = false;
    Window head_, tail_, middle_;
    std::unique_ptr<std::uint8_t[]> middleBuffer_;  // not a vector: bytes to be read need no zeroes
    std::size_t middleRoom_ = 0;
    std::array<std::uint8_t, tailSize> tailBuffer_;
    std::array<std::uint8_t, headSize> headBuffer_;
};

/// A whole file; nothing when it cannot be read or is larger than `most` bytes.
std::optional<std::string> readFile(const std::string& path, std::uint64_t most);

}  // namespace tavlo
