#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "collection/RenameJournal.h"

namespace tavlo {

/// The folders that a batch stays in.
class BatchBounds {
 public:
    explicit BatchBounds(const JournalBatch& batch);

    [[nodiscard]] bool isEmpty() const { return folders_.empty(); }
    /// Whether a full path is one of the folders or lies below one.
    [[nodiscard]] bool hold(std::string_view path) const;
    /// Widens them by the folders of all rows that lie outside; gives those folders.
    std::vector<std::string> widenTo(const std::vector<JournalRow>& rows);

 private:
    std::set<std::string, std::less<>> folders_;
};

/// Takes out of a batch that was read what no renaming does, for somebody else may have written it,
/// and gives the rows among that: a renaming moves audio files, playlists, and what belongs to an
/// audio file by its name, keeps their kind, and stays within its bounds.
std::vector<JournalRow> takeUnbelievable(JournalBatch& batch);

}  // namespace tavlo
