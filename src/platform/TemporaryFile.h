#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/File.h"

namespace tavlo {

/// A file beside the place that it is to take when it is whole. Unless it gets there it goes away
/// again.
class TemporaryFile {
 public:
    /// Whether a file with a temporary's name and mark is one that a killed run left.
    using IsLeftover = std::function<bool(File& found)>;

    explicit TemporaryFile(
        FileCalls& calls, IsLeftover isLeftover = [](File&) { return true; })
        : calls_(calls), isLeftover_(std::move(isLeftover)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { discard(); }

    /// Makes it beside `path`, named after it with ".tmp", or otherwise where that name belongs to
    /// somebody else's file or is too long. A leftover makes room.
    bool createBeside(const std::string& path);

    bool append(std::string_view bytes);
    bool append(FileHandle from, std::uint64_t begin, std::uint64_t end);

    /// Brings it to the disk and gives it the attributes of `like`, or of a new file where that is
    /// `noFile`. The mark goes with that, so it is the last thing before the file takes its place.
    bool complete(FileHandle like, std::optional<std::int64_t> modified);

    /// Takes the place of another file in one step; `original` may be `noFile` and is closed. With
    /// `expected` no other file than that gives way.
    Replaced replace(const std::string& path, FileHandle original,
                     const std::optional<FileStatus>& expected = {});

    /// Whether its bytes, read back, are those of `source`. Nothing can be appended any more.
    bool holdsAllOf(File& source);

    /// Becomes a file that is not there yet.
    Moved moveTo(const std::string& path);

 private:
    bool create(const std::string& path);
    bool removeLeftover(const std::string& path);
    void close();
    void discard();

    FileCalls& calls_;
    IsLeftover isLeftover_;
    std::string path_;
    FileHandle handle_ = noFile;  // open while it is written
    bool exists_ = false;
    std::uint64_t size_ = 0;
};

}  // namespace tavlo
