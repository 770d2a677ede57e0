#pragma once

#include <string>
#include <string_view>

namespace tavlo {

/// A mask for file names, compared without case: `*` any run of characters, `?` one character,
/// `#` one digit, `[a-c]` one of a set, `[!a-c]` none of it. "*.*" takes every name.
class WildcardMask {
 public:
    explicit WildcardMask(std::string_view mask);

    [[nodiscard]] bool takesAll() const { return mask_ == U"*"; }
    [[nodiscard]] bool matches(std::string_view name) const;

 private:
    std::u32string mask_;  // in lower case
};

}  // namespace tavlo
