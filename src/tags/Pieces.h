#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tavlo {

/// A run of a file's new content: bytes that the file has already, wherever they lie, or new ones.
struct Piece {
    std::uint64_t begin = 0, end = 0;  ///< of the old file; both 0 where the bytes are new
    std::string bytes;

    [[nodiscard]] std::uint64_t size() const { return bytes.empty() ? end - begin : bytes.size(); }
};

/// New content of a part of a file, so that bytes that only stay or move need not be in memory.
class Pieces {
 public:
    Pieces() = default;
    Pieces(std::string bytes) { add(std::move(bytes)); }  // NOLINT: new bytes are pieces

    void add(std::string bytes) {
        constexpr std::size_t mostJoined = 1U << 16U;
        if (bytes.empty()) return;
        size_ += bytes.size();
        const bool isJoined = !all_.empty() && !all_.back().bytes.empty();
        if (isJoined && bytes.size() < mostJoined) {
            all_.back().bytes += bytes;
        } else {
            all_.push_back({0, 0, std::move(bytes)});
        }
    }
    /// Bytes of the old file from one offset to another.
    void addOld(std::uint64_t begin, std::uint64_t end) {
        if (begin >= end) return;
        size_ += end - begin;
        if (!all_.empty() && all_.back().bytes.empty() && all_.back().end == begin) {
            all_.back().end = end;
        } else {
            all_.push_back({begin, end, {}});
        }
    }
    void add(Pieces other) {
        for (Piece& piece : other.all_) {
            piece.bytes.empty() ? addOld(piece.begin, piece.end) : add(std::move(piece.bytes));
        }
    }

    [[nodiscard]] std::uint64_t size() const { return size_; }
    [[nodiscard]] const std::vector<Piece>& all() const { return all_; }

 private:
    std::vector<Piece> all_;
    std::uint64_t size_ = 0;
};

}  // namespace tavlo
