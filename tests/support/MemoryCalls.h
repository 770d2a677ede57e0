#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileCalls.h"

namespace tavlo::test {

enum class Fault {
    None,
    Fails,       ///< one call does nothing and says so
    StopsShort,  ///< one call does half of its bytes and says so
    Killed,      ///< from one call on nothing has an effect, as if the process were gone
    FailsOn      ///< from one call on all do nothing and say so
};

/// What writing over old bytes asks of a disk: nothing, or new room for every page.
enum class DiskKind { Overwriting, CopyOnWrite };

/// Files in memory. The calls that change something are counted from 1, and one of them can be
/// made to fail; a write may get some whole pages done before that. As on the strictest system, a
/// file that is open is neither replaced nor removed, and one that was not flushed takes no other's
/// place.
class MemoryCalls final : public FileCalls {
 public:
    struct Stored {
        std::string bytes;
        std::int64_t modified = 0;
        bool isReadOnly = false;
        bool isFlushed = true;
        bool isTemporary = false;
        std::uint64_t index = 0;
        bool isLink = false;
    };
    static constexpr std::size_t pageSize = 4096;

    DiskKind disk = DiskKind::Overwriting;

    /// Counts anew; `fault` strikes the `at`th call, which writes so many pages first.
    void strike(Fault fault, std::size_t at, std::size_t pages = 0) {
        fault_ = fault;
        at_ = at;
        done_ = 0;
        pages_ = pages;
        struckPages_ = 0;
    }
    /// That the call which was struck was to write.
    [[nodiscard]] std::size_t struckPages() const { return struckPages_; }
    /// The disk takes so many bytes more.
    void limitRoom(std::optional<std::size_t> room) { room_ = room; }

    [[nodiscard]] std::size_t operations() const { return done_; }
    [[nodiscard]] std::size_t openFiles() const { return open_.size(); }
    [[nodiscard]] std::size_t count() const { return files_.size(); }
    [[nodiscard]] std::size_t temporaryFiles() const {
        return static_cast<std::size_t>(std::count_if(
            files_.begin(), files_.end(), [](const auto& f) { return f.second->isTemporary; }));
    }
    [[nodiscard]] bool contains(const std::string& path) const { return files_.contains(path); }
    [[nodiscard]] const Stored& at(const std::string& path) const { return *files_.at(path); }
    Stored& put(const std::string& path, std::string bytes) {
        auto& file = files_[path] = std::make_shared<Stored>();
        *file = {std::move(bytes), ++clock_};
        file->index = ++lastIndex_;
        return *file;
    }

    /// What another program writes into a file that stays the same one.
    void touch(const std::string& path, std::string bytes) {
        files_.at(path)->bytes = std::move(bytes);
        files_.at(path)->modified = ++clock_;
    }
    /// Bytes that were written into files that are no temporary ones.
    [[nodiscard]] std::size_t writtenOver() const { return writtenOver_; }
    [[nodiscard]] std::size_t flushesOfTemporaryFiles() const { return flushes_; }

    FileHandle open(const std::string& path, Access access, FileStatus& status) override {
        const auto found = files_.find(path);
        if (isKilled() || found == files_.end()) return noFile;
        const Stored& file = *found->second;
        if (access == Access::ReadWrite && file.isReadOnly) return noFile;
        if (access == Access::Own && file.isLink) return noFile;
        status = statusOf(file);
        return opened(found->second);
    }
    FileHandle create(const std::string& path) override {
        if (!happens() || files_.contains(path)) return noFile;
        put(path, {}).isTemporary = true;
        return opened(files_[path]);
    }
    void close(FileHandle file) override { open_.erase(file); }
    std::optional<FileStatus> status(const std::string& path) override {
        const auto found = files_.find(path);
        if (isKilled() || found == files_.end()) return std::nullopt;
        return statusOf(*found->second);
    }
    bool overwrites(FileHandle) override { return disk == DiskKind::Overwriting; }

