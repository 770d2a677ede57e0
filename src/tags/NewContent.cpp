#include "tags/NewContent.h"

#include <algorithm>
#include <memory>

namespace tavlo {

namespace {
constexpr std::size_t blockSize = std::size_t{1} << 16U;

std::uint64_t pageOf(std::uint64_t offset) {
    return offset / NewContent::pageSize;
}

void note(std::uint64_t begin, std::uint64_t end, std::vector<NewContent::Change>& changes) {
    if (!changes.empty() && pageOf(begin) <= pageOf(changes.back().end - 1) + 1) {
        changes.back().end = end;
    } else {
        changes.push_back({begin, end});
    }
}

// `begin` is where both lie in the file.
void noteDifferences(std::uint64_t begin, Bytes before, Bytes after,
                     std::vector<NewContent::Change>& changes) {
    for (std::size_t at = 0; at < before.size();) {
        const auto left =
            static_cast<std::size_t>(NewContent::pageSize - (begin + at) % NewContent::pageSize);
        const std::size_t count = std::min(left, before.size() - at);
        const Bytes old = before.subspan(at, count), fresh = after.subspan(at, count);
        if (!std::ranges::equal(old, fresh)) {
            const auto first = std::ranges::mismatch(old, fresh).in1;
            const auto last = std::mismatch(old.rbegin(), old.rend(), fresh.rbegin()).first;
            note(begin + at + static_cast<std::size_t>(first - old.begin()),
                 begin + at + static_cast<std::size_t>(old.rend() - last), changes);
        }
        at += count;
    }
}
}  // namespace

NewContent::NewContent(File& file, const NewEnds& ends) : file_(file) {
    add(ends.head);
    add(Part{0, ends.tailBegin - ends.headEnd, ends.headEnd});
    add(ends.tail);
}

void NewContent::add(const Pieces& pieces) {
    for (const Piece& piece : pieces.all()) {
        add(Part{0, piece.size(), piece.begin, piece.bytes.empty() ? nullptr : &piece.bytes});
    }
}

void NewContent::add(const Part& part) {
    const std::uint64_t begin = size();
    if (part.end > 0) parts_.push_back({begin, begin + part.end, part.old, part.bytes});
}

bool NewContent::read(std::uint64_t offset, std::uint8_t* to, std::size_t count) const {
    auto part = std::ranges::upper_bound(parts_, offset, {}, &Part::end);
    for (; count > 0 && part != parts_.end(); ++part) {
        const std::uint64_t skipped = offset - part->begin;
        const auto step =
            static_cast<std::size_t>(std::min<std::uint64_t>(count, part->end - offset));
        const Bytes bytes =
            part->bytes == nullptr
                ? file_.view(part->old + skipped, step)
                : bytesOfText(*part->bytes).subspan(static_cast<std::size_t>(skipped), step);
        if (bytes.size() != step) return false;
        to = std::ranges::copy(bytes, to).out;
        offset += step;
        count -= step;
    }
    return count == 0;
}

bool NewContent::compare(const Part& part, std::vector<Change>& changes) const {
    if (part.bytes == nullptr && part.old == part.begin) return true;
    const auto block = std::make_unique_for_overwrite<std::uint8_t[]>(blockSize);
    const std::uint64_t end = std::min(part.end, file_.size());
    for (std::uint64_t at = part.begin; at < end;) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(end - at, blockSize - at % pageSize));
        if (!read(at, block.get(), count)) return false;
        const Bytes old = file_.view(at, count);
        if (old.size() != count) return false;
        noteDifferences(at, old, {block.get(), count}, changes);
        at += count;
    }
    return true;
}

std::optional<std::vector<NewContent::Change>> NewContent::changes() const {
    std::vector<Change> changes;
    for (const Part& part : parts_) {
        if (!compare(part, changes)) return std::nullopt;
    }
    if (size() > file_.size()) changes.push_back({file_.size(), size()});
    return changes;
}

}  // namespace tavlo
