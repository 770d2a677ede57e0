#include "collection/UndoJob.h"

#include <algorithm>
#include <unordered_set>

#include "collection/JobFiles.h"
#include "collection/Playlist.h"
#include "collection/RenameBasics.h"
#include "collection/RenameReport.h"
#include "platform/File.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
bool isFileOf(const JournalRow& row, const std::string& path) {
    const auto info = fileInfo(path);
    return info && info->size == row.size && info->modified == row.modified;
}

// A batch and where its files are now.
class BatchBack {
 public:
    explicit BatchBack(const JournalBatch& batch) : batch_(batch), places_(batch.rows.size()) {
        std::unordered_set<std::string_view> newNames;
        for (const JournalRow& row : batch_.rows) newNames.insert(row.to);
        for (std::size_t i = 0; i < places_.size(); ++i) {
            places_[i] = placeOf(batch_.rows[i], newNames.contains(batch_.rows[i].from));
            if (places_[i].empty() || isBack(i)) continue;
            plan_.push_back({places_[i], batch_.rows[i].from});
            planned_.push_back(i);
        }
    }

    /// From where the files are to their old names.
    [[nodiscard]] RenamePlan& plan() { return plan_; }
    /// The plan was carried out.
    void notePlaces() {
        for (std::size_t i = 0; i < plan_.size(); ++i) {
            if (plan_[i].isMoved) places_[planned_[i]] = plan_[i].to;
        }
    }

    void tellChangedFiles(RenameReport& report) const {
        for (std::size_t i = 0; i < places_.size(); ++i) {
            if (places_[i].empty()) report.tellChangedSince(batch_.rows[i]);
        }
    }

    /// Whether anything may go better another time.
    [[nodiscard]] bool isLeft() const {
        return std::any_of(plan_.begin(), plan_.end(),
                           [](const RenameStep& step) { return !step.isMoved; });
    }

    /// What the playlists have to become.
    [[nodiscard]] std::vector<ListChange> lists(const CodePage& ansi) const {
        std::vector<std::string> others = playlistsAround(plan_);
        std::vector<ListChange> changes;
        for (const JournalList& list : batch_.lists) {
            std::erase(others, list.path);
            if (!addOwnList(list, ansi, changes)) others.push_back(list.path);
        }
        // Without its moves brought to an end, the batch changed no list.
        const RenamePlan names = batch_.isMoved ? namesBack() : namesKept();
        std::ranges::move(listChanges(std::move(others), names, ansi), std::back_inserter(changes));
        return changes;
    }

 private:
    static std::string placeOf(const JournalRow& row, bool sharesOldName) {
        // One of a circle of names that was broken off, there or back, stands aside.
        const std::string aside(cFilesRename::asideEnding);
        // A copy onto another disk that was broken off leaves both.
        if (!sharesOldName && isFileOf(row, row.from)) return row.from;
        for (const std::string& place : {row.to, row.from, row.from + aside, row.to + aside}) {
            if (isFileOf(row, place)) return place;
        }
        return {};
    }

    [[nodiscard]] bool isBack(std::size_t i) const { return places_[i] == batch_.rows[i].from; }

    // The whole batch as it was carried out, or the part of it that is not taken back.
    [[nodiscard]] RenamePlan forward(bool whole) const {
        RenamePlan names;
        for (std::size_t i = 0; i < places_.size(); ++i) {
            if (!whole && isBack(i)) continue;
            names.push_back({batch_.rows[i].from, batch_.rows[i].to});
            names.back().isMoved = true;
        }
        return names;
    }
    [[nodiscard]] RenamePlan namesKept() const { return forward(false); }

    // New names that lead to no file any more, and those that this run took back.
    [[nodiscard]] RenamePlan namesBack() const {
        RenamePlan names = plan_;
        for (std::size_t i = 0; i < places_.size(); ++i) {
            const JournalRow& row = batch_.rows[i];
            if (!isBack(i) || fileInfo(row.to)) continue;
            names.push_back({row.to, row.from});
            names.back().isMoved = true;
        }
        return names;
    }

    // A list that nobody else changed gets its old bytes, but for the names that stay. False where
    // somebody did.
    bool addOwnList(const JournalList& list, const CodePage& ansi,
                    std::vector<ListChange>& changes) const {
        auto now = readFile(list.path, largestPlaylist);
        if (!now) return true;
        std::string wanted = followed(list.before, list.path, namesKept(), ansi);
        if (*now == wanted) return true;
        if (*now != list.before && *now != followed(list.before, list.path, forward(true), ansi)) {
            return false;
        }
        changes.push_back({list.path, std::move(*now), std::move(wanted)});
        return true;
    }

    const JournalBatch& batch_;
    std::vector<std::string> places_;   // of each row's file; empty where it is not what it was
    std::vector<std::size_t> planned_;  // the rows of the plan's steps
    RenamePlan plan_;
};

// False where something is left to be tried again.
bool takeBack(Services& services, const JournalBatch& batch, BatchBack& back) {
    const CodePage ansi(services.ansiCodePage);
    cFilesRename renamer(renameContext(services, ansi));
    renamer.moveFiles(back.plan());
    back.notePlaces();
    for (const std::string& folder : batch.newFolders) removeEmptyFolder(folder);
    return writeLists(back.lists(ansi), services.errors, systemCalls()) && !back.isLeft();
}
}  // namespace

int undoRename(Services& services) {
    if (!isUnderstood(services)) return unusableCommandLine;
    RenameJournal journal(journalFolder());
    if (!mayRename(services, journal)) return services.errors.exitCode();
    const auto batch = journal.last();
    if (!batch || batch->rows.empty()) {
        services.errors.report(batch ? Text::NothingToUndo : Text::FileNotRead, journal.path());
        return services.errors.exitCode();
    }
    RenameReport report(services);
    BatchBack back(*batch);
    back.tellChangedFiles(report);
    const bool isWhole = services.options.dryRun || takeBack(services, *batch, back);
    report.tell(back.plan());
    const int exitCode = report.finish();
    if (!isWhole || (!services.options.dryRun && !journal.drop())) {
        services.errors.note(Text::UndoAgain, journal.path());
    }
    return exitCode;
}

}  // namespace tavlo