    std::size_t read(FileHandle file, std::uint64_t offset, std::uint8_t* to,
                     std::size_t count) override {
        const std::string& bytes = open_.at(file)->bytes;
        if (isKilled() || offset >= bytes.size()) return 0;
        return bytes.copy(reinterpret_cast<char*>(to), count, static_cast<std::size_t>(offset));
    }
    std::size_t write(FileHandle file, std::uint64_t offset, Bytes bytes) override {
        return store(file, offset, bytes.first(share(offset, bytes.size())));
    }
    bool copy(FileHandle from, std::uint64_t fromOffset, FileHandle to, std::uint64_t toOffset,
              std::uint64_t count) override {
        const std::string bytes = open_.at(from)->bytes.substr(
            static_cast<std::size_t>(fromOffset), share(toOffset, static_cast<std::size_t>(count)));
        const Bytes part(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        return store(to, toOffset, part) == count;
    }
    bool truncate(FileHandle file, std::uint64_t size) override {
        return happens() && resize(*open_.at(file), static_cast<std::size_t>(size));
    }
    bool flush(FileHandle file) override {
        if (open_.at(file)->isTemporary) ++flushes_;
        return happens() && (open_.at(file)->isFlushed = true);
    }
    bool setModified(FileHandle file, std::int64_t modified) override {
        if (!happens()) return false;
        open_.at(file)->modified = modified;
        return true;
    }
    bool carryAttributes(FileHandle from, FileHandle to) override {
        if (!happens()) return false;
        open_.at(to)->isReadOnly = from != noFile && open_.at(from)->isReadOnly;
        open_.at(to)->isTemporary = false;
        return true;
    }
    Replaced replace(FileHandle temporary, const std::string& temporaryPath, FileHandle original,
                     const std::string& path, const std::optional<FileStatus>& expected) override {
        close(temporary);
        close(original);
        if (!happens() || isOpen(temporaryPath) || isOpen(path)) return Replaced::Failed;
        if (!files_.at(temporaryPath)->isFlushed) return Replaced::Failed;
        if (expected && !(contains(path) && expected->isSameAs(statusOf(at(path))))) {
            files_.erase(temporaryPath);
            return Replaced::OtherFile;
        }
        files_[path] = files_.at(temporaryPath);
        files_.erase(temporaryPath);
        return Replaced::Done;
    }
    bool remove(FileHandle file, const std::string& path) override {
        close(file);
        return happens() && !isOpen(path) && files_.erase(path) > 0;
    }
    Moved move(const std::string& from, const std::string& to) override {
        if (!happens() || !files_.contains(from) || isOpen(from)) return Moved::Failed;
        if (files_.contains(to)) return Moved::Exists;
        if (diskOf(from) != diskOf(to)) return Moved::OtherDisk;
        files_[to] = files_.at(from);
        files_.erase(from);
        return Moved::Done;
    }
    bool clearReadOnly(const std::string& path) override {
        if (!happens() || !files_.contains(path)) return false;
        files_[path]->isReadOnly = false;
        return true;
    }
    std::vector<std::string> names(const std::string& folder) override {
        std::vector<std::string> names;
        if (isKilled()) return names;
        for (const auto& [path, file] : files_) {
            const std::size_t end = path.find_last_of("/\\");
            if (end != path.npos && path.substr(0, end) == folder) {
                names.push_back(path.substr(end + 1));
            }
        }
        return names;
    }
    bool makeOwnFolder(const std::string&) override { return happens(); }

    bool isLink(const std::string& path) override {
        return files_.contains(path) && files_[path]->isLink;
    }

 private:
    using File = std::shared_ptr<Stored>;

    // "disk:name"; without a colon all lie on one.
    static std::string diskOf(const std::string& path) {
        return path.substr(0, path.find(':') + 1);
    }

    [[nodiscard]] bool isKilled() const { return fault_ == Fault::Killed && done_ >= at_; }
    bool happens() {
        ++done_;
        if (fault_ == Fault::FailsOn) return done_ < at_;
        return !isKilled() && (fault_ == Fault::None || fault_ == Fault::Killed || done_ != at_);
    }
    // How many of `count` bytes get done.
    std::size_t share(std::uint64_t offset, std::size_t count) {
        if (happens()) return count;
        if (fault_ == Fault::StopsShort) return count / 2;
        if (done_ != at_) return 0;
        const auto begin = static_cast<std::size_t>(offset % pageSize);
        struckPages_ = (begin + count + pageSize - 1) / pageSize;
        const std::size_t end = pages_ * pageSize;
        return pages_ == 0 ? 0 : std::min(count, end - begin);
    }
    static FileStatus statusOf(const Stored& file) {
        return {file.bytes.size(), file.modified,   file.isReadOnly,
                file.isTemporary,  {1, file.index}, 1};
    }

    FileHandle opened(const File& file) {
        open_[++lastHandle_] = file;
        return lastHandle_;
    }
    [[nodiscard]] bool isOpen(const std::string& path) const {
        const auto file = files_.find(path);
        return file != files_.end() && std::any_of(open_.begin(), open_.end(), [&](const auto& o) {
                   return o.second == file->second;
               });
    }

    bool resize(Stored& file, std::size_t size) {
        const std::size_t old = file.bytes.size();
        if (room_ && size > old + *room_) return false;
        if (room_) *room_ = *room_ + old - size;
        file.bytes.resize(size);
        file.isFlushed = false;
        file.modified = ++clock_;
        return true;
    }
    std::size_t store(FileHandle handle, std::uint64_t offset, Bytes bytes) {
        Stored& file = *open_.at(handle);
        const auto begin = static_cast<std::size_t>(offset);
        if (room_ && disk == DiskKind::CopyOnWrite) {
            const std::size_t old = std::min(file.bytes.size(), begin + bytes.size());
            const std::size_t over = old - std::min(old, begin);
            if (over > *room_) return 0;
            *room_ -= over;
        }
        if (room_) {
            const std::size_t end = file.bytes.size() + *room_;
            bytes = bytes.first(std::min(bytes.size(), end - std::min(end, begin)));
        }
        if (bytes.empty()) return 0;
        if (!file.isTemporary) writtenOver_ += bytes.size();
        resize(file, std::max(file.bytes.size(), begin + bytes.size()));
        std::copy(bytes.begin(), bytes.end(),
                  file.bytes.begin() + static_cast<std::ptrdiff_t>(begin));
        return bytes.size();
    }

    std::map<std::string, File> files_;
    std::map<FileHandle, File> open_;
    FileHandle lastHandle_ = 0;
    std::int64_t clock_ = 0;
    Fault fault_ = Fault::None;
    std::size_t at_ = 0, done_ = 0, pages_ = 0, struckPages_ = 0;
    std::size_t writtenOver_ = 0, flushes_ = 0;
    std::uint64_t lastIndex_ = 0;
    std::optional<std::size_t> room_;
};

}  // namespace tavlo::test
