#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/File.h"
#include "tags/Pieces.h"

namespace tavlo {

/// New bytes for a file's two ends. What lies between `headEnd` and `tailBegin` stays.
struct NewEnds {
    std::uint64_t headEnd = 0;  ///< `head` takes the place of the bytes before it
    Pieces head;
    std::uint64_t tailBegin = 0;  ///< `tail` takes the place of the bytes from it on
    Pieces tail;
};

/// The file as it is to become, of which only the pieces that were given are in memory.
class NewContent {
 public:
    /// One piece in its new place.
    struct Part {
        std::uint64_t begin = 0, end = 0;
        std::uint64_t old = 0;               ///< where its bytes are in the file, unless
        const std::string* bytes = nullptr;  ///< they are here
    };
    /// A run of bytes that differ from the file's.
    struct Change {
        std::uint64_t begin = 0, end = 0;
    };
    /// What the disk writes at once.
    static constexpr std::uint64_t pageSize = 4096;

    NewContent(File& file, const NewEnds& ends);

    [[nodiscard]] std::uint64_t size() const { return parts_.empty() ? 0 : parts_.back().end; }
    [[nodiscard]] const std::vector<Part>& parts() const { return parts_; }

    /// Bytes of the new file; false when the old one cannot be read.
    bool read(std::uint64_t offset, std::uint8_t* to, std::size_t count) const;

    /// What is to be written, in ascending order, runs in neighbouring pages as one; bytes behind
    /// the file's end are a run of their own. Nothing when the old bytes cannot be read.
    [[nodiscard]] std::optional<std::vector<Change>> changes() const;

 private:
    void add(const Pieces& pieces);
    void add(const Part& part);
    bool compare(const Part& part, std::vector<Change>& changes) const;

    File& file_;
    std::vector<Part> parts_;
};

}  // namespace tavlo
