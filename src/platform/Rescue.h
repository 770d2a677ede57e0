#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/File.h"

namespace tavlo {

/// Bytes that are to be written over, or behind a file's end.
struct SavedRun {
    std::uint64_t begin = 0, size = 0;  ///< in the file
    std::uint64_t place = 0;  ///< of the old bytes in the rescue file; the new ones follow
};

/// A file that is about to be changed in place, by several writes. It may grow.
struct SavedFile {
    std::string path;
    FileId id;
    std::int64_t modified = 0;
    std::uint64_t oldSize = 0, newSize = 0;
    std::vector<SavedRun> runs;  ///< each before or behind the old end
};

/// The old and the new bytes of files that are changed in place, kept in a file of their own until
/// all are whole. A run that is killed leaves it to the next one, see `recoverFiles`; while its
/// run lives it is locked.
class Rescue {
 public:
    enum class Side { Old, New };
    /// Gives bytes of the file as it is or as it is to become; false when it could not.
    using Source = std::function<bool(Side, std::uint64_t offset, std::uint8_t* to, std::size_t)>;
    enum class Found { Old, New, Mixed, Other };

    explicit Rescue(FileCalls& calls) : calls_(calls) {}
    Rescue(const Rescue&) = delete;
    Rescue& operator=(const Rescue&) = delete;
    ~Rescue();

    /// Makes a rescue file in a folder, which is made if need be.
    bool create(const std::string& folder);
    /// Opens one that a killed run left; false when it is at work, or none.
    bool open(const std::string& path);
    /// What was saved; nothing when not everything came to the disk.
    std::optional<std::vector<SavedFile>> saved();
    /// Takes a file's bytes in and notes in its runs where they are.
    bool save(SavedFile& file, const Source& source);
    /// Brings everything to the disk. Until then no saved file may be touched.
    bool seal();

    /// Writes one side of a saved file into it, and gives it that side's size.
    bool put(FileHandle file, const SavedFile& saved, Side side);
    /// Which side a file shows, whose size is `size` now.
    Found compare(FileHandle file, const SavedFile& saved, std::uint64_t size);
    /// Whether the rescue file stays for the next run or goes with this object. One that was made
    /// goes, one that was opened stays.
    void keep() { isKept_ = true; }
    void drop() { isKept_ = false; }
    /// Gives it another name, under which nobody looks for it.
    bool moveAside();

    [[nodiscard]] std::uint64_t size() const { return size_; }

 private:
    // Which sides a file of a size was seen to show.
    struct Sides {
        std::uint64_t size;
        bool old, fresh;
    };
    bool append(std::string_view bytes);
    bool appendSide(const SavedRun& run, Side side, const Source& source);
    bool putRun(FileHandle file, const SavedFile& saved, const SavedRun& run, Side side);
    bool putNew(FileHandle file, const SavedFile& saved);
    bool putBack(FileHandle file, const SavedFile& saved);
    bool readText(std::uint64_t offset, std::string& text);
    std::optional<std::string> sealed();
    bool compareRun(FileHandle file, const SavedFile& saved, const SavedRun& run, Sides& seen);

    FileCalls& calls_;
    std::string path_;
    FileHandle handle_ = noFile;
    std::uint64_t size_ = 0, sum_ = 0;
    std::string table_;
    bool isKept_ = false;
};

struct Recovered {
    std::size_t putBack = 0;            ///< files that are what they were again
    std::vector<std::string> setAside;  ///< rescue files of files that others have changed since
};

/// Where the program keeps its rescue files; empty when not known.
std::string rescueFolder();

/// Puts the old bytes back into files that a killed run left half changed, and takes its rescue
/// files away. One whose file cannot be reached now stays for later.
Recovered recoverFiles(const std::string& folder, FileCalls& calls = systemCalls());

}  // namespace tavlo
