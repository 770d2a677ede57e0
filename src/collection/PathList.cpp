#include "collection/PathList.h"

#include <bit>

#include "core/TextCase.h"

namespace tavlo {

std::string_view PathList::operator[](std::size_t index) const {
    return text_.data() + starts_[index];
}

std::size_t PathList::slotFor(std::string_view path, Match match) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hashNoCase(path) & mask;
    while (slots_[slot] != 0) {
        const std::string_view held = (*this)[slots_[slot] - 1];
        if (match == Match::Exact ? held == path : equalsNoCase(held, path)) break;
        slot = (slot + 1) & mask;
    }
    return slot;
}

bool PathList::add(std::string_view path, Match match) {
    if (indexed_ < count() || (count() + 1) * 4 > slots_.size() * 3) rebuildSlots(count() + 1);
    const std::size_t slot = slotFor(path, match);
    if (slots_[slot] != 0) return false;
    append(path);
    slots_[slot] = static_cast<std::uint32_t>(count());
    indexed_ = count();
    return true;
}

void PathList::append(std::string_view path) {
    starts_.push_back(text_.size());
    text_.append(path);
    text_ += '\0';
}

// Room for so many paths and as many again.
void PathList::rebuildSlots(std::size_t room) {
    slots_.assign(std::bit_ceil(room * 2 + 16), 0);
    for (std::size_t i = 0; i < starts_.size(); ++i) {
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = hashNoCase((*this)[i]) & mask;
        while (slots_[slot] != 0) slot = (slot + 1) & mask;
        slots_[slot] = static_cast<std::uint32_t>(i + 1);
    }
    indexed_ = count();
}

void PathList::dropIndex() {
    slots_.clear();
    indexed_ = 0;
}

void PathList::remove(std::size_t index) {
    starts_.erase(starts_.begin() + static_cast<std::ptrdiff_t>(index));
    dropIndex();
}

void PathList::clear() {
    *this = PathList();
}

void PathList::arrange(const std::vector<std::uint32_t>& indexes) {
    PathList arranged;
    arranged.text_.reserve(text_.size());
    arranged.starts_.reserve(indexes.size());
    for (const std::uint32_t index : indexes) arranged.append((*this)[index]);
    *this = std::move(arranged);
}

}  // namespace tavlo
