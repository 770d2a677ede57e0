#pragma once

#include <string>

#include "collection/RenameJournal.h"
#include "collection/RenamePlan.h"
#include "core/StartUp.h"

namespace tavlo {

/// Shows plans of renaming and what came of them.
class RenameReport {
 public:
    explicit RenameReport(Services& services) : services_(services) {}

    /// The rows; those that failed go into the error report too.
    void tell(const RenamePlan& plan);
    /// A file that is left, for it is not what it was.
    void tellChangedSince(const JournalRow& row);
    /// Prints it all; gives the job's exit code.
    int finish();

 private:
    void tellStep(const RenameStep& step);
    [[nodiscard]] std::string_view resultOf(const RenameStep& step) const;
    [[nodiscard]] std::string remarkOn(const RenameStep& step) const;

    Services& services_;
    std::string out_;
    std::size_t renamed_ = 0, unchanged_ = 0, skipped_ = 0, unread_ = 0;
};

}  // namespace tavlo
