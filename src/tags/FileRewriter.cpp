#include "tags/FileRewriter.h"

#include <algorithm>

#include "core/PathText.h"
#include "platform/FileSystem.h"
#include "tags/ByteCursor.h"
#include "tags/ID3v2.h"

namespace tavlo {

std::string bytesBetween(File& file, std::uint64_t begin, std::uint64_t end) {
    if (begin >= end) return {};
    return std::string(textOf(file.view(begin, static_cast<std::size_t>(end - begin))));
}

namespace {
constexpr std::string_view temporaryEnding = ".tmp";

// A killed run leaves a file with the mark of a temporary one, which goes on with the same sound
// behind its tag. Anything else that bears the name belongs to somebody.
bool isLeftover(File& found, File& original) {
    constexpr std::size_t compared = 4096;
    if (!found.isTemporary()) return false;
    const std::uint64_t begin = ID3v2TagEnd(found);
    if (found.size() == 0) return true;
    if (begin >= found.size()) return false;
    const std::string sound = bytesBetween(found, begin, std::min(begin + compared, found.size()));
    return sound == textOf(original.view(ID3v2TagEnd(original), sound.size()));
}

// A file beside the one it is to replace. Unless `moveTo` succeeds it goes away again.
class TemporaryFile {
 public:
    explicit TemporaryFile(File& original) : original_(original), calls_(original.calls()) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (handle_ != noFile) calls_.remove(handle_, path_);
    }

    // The plain name may belong to somebody else's file, or be too long.
    bool createBeside(const std::string& path) {
        constexpr int mostNames = 9;
        if (create(path + std::string(temporaryEnding))) return true;
        const std::string_view folder = folderOf(path, nativePathStyle());
        for (int i = 1; i <= mostNames; ++i) {
            const std::string name = "tavlo-" + std::to_string(i) + std::string(temporaryEnding);
            if (create(joinPath(folder, name, nativePathStyle()))) return true;
        }
        return false;
    }

    bool append(std::string_view bytes) {
        const bool done = calls_.write(handle_, size_, bytesOfText(bytes)) == bytes.size();
        size_ += bytes.size();
        return done;
    }

    bool appendFromOriginal(std::uint64_t begin, std::uint64_t end) {
        const bool done = calls_.copy(original_.handle(), begin, handle_, size_, end - begin);
        size_ += end - begin;
        return done;
    }

    // The mark goes last, right before the file is moved.
    bool complete(bool keepTime) {
        if (keepTime) calls_.setModified(handle_, original_.modified());
        return calls_.flush(handle_) && calls_.carryAttributes(original_.handle(), handle_);
    }

    bool moveTo(const std::string& path) {
        const FileHandle handle = handle_;
        handle_ = noFile;
        if (calls_.replace(handle, path_, original_.release(), path)) return true;
        removeUnmoved();
        return false;
    }

 private:
    bool create(const std::string& path) {
        handle_ = calls_.create(path);
        if (handle_ == noFile && removeLeftover(path)) handle_ = calls_.create(path);
        path_ = path;
        return handle_ != noFile;
    }

    bool removeLeftover(const std::string& path) {
        File found(calls_);
        if (!found.open(path, Access::ReadWrite) || !isLeftover(found, original_)) return false;
        return calls_.remove(found.release(), path);
    }

    void removeUnmoved() {
        File found(calls_);
        if (found.open(path_, Access::ReadWrite)) calls_.remove(found.release(), path_);
    }

    File& original_;
    FileCalls& calls_;
    std::string path_;
    FileHandle handle_ = noFile;
    std::uint64_t size_ = 0;
};

class Rewriter {
 public:
    Rewriter(File& file, const NewEnds& ends, bool keepTime)
        : file_(file),
          ends_(ends),
          keepTime_(keepTime),
          oldSize_(file.size()),
          oldHead_(bytesBetween(file, 0, ends.headEnd)),
          oldTail_(bytesBetween(file, ends.tailBegin, file.size())) {}

    Rewrite run(const std::string& path) {
        // What cannot be read cannot be put back.
        if (oldHead_.size() != ends_.headEnd || oldTail_.size() != oldSize_ - ends_.tailBegin) {
            return Rewrite::NotWritten;
        }
        const bool newHead = ends_.head != oldHead_, newTail = ends_.tail != oldTail_;
        if (!newHead && !newTail) return Rewrite::Unchanged;
        const bool headFits = ends_.head.size() == oldHead_.size();
        const bool tailFits =
            ends_.tail.size() >= oldTail_.size() || oldTail_.starts_with(ends_.tail);
        if (!headFits || !tailFits) return throughTemporary(path);
        // The tail first: it may need room on the disk, the head never does.
        const bool done = (!newTail || writeTail()) && (!newHead || writeHead());
        if (done && keepTime_) file_.calls().setModified(file_.handle(), file_.modified());
        return done ? Rewrite::Done : Rewrite::NotWritten;
    }

 private:
    bool writeTail() {
        tailTouched_ = true;
        if (ends_.tail.size() < oldTail_.size()) {
            return file_.truncate(ends_.tailBegin + ends_.tail.size());
        }
        return file_.write(ends_.tailBegin, bytesOfText(ends_.tail)) || takeBack();
    }

    bool writeHead() {
        if (file_.write(0, bytesOfText(ends_.head))) return true;
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
        TemporaryFile temporary(file_);
        if (!temporary.createBeside(path)) return Rewrite::NotCreated;
        // What the reading of the head brought along need not be read again; and some sound has to
        // be in the first write, by which a leftover is known.
        constexpr std::uint64_t leastSound = 256;
        const std::uint64_t known = std::min(
            std::max<std::uint64_t>(File::headSize, ends_.headEnd + leastSound), ends_.tailBegin);
        const std::string sound = bytesBetween(file_, ends_.headEnd, known);
        if (sound.size() != known - ends_.headEnd) return Rewrite::NotWritten;
        const bool complete = temporary.append(ends_.head + sound) &&
                              temporary.appendFromOriginal(known, ends_.tailBegin) &&
                              (ends_.tail.empty() || temporary.append(ends_.tail)) &&
                              temporary.complete(keepTime_);
        if (!complete) return Rewrite::NotWritten;
        return temporary.moveTo(path) ? Rewrite::Done : Rewrite::NotWritten;
    }

    File& file_;
    const NewEnds& ends_;
    const bool keepTime_;
    const std::uint64_t oldSize_;
    const std::string oldHead_, oldTail_;
    bool tailTouched_ = false;
};
}  // namespace

Rewrite rewriteEnds(File& file, const std::string& path, const NewEnds& ends, bool keepTime) {
    return Rewriter(file, ends, keepTime).run(path);
}

bool wouldChange(File& file, const NewEnds& ends) {
    return bytesBetween(file, 0, ends.headEnd) != ends.head ||
           bytesBetween(file, ends.tailBegin, file.size()) != ends.tail;
}

}  // namespace tavlo
