#include "platform/TemporaryFile.h"

#include <algorithm>

#include "platform/FileSystem.h"

namespace tavlo {

namespace {
constexpr std::string_view temporaryEnding = ".tmp";

bool sameBytes(File& a, File& b) {
    constexpr std::size_t block = std::size_t{1} << 18U;
    if (a.size() != b.size()) return false;
    for (std::uint64_t at = 0; at < a.size(); at += block) {
        const Bytes left = a.view(at, block);
        const Bytes right = b.view(at, block);
        const std::uint64_t wanted = std::min<std::uint64_t>(block, a.size() - at);
        if (left.size() != wanted || !std::ranges::equal(left, right)) return false;
    }
    return true;
}
}  // namespace

bool TemporaryFile::createBeside(const std::string& path) {
    constexpr int mostNames = 9;
    if (create(path + std::string(temporaryEnding))) return true;
    const std::string folder = path.substr(0, path.find_last_of(nativeSeparator()) + 1);
    for (int i = 1; i <= mostNames; ++i) {
        if (create(folder + "tavlo-" + std::to_string(i) + std::string(temporaryEnding))) {
            return true;
        }
    }
    return false;
}

bool TemporaryFile::create(const std::string& path) {
    handle_ = calls_.create(path);
    if (handle_ == noFile && removeLeftover(path)) handle_ = calls_.create(path);
    path_ = path;
    exists_ = handle_ != noFile;
    return exists_;
}

bool TemporaryFile::removeLeftover(const std::string& path) {
    File found(calls_);
    if (calls_.isLink(path) || !found.open(path, Access::ReadWrite)) return false;
    if (!found.isTemporary() || !isLeftover_(found)) return false;
    return calls_.remove(found.release(), path);
}

bool TemporaryFile::append(std::string_view bytes) {
    const Bytes all = bytesOfText(bytes);
    const bool done = calls_.write(handle_, size_, all) == all.size();
    size_ += all.size();
    return done;
}

bool TemporaryFile::append(FileHandle from, std::uint64_t begin, std::uint64_t end) {
    const bool done = calls_.copy(from, begin, handle_, size_, end - begin);
    size_ += end - begin;
    return done;
}

bool TemporaryFile::complete(FileHandle like, std::optional<std::int64_t> modified) {
    if (modified) calls_.setModified(handle_, *modified);
    return calls_.flush(handle_) && calls_.carryAttributes(like, handle_);
}

bool TemporaryFile::replace(const std::string& path, FileHandle original) {
    const FileHandle handle = handle_;
    handle_ = noFile;
    exists_ = !calls_.replace(handle, path_, original, path);
    return !exists_;
}

bool TemporaryFile::holdsAllOf(File& source) {
    close();
    File written(calls_);
    return written.open(path_, Access::Read) && sameBytes(source, written);
}

Moved TemporaryFile::moveTo(const std::string& path) {
    close();
    const Moved moved = calls_.move(path_, path);
    exists_ = moved != Moved::Done;
    return moved;
}

void TemporaryFile::close() {
    if (handle_ != noFile) calls_.close(handle_);
    handle_ = noFile;
}

void TemporaryFile::discard() {
    if (!exists_) return;
    if (handle_ != noFile) {
        calls_.remove(handle_, path_);
        return;
    }
    File found(calls_);
    if (found.open(path_, Access::ReadWrite) || found.open(path_, Access::Read)) {
        calls_.remove(found.release(), path_);
    }
}

}  // namespace tavlo
