#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/File.h"
#include "platform/FileSystem.h"

namespace tavlo {

/// One file of a batch that was renamed, as it was at that moment.
struct JournalRow {
    std::uint64_t size = 0;         ///< bytes
    std::int64_t modified = 0;      ///< in the system's ticks
    std::string from, to;           ///< full paths
    std::optional<FileId> id = {};  ///< where the disk keeps one

    bool operator==(const JournalRow&) const = default;
};

/// A playlist that followed a batch.
struct JournalList {
    std::string path;
    std::string before;  ///< its bytes until then
};

struct JournalBatch {
    std::vector<JournalRow> rows;
    std::vector<std::string> newFolders;  ///< that were not there before; inner ones first
    std::vector<std::string> roots;       ///< below which playlists were looked for
    std::vector<JournalList> lists;
    std::vector<std::string> within = {};  ///< further folders that its files stay in
    bool isMoved = false;  ///< the moves came to their end: rows and lists are those that changed
    bool isDone = false;   ///< and the lists were written
};

/// The renamed batches, each in a text file of its own, so that the last one can be taken back. A
/// batch is noted before its files are moved, and again before its playlists are written. Only what
/// belongs to the user, and nobody else can have written, is read.
class RenameJournal {
 public:
    /// Batches that are kept; older ones go.
    static constexpr std::size_t mostBatches = 100;

    explicit RenameJournal(std::string folder, FileCalls& calls = systemCalls())
        : folder_(std::move(folder)), calls_(calls) {}

    /// Keeps other runs from renaming until this object goes; false when one is at it. Where the
    /// journal cannot be written, nobody is kept from anything.
    bool lock();

    /// Begins a batch; `time` is for people who read the file. False when it cannot be written.
    bool begin(std::string_view time, const JournalBatch& batch);
    /// The files were moved: the batch as it is now takes its place, unless its rows are the
    /// `same`; one without rows goes.
    bool endMoves(std::string_view time, const JournalBatch& batch, bool same);
    /// The playlists were written.
    bool finish();

    /// The last batch that can be believed, empty where there is none.
    JournalBatch last();
    /// What `last` passed over before it found one.
    [[nodiscard]] const std::vector<std::string>& passedOver() const { return passedOver_; }
    /// Rows of the batch that `last` gave that cannot be believed; they are none of it.
    [[nodiscard]] const std::vector<JournalRow>& strangeRows() const { return strangeRows_; }
    /// Takes the batch out that `last` gave.
    bool drop();
    /// Whether the last batch was not brought to its end.
    bool isBrokenOff();

    [[nodiscard]] const std::string& folder() const { return folder_; }
    /// Of the batch that was begun or given; empty before that.
    [[nodiscard]] const std::string& path() const { return path_; }

 private:
    [[nodiscard]] std::vector<std::string> names() const;
    [[nodiscard]] std::optional<JournalBatch> read(const std::string& path) const;
    [[nodiscard]] bool append(std::string_view text) const;
    [[nodiscard]] bool appendMoved(const std::vector<JournalList>& lists) const;

    std::string folder_;
    FileCalls& calls_;
    std::string path_;
    std::vector<std::string> passedOver_;
    std::vector<JournalRow> strangeRows_;
    File lock_;
};

}  // namespace tavlo
