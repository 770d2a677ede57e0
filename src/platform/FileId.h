#pragma once

#include <cstdint>

namespace tavlo {

/// What tells one file or folder from every other, whatever path leads to it.
struct FileId {
    std::uint64_t volume = 0, index = 0;
    bool operator==(const FileId&) const = default;
};

}  // namespace tavlo
