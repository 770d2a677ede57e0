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
    Killed       ///< from one call on nothing has an effect, as if the process were gone
};

/// Files in memory. The calls that change something are counted from 1, and one of them can be
/// made to fail. As on the strictest system, a file that is open is neither replaced nor removed,
/// and one that was not flushed takes no other's place.
class MemoryCalls final : public FileCalls {
 public:
    struct Stored {
        std::string bytes;
        std::int64_t modified = 0;
        bool isReadOnly = false;
        bool isFlushed = true;
        bool isTemporary = false;
        bool isLink = false;
    };

    /// Counts anew; `fault` strikes the `at`th call.
    void strike(Fault fault, std::size_t at) {
        fault_ = fault;
        at_ = at;
        done_ = 0;
    }
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
        return *file;
    }

    FileHandle open(const std::string& path, Access access, FileStatus& status) override {
        const auto found = files_.find(path);
        if (isKilled() || found == files_.end()) return noFile;
        const Stored& file = *found->second;
        if (access == Access::ReadWrite && file.isReadOnly) return noFile;
        status = {file.bytes.size(), file.modified, file.isReadOnly, file.isTemporary};
        return opened(found->second);
    }
    FileHandle create(const std::string& path) override {
        if (!happens() || files_.contains(path)) return noFile;
        put(path, {}).isTemporary = true;
        return opened(files_[path]);
    }
    void close(FileHandle file) override { open_.erase(file); }

    std::size_t read(FileHandle file, std::uint64_t offset, std::uint8_t* to,
                     std::size_t count) override {
        const std::string& bytes = open_.at(file)->bytes;
        if (isKilled() || offset >= bytes.size()) return 0;
        return bytes.copy(reinterpret_cast<char*>(to), count, static_cast<std::size_t>(offset));
    }
    std::size_t write(FileHandle file, std::uint64_t offset, Bytes bytes) override {
        return store(file, offset, bytes.first(share(bytes.size())));
    }
    bool copy(FileHandle from, std::uint64_t fromOffset, FileHandle to, std::uint64_t toOffset,
              std::uint64_t count) override {
        const std::string bytes = open_.at(from)->bytes.substr(
            static_cast<std::size_t>(fromOffset), share(static_cast<std::size_t>(count)));
        const Bytes part(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        return store(to, toOffset, part) == count;
    }
    bool truncate(FileHandle file, std::uint64_t size) override {
        return happens() && resize(*open_.at(file), static_cast<std::size_t>(size));
    }
    bool flush(FileHandle file) override { return happens() && (open_.at(file)->isFlushed = true); }
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
    bool replace(FileHandle temporary, const std::string& temporaryPath, FileHandle original,
                 const std::string& path) override {
        close(temporary);
        close(original);
        if (!happens() || isOpen(temporaryPath) || isOpen(path)) return false;
        if (!files_.at(temporaryPath)->isFlushed) return false;
        files_[path] = files_.at(temporaryPath);
        files_.erase(temporaryPath);
        return true;
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
        return !isKilled() && (fault_ == Fault::None || fault_ == Fault::Killed || done_ != at_);
    }
    // How many of `count` bytes get done.
    std::size_t share(std::size_t count) {
        if (happens()) return count;
        return fault_ == Fault::StopsShort ? count / 2 : 0;
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
        if (room_) {
            const std::size_t end = file.bytes.size() + *room_;
            bytes = bytes.first(std::min(bytes.size(), end - std::min(end, begin)));
        }
        if (bytes.empty()) return 0;
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
    std::size_t at_ = 0, done_ = 0;
    std::optional<std::size_t> room_;
};

}  // namespace tavlo::test
