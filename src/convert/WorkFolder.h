#pragma once

#include <atomic>
#include <string>

namespace tavlo {

/// A folder of this run and this user alone, under a name that nobody can guess, for files that
/// come and go, and names for them. It goes with all it holds.
class WorkFolder {
 public:
    /// Made below `parent`; `path()` is empty where that fails.
    explicit WorkFolder(const std::string& parent);
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder();

    [[nodiscard]] const std::string& path() const { return path_; }
    /// "tavlo-ABC-1", another one at each call, for files anywhere; from any thread.
    std::string newName();
    /// A new name with an extension, in this folder.
    std::string newPath(const std::string& extension);

 private:
    std::string name_;
    std::string path_;
    std::atomic<int> last_{0};
};

/// A file that is only wanted for a while.
class PassingFile {
 public:
    explicit PassingFile(std::string path) : path_(std::move(path)) {}
    PassingFile(const PassingFile&) = delete;
    PassingFile& operator=(const PassingFile&) = delete;
    ~PassingFile();

    [[nodiscard]] const std::string& path() const { return path_; }

 private:
    std::string path_;
};

}  // namespace tavlo
