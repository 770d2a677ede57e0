#include "desk/TextStore.h"

#include <cstring>

namespace tavlo {

char* TextStore::room(std::size_t bytes) {
    constexpr std::size_t blockSize = std::size_t{1} << 16U;
    if (bytes > blockSize / 4) {
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(bytes));
        return blocks_.back().get();
    }
    if (bytes > left_) {
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(blockSize));
        free_ = blocks_.back().get();
        left_ = blockSize;
    }
    char* const place = free_;
    free_ += bytes;
    left_ -= bytes;
    return place;
}

std::string_view TextStore::add(std::string_view text) {
    if (text.empty()) return {};
    char* const place = room(text.size());
    std::memcpy(place, text.data(), text.size());
    return {place, text.size()};
}

std::string_view TextStore::shared(std::string_view text) {
    if (text.empty()) return {};
    const auto known = shared_.find(text);
    return known != shared_.end() ? *known : *shared_.insert(add(text)).first;
}

}  // namespace tavlo
