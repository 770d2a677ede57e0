#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavlo {

/// One file of a batch that was renamed, as it was at that moment.
struct JournalRow {
    std::uint64_t size = 0;     ///< bytes
    std::int64_t modified = 0;  ///< in the system's ticks
    std::string from, to;       ///< full paths
};

/// A playlist that followed a batch.
struct JournalList {
    std::string path;
    std::string before;  ///< its bytes until then
};

struct JournalBatch {
    std::vector<JournalRow> rows;
    std::vector<std::string> newFolders;  ///< that were not there before; inner ones first
    std::vector<JournalList> lists;
};

/// The renamed batches, each in a text file of its own, so that the last one can be taken back. A
/// batch is noted before its files are moved: a row whose file never moved does no harm.
class RenameJournal {
 public:
    /// Batches that are kept; older ones go.
    static constexpr std::size_t mostBatches = 100;

    explicit RenameJournal(std::string folder) : folder_(std::move(folder)) {}

    /// Begins a batch; `time` is for people who read the file. False when it cannot be written.
    bool begin(std::string_view time, const JournalBatch& batch);
    /// Adds playlists to the batch that was begun.
    bool addLists(const std::vector<JournalList>& lists);

    /// The last batch; empty where there is none.
    JournalBatch last();
    /// Leaves so much of the batch that `last` gave; one without rows goes.
    bool keep(std::string_view time, const JournalBatch& rest);

    /// Of the batch that was begun or given; empty before that.
    [[nodiscard]] const std::string& path() const { return path_; }

 private:
    [[nodiscard]] std::vector<std::string> names() const;

    std::string folder_;
    std::string path_;
};

}  // namespace tavlo
