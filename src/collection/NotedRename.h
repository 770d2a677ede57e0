#pragma once

#include <string>
#include <vector>

#include "collection/RenameJournal.h"
#include "collection/cFilesRename.h"

namespace tavlo {

/// Carries a plan out, playlists with it, and notes in a journal what is needed to take it back.
/// `roots` are folders below which playlists are looked for, `lists` further playlists. Where the
/// journal or a playlist cannot be written, all is as it was before.
void performNoted(cFilesRename& renamer, RenameJournal& journal, RenamePlan& plan,
                  const std::vector<std::string>& roots, std::vector<std::string> lists);

/// A batch of the journal on its way back. It may be broken off at any point and begun anew.
class BatchBack {
 public:
    /// Looks where the files are; `batch` must outlive this object.
    explicit BatchBack(const JournalBatch& batch);

    /// From where the files are to their old names; what is back already is left out.
    [[nodiscard]] const RenamePlan& plan() const { return plan_; }
    /// The rows whose files are not what they were.
    [[nodiscard]] std::vector<JournalRow> changedRows() const;

    /// Copies that a move onto another disk left when it was broken off; the files are back.
    [[nodiscard]] std::vector<std::string> leftCopies() const;

    /// Moves the files, writes the playlists and removes the folders that were made. False where
    /// something is left that may go better another time.
    bool perform(cFilesRename& renamer);

 private:
    [[nodiscard]] bool isBack(std::size_t row) const {
        return places_[row] == batch_.rows[row].from;
    }
    [[nodiscard]] bool isLeft() const;
    [[nodiscard]] RenamePlan forward(bool whole) const;
    [[nodiscard]] RenamePlan namesKept() const { return forward(false); }
    [[nodiscard]] RenamePlan namesBack() const;
    [[nodiscard]] std::vector<ListChange> lists(const CodePage& ansi) const;
    bool addOwnList(const JournalList& list, const CodePage& ansi,
                    std::vector<ListChange>& changes) const;

    const JournalBatch& batch_;
    std::vector<std::string> places_;   // of each row's file; empty where it is not what it was
    std::vector<std::size_t> planned_;  // the rows of the plan's steps
    RenamePlan plan_;
};

}  // namespace tavlo
