#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "platform/FileCalls.h"

namespace tavlo::test {

/// The running system's calls, of which one move can fail, or from one call on every change, as if
/// the process were gone. Counted from 1.
class StruckCalls final : public FileCalls {
 public:
    std::size_t failingMove = 0;  ///< 0 = none
    bool failOn = false;          ///< all moves behind it fail too
    std::size_t failingReplace = 0, replaced = 0;
    std::size_t deathAt = 0;  ///< of the calls that change something; 0 = never
    std::size_t moves = 0, changes = 0;
    std::function<void()> beforeReplace = {};

    FileHandle open(const std::string& path, Access access, FileStatus& status) override {
        return calls_.open(path, access, status);
    }
    FileHandle create(const std::string& path) override {
        return lives() ? calls_.create(path) : noFile;
    }
    void close(FileHandle file) override { calls_.close(file); }
    std::optional<FileStatus> status(const std::string& path) override {
        return calls_.status(path);
    }
    bool overwrites(FileHandle file) override { return calls_.overwrites(file); }
    std::size_t read(FileHandle file, std::uint64_t offset, std::uint8_t* to,
                     std::size_t count) override {
        return calls_.read(file, offset, to, count);
    }
    std::size_t write(FileHandle file, std::uint64_t offset, Bytes bytes) override {
        return lives() ? calls_.write(file, offset, bytes) : 0;
    }
    bool copy(FileHandle from, std::uint64_t fromOffset, FileHandle to, std::uint64_t toOffset,
              std::uint64_t count) override {
        return lives() && calls_.copy(from, fromOffset, to, toOffset, count);
    }
    bool truncate(FileHandle file, std::uint64_t size) override {
        return lives() && calls_.truncate(file, size);
    }
    bool flush(FileHandle file) override { return lives() && calls_.flush(file); }
    bool setModified(FileHandle file, std::int64_t modified) override {
        return lives() && calls_.setModified(file, modified);
    }
    bool carryAttributes(FileHandle from, FileHandle to) override {
        return lives() && calls_.carryAttributes(from, to);
    }
    Replaced replace(FileHandle temporary, const std::string& temporaryPath, FileHandle original,
                     const std::string& path, const std::optional<FileStatus>& expected) override {
        if (beforeReplace) beforeReplace();
        if (++replaced != failingReplace && lives()) {
            return calls_.replace(temporary, temporaryPath, original, path, expected);
        }
        close(temporary);
        if (original != noFile) close(original);
        return Replaced::Failed;
    }
    bool remove(FileHandle file, const std::string& path) override {
        if (lives()) return calls_.remove(file, path);
        close(file);
        return false;
    }
    Moved move(const std::string& from, const std::string& to) override {
        ++moves;
        const bool fails = failOn && failingMove > 0 ? moves >= failingMove : moves == failingMove;
        return !fails && lives() ? calls_.move(from, to) : Moved::Failed;
    }
    bool clearReadOnly(const std::string& path) override {
        return lives() && calls_.clearReadOnly(path);
    }
    std::vector<std::string> names(const std::string& folder) override {
        return calls_.names(folder);
    }
    bool makeOwnFolder(const std::string& folder) override {
        return lives() && calls_.makeOwnFolder(folder);
    }

 private:
    bool lives() { return ++changes < deathAt || deathAt == 0; }

    FileCalls& calls_ = systemCalls();
};

}  // namespace tavlo::test
