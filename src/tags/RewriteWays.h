#pragma once

#include <cstdint>
#include <string>

namespace tavlo {

/// How a file may be changed.
struct RewriteWays {
    /// Files up to this size, in bytes, are rather written anew than saved from.
    static constexpr std::uint64_t usualSmallFile = std::uint64_t{1} << 19U;

    /// Where old bytes are kept while they are written over; empty: more than a page never is.
    std::string rescueFolder = {};
    std::uint64_t smallFile = usualSmallFile;
};

}  // namespace tavlo
