#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tavlo {

/// Keeps texts of many rows close together. What it gave stays where it is as long as the store
/// lives, so one thread may add texts while others read what they were handed.
class TextStore {
 public:
    /// A copy of the text.
    std::string_view add(std::string_view text);

    /// The same copy for equal texts: for names of folders, artists and albums.
    std::string_view shared(std::string_view text);

 private:
    char* room(std::size_t bytes);

    std::vector<std::unique_ptr<char[]>> blocks_;
    char* free_ = nullptr;
    std::size_t left_ = 0;
    std::unordered_set<std::string_view> shared_;
};

}  // namespace tavlo
