#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

namespace tavlo {

/// Makes the folder `to` anew, with the files of `from`, and brings it to the disk. With
/// `create_hard_links` the files have the new names besides their own, which is enough for a
/// measurement that changes names alone.
inline bool copyFresh(const std::string& from, const std::string& to,
                      std::filesystem::copy_options options = {}) {
    std::error_code error;
    std::filesystem::remove_all(to, error);
    std::filesystem::copy(from, to, options, error);
    ::sync();
    return !error;
}

}  // namespace tavlo
