#include "collection/NotedRename.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <unordered_set>

#include "collection/JournalBelief.h"
#include "collection/Playlist.h"
#include "core/Numbers.h"
#include "platform/File.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
// The moment in UTC, for people who read the journal: "2026-05-01 18:30:00".
std::string timeText() {
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    const auto part = [](auto number) {
        return paddedNumber(static_cast<std::int64_t>(number), 2);
    };
    return std::to_string(static_cast<int>(date.year())) + "-" +
           part(static_cast<unsigned>(date.month())) + "-" +
           part(static_cast<unsigned>(date.day())) + " " + part(time.hours().count()) + ":" +
           part(time.minutes().count()) + ":" + part(time.seconds().count());
}

// The folders that have to be made for the new names, inner ones first.
std::vector<std::string> newFolders(const RenamePlan& plan) {
    std::set<std::string, std::greater<>> missing;
    std::string_view last;
    for (const RenameStep& step : plan) {
        std::string_view folder = folderOf(step.to, nativePathStyle());
        if (!step.moves() || folder == last) continue;
        last = folder;
        while (!folder.empty() && !missing.contains(folder) && !folderExists(std::string(folder))) {
            missing.emplace(folder);
            folder = parentOf(folder, nativePathStyle());
        }
    }
    return {missing.begin(), missing.end()};
}

bool isFileOf(const JournalRow& row, const std::string& path) {
    const auto info = fileInfo(path);
    if (!info || info->size != row.size || info->modified != row.modified) return false;
    if (isLink(path)) return false;
    // A copy on another disk has a number of its own, and a disk may be known by another one later.
    const auto id = row.id ? lastingFileId(path) : std::nullopt;
    return !id || id->volume != row.id->volume || id == row.id;
}

template <typename Counts>
std::vector<JournalRow> rowsOf(const RenamePlan& plan, Counts counts) {
    std::vector<JournalRow> rows;
    for (const RenameStep& step : plan) {
        if (counts(step)) rows.push_back({step.size, step.modified, step.from, step.to});
    }
    return rows;
}

void noteIds(std::vector<JournalRow>& rows, std::string JournalRow::*place) {
    for (JournalRow& row : rows) row.id = lastingFileId(row.*place);
}

// What cannot be brought to its end is taken back at once.
void takeBack(cFilesRename& renamer, RenameJournal& journal, const JournalBatch& batch,
              RenamePlan& plan) {
    BatchBack back(batch);
    if (back.perform(renamer)) journal.drop();
    for (RenameStep& step : plan) {
        const JournalRow row{step.size, step.modified, step.from, step.to};
        if (!step.isMoved || !isFileOf(row, row.from)) continue;
        step.isMoved = false;
        step.result = RenameResult::NotCreated;
        step.reason = Text::ListNotWritable;
    }
}
}  // namespace

void performNoted(cFilesRename& renamer, RenameJournal& journal, RenamePlan& plan,
                  const std::vector<std::string>& roots, std::vector<std::string> lists) {
    const RenameContext& context = renamer.context();
    JournalBatch batch;
    batch.rows = rowsOf(plan, [](const RenameStep& step) { return step.moves(); });
    if (batch.rows.empty()) return;
    batch.newFolders = newFolders(plan);
    batch.roots = roots;
    batch.within = BatchBounds(batch).widenTo(batch.rows);
    noteIds(batch.rows, &JournalRow::from);
    if (!journal.begin(timeText(), batch)) {
        context.errors.report(Text::JournalNotWritten, journal.folder());
        return;
    }
    std::vector<ListChange> changes = renamer.moveAndFollow(plan, std::move(lists));
    std::vector<JournalRow> moved = rowsOf(plan, [](const RenameStep& s) { return s.isMoved; });
    noteIds(moved, &JournalRow::to);
    const bool same = moved == batch.rows;
    batch.rows = std::move(moved);
    for (ListChange& change : changes) {
        batch.lists.push_back({change.path, std::move(change.before)});
    }
    batch.isMoved = true;
    if (journal.endMoves(timeText(), batch, same) &&
        writeLists(changes, context.errors, context.calls)) {
        if (!batch.rows.empty()) journal.finish();
    } else {
        takeBack(renamer, journal, batch, plan);
    }
}

// --- The way back --------------------------------------------------------------------------------

namespace {
std::string placeOf(const JournalRow& row, bool sharesOldName) {
    // One of a circle of names that was broken off, there or back, stands aside.
    const std::string aside(cFilesRename::asideEnding);
    // A move onto another disk that was broken off leaves both.
    if (!sharesOldName && isFileOf(row, row.from)) return row.from;
    for (const std::string& place : {row.to, row.from, row.from + aside, row.to + aside}) {
        if (isFileOf(row, place)) return place;
    }
    return {};
}
}  // namespace

