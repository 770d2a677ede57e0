#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavlo {

/// An ordered list of paths, each held once; built for hundreds of thousands: a path costs its
/// bytes and about 20 more.
class PathList {
 public:
    /// Which paths count as the same one.
    enum class Match { WithoutCase, Exact };

    [[nodiscard]] std::size_t count() const { return starts_.size(); }
    [[nodiscard]] std::string_view operator[](std::size_t index) const;

    /// Appends the path unless it is there already; tells whether it was appended.
    bool add(std::string_view path, Match match);
    /// Appends a path that is known to be new, which costs no look-up.
    void append(std::string_view path);
    void remove(std::size_t index);
    void clear();

    /// Puts the paths into the order of `indexes`, which names each path to be kept once.
    void arrange(const std::vector<std::uint32_t>& indexes);

 private:
    [[nodiscard]] std::size_t slotFor(std::string_view path, Match match) const;
    void rebuildSlots(std::size_t room);
    void dropIndex();

    std::string text_;                   // every path, ended by a NUL
    std::vector<std::uint64_t> starts_;  // where each begins in text_
    std::vector<std::uint32_t> slots_;   // open addressing: 1-based index, 0 = free
    std::size_t indexed_ = 0;            // how many paths slots_ knows; it is made when needed
};

}  // namespace tavlo
