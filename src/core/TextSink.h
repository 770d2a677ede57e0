#pragma once

#include <string_view>

namespace tavlo {

/// Where finished text goes: a stream of the console, a window, a test's string.
class TextSink {
 public:
    virtual ~TextSink() = default;

    /// Writes UTF-8 as it is, without adding a line end; false when nobody can take more.
    virtual bool write(std::string_view text) = 0;
};

}  // namespace tavlo