BatchBack::BatchBack(const JournalBatch& batch) : batch_(batch), places_(batch.rows.size()) {
    std::unordered_set<std::string_view> newNames;
    for (const JournalRow& row : batch_.rows) newNames.insert(row.to);
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const JournalRow& row = batch_.rows[i];
        places_[i] = placeOf(row, newNames.contains(row.from));
        if (places_[i].empty() || isBack(i)) continue;
        plan_.push_back({places_[i], row.from});
        planned_.push_back(i);
    }
}

std::vector<std::string> BatchBack::leftCopies() const {
    std::vector<std::string> copies;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const JournalRow& row = batch_.rows[i];
        if (isBack(i) && !batch_.isMoved && isFileOf(row, row.to)) copies.push_back(row.to);
    }
    return copies;
}

std::vector<JournalRow> BatchBack::changedRows() const {
    std::vector<JournalRow> rows;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        if (places_[i].empty()) rows.push_back(batch_.rows[i]);
    }
    return rows;
}

bool BatchBack::perform(cFilesRename& renamer) {
    const RenameContext& context = renamer.context();
    renamer.moveFiles(plan_);
    for (std::size_t i = 0; i < plan_.size(); ++i) {
        if (plan_[i].isMoved) places_[planned_[i]] = plan_[i].to;
    }
    for (const std::string& folder : batch_.newFolders) removeEmptyFolder(folder);
    return writeLists(lists(context.ansi), context.errors, context.calls) && !isLeft();
}

// Whether anything may go better another time: what could not be moved, or lies on a disk that is
// not there; then its folder is missing, or nothing of the batch is to be found.
bool BatchBack::isLeft() const {
    std::size_t missing = 0;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const std::string& path = batch_.rows[i].to;
        if (!places_[i].empty() && !isBack(i)) return true;
        if (!places_[i].empty() || fileInfo(path)) continue;
        if (!folderExists(std::string(folderOf(path, nativePathStyle())))) return true;
        ++missing;
    }
    return missing > 0 && missing == places_.size();
}

// The whole batch as it was carried out, or the part of it that is not taken back.
RenamePlan BatchBack::forward(bool whole) const {
    RenamePlan names;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        if (!whole && isBack(i)) continue;
        names.push_back({batch_.rows[i].from, batch_.rows[i].to});
        names.back().isMoved = true;
    }
    return names;
}

// The names that this run took back, and new ones that lead to no file any more.
RenamePlan BatchBack::namesBack() const {
    RenamePlan names = plan_;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const JournalRow& row = batch_.rows[i];
        if (!isBack(i) || fileInfo(row.to)) continue;
        names.push_back({row.to, row.from});
        names.back().isMoved = true;
    }
    return names;
}

std::vector<ListChange> BatchBack::lists(const CodePage& ansi) const {
    std::vector<std::string> others = playlistsAround(plan_);
    for (const std::string& root : batch_.roots) {
        std::ranges::move(playlistsIn(root, true), std::back_inserter(others));
    }
    std::vector<ListChange> changes;
    std::vector<std::string> own;
    std::vector<std::string> edited;
    for (const JournalList& list : batch_.lists) {
        own.push_back(list.path);
        if (!addOwnList(list, ansi, changes)) edited.push_back(list.path);
    }
    eraseLists(others, own);
    std::ranges::move(edited, std::back_inserter(others));
    // Without its moves brought to an end, the batch changed no list.
    const RenamePlan names = batch_.isMoved ? namesBack() : namesKept();
    std::ranges::move(listChanges(std::move(others), names, ansi), std::back_inserter(changes));
    return changes;
}

// A list that nobody else changed gets its old bytes, but for the names that stay. False where
// somebody did.
bool BatchBack::addOwnList(const JournalList& list, const CodePage& ansi,
                           std::vector<ListChange>& changes) const {
    auto now = readFile(list.path, largestPlaylist);
    if (!now) return true;
    if (!hasOnlyFollowed(*now, list.before, list.path, forward(true), ansi)) return false;
    // Beside the old bytes there is room for one more copy only: those of now or of then.
    const std::pair nowIs(now->size(), std::hash<std::string>()(*now));
    now.reset();
    std::string wanted = followed(list.before, list.path, namesKept(), ansi);
    if (nowIs == std::pair(wanted.size(), std::hash<std::string>()(wanted))) return true;
    changes.push_back({list.path, {}, std::move(wanted)});
    return true;
}

}  // namespace tavlo
