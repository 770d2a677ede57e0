#include "tags/FileRewriter.h"

#include <algorithm>
#include <optional>

#include "core/ByteCursor.h"
#include "platform/FileSystem.h"
#include "platform/TemporaryFile.h"
#include "tags/ID3v2.h"

namespace tavlo {

std::string bytesBetween(File& file, std::uint64_t begin, std::uint64_t end) {
    if (begin >= end) return {};
    return std::string(textOf(file.view(begin, static_cast<std::size_t>(end - begin))));
}

namespace {
std::string madeOf(File& file, const Pieces& pieces) {
    std::string bytes;
    for (const Piece& piece : pieces.all()) {
        bytes += piece.bytes.empty() ? bytesBetween(file, piece.begin, piece.end) : piece.bytes;
    }
    return bytes;
}

// What a killed run leaves goes on with the same sound behind its tag. Anything else that bears the
// name belongs to somebody.
bool isLeftover(File& found, File& original) {
    constexpr std::size_t compared = 4096;
    const std::uint64_t begin = ID3v2TagEnd(found);
    if (found.size() == 0) return true;
    if (begin >= found.size()) return false;
    const std::string sound = bytesBetween(found, begin, std::min(begin + compared, found.size()));
    return sound == textOf(original.view(ID3v2TagEnd(original), sound.size()));
}

class Rewriter {
 public:
    Rewriter(File& file, const NewEnds& ends, bool keepTime)
        : file_(file),
          ends_(ends),
          keepTime_(keepTime),
          oldSize_(file.size()),
          oldHead_(bytesBetween(file, 0, ends.headEnd)),
          oldTail_(bytesBetween(file, ends.tailBegin, file.size())),
          newHead_(madeOf(file, ends.head)),
          newTail_(madeOf(file, ends.tail)) {}

    Rewrite run(const std::string& path) {
        // What cannot be read cannot be put back.
        if (oldHead_.size() != ends_.headEnd || oldTail_.size() != oldSize_ - ends_.tailBegin) {
            return Rewrite::NotWritten;
        }
        const bool newHead = newHead_ != oldHead_;
        const bool newTail = newTail_ != oldTail_;
        if (!newHead && !newTail) return Rewrite::Unchanged;
        const bool headFits = newHead_.size() == oldHead_.size();
        const bool tailFits = newTail_.size() >= oldTail_.size() || oldTail_.starts_with(newTail_);
        if (!headFits || !tailFits) return throughTemporary(path);
        // The tail first: it may need room on the disk, the head never does.
        const bool done = (!newTail || writeTail()) && (!newHead || writeHead());
        if (done && keepTime_) file_.calls().setModified(file_.handle(), file_.modified());
        return done ? Rewrite::Done : Rewrite::NotWritten;
    }

 private:
    [[nodiscard]] std::optional<std::int64_t> keptTime() const {
        return keepTime_ ? std::optional(file_.modified()) : std::nullopt;
    }

    bool writeTail() {
        tailTouched_ = true;
        if (newTail_.size() < oldTail_.size()) {
            return file_.truncate(ends_.tailBegin + newTail_.size());
        }
        return file_.write(ends_.tailBegin, bytesOfText(newTail_)) || takeBack();
    }

    bool writeHead() {
        if (file_.write(0, bytesOfText(newHead_))) return true;
        file_.write(0, bytesOfText(oldHead_));
        return takeBack();
    }

    // Always false.
    bool takeBack() {
        if (tailTouched_) file_.write(ends_.tailBegin, bytesOfText(oldTail_));
        if (file_.size() > oldSize_) file_.truncate(oldSize_);
        return false;
    }

    Rewrite throughTemporary(const std::string& linkedPath) {
        const std::string path = withoutLinks(linkedPath);
        TemporaryFile temporary(file_.calls(),
                                [this](File& found) { return isLeftover(found, file_); });
        if (!temporary.createBeside(path)) return Rewrite::NotCreated;
        // What the reading of the head brought along need not be read again; and some sound has to
        // be in the first write, by which a leftover is known.
        constexpr std::uint64_t leastSound = 256;
        const std::uint64_t known = std::min(
            std::max<std::uint64_t>(File::headSize, ends_.headEnd + leastSound), ends_.tailBegin);
        const std::string sound = bytesBetween(file_, ends_.headEnd, known);
        if (sound.size() != known - ends_.headEnd) return Rewrite::NotWritten;
        const bool complete = temporary.append(newHead_ + sound) &&
                              temporary.append(file_.handle(), known, ends_.tailBegin) &&
                              (newTail_.empty() || temporary.append(newTail_)) &&
                              temporary.complete(file_.handle(), keptTime());
        if (!complete) return Rewrite::NotWritten;
        return temporary.replace(path, file_.release()) ? Rewrite::Done : Rewrite::NotWritten;
    }

    File& file_;
    const NewEnds& ends_;
    const bool keepTime_;
    const std::uint64_t oldSize_;
    const std::string oldHead_, oldTail_, newHead_, newTail_;
    bool tailTouched_ = false;
};
}  // namespace

Rewrite rewriteEnds(File& file, const std::string& path, const NewEnds& ends, bool keepTime) {
    return Rewriter(file, ends, keepTime).run(path);
}

bool wouldChange(File& file, const NewEnds& ends) {
    return bytesBetween(file, 0, ends.headEnd) != madeOf(file, ends.head) ||
           bytesBetween(file, ends.tailBegin, file.size()) != madeOf(file, ends.tail);
}

}  // namespace tavlo
