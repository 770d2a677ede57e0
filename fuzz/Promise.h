#pragma once

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/File.h"

namespace tavlo {

/// Ends the run, so that the input is reported, when a promise of the code is not kept.
inline void promise(bool kept) {
    if (!kept) std::abort();
}

/// Cuts a piece off the input's front: up to the next NUL, which is taken too.
inline std::string_view takePiece(std::string_view& input) {
    const std::size_t end = input.find('\0');
    const std::string_view piece = input.substr(0, end);
    input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
    return piece;
}

}  // namespace tavlo
