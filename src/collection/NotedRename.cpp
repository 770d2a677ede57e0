#include "collection/NotedRename.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <unordered_set>

#include "collection/Playlist.h"
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
    const auto twoDigits = [](auto number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    return std::to_string(static_cast<int>(date.year())) + "-" +
           twoDigits(static_cast<unsigned>(date.month())) + "-" +
           twoDigits(static_cast<unsigned>(date.day())) + " " + twoDigits(time.hours().count()) +
           ":" + twoDigits(time.minutes().count()) + ":" + twoDigits(time.seconds().count());
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

JournalRow rowOf(const RenameStep& step) {
    return {step.size, step.modified, step.from, step.to};
}
}  // namespace

void performNoted(cFilesRename& renamer, RenameJournal& journal, RenamePlan& plan,
                  const std::vector<std::string>& lists) {
    const RenameContext& context = renamer.context();
    JournalBatch batch;
    for (const RenameStep& step : plan) {
        if (step.moves()) batch.rows.push_back(rowOf(step));
    }
    if (batch.rows.empty()) return;
    batch.newFolders = newFolders(plan);
    bool isNoted = journal.begin(timeText(), batch);
    const std::vector<ListChange> changes = renamer.moveAndFollow(plan, lists);
    batch.rows.clear();
    for (const RenameStep& step : plan) {
        if (step.isMoved) batch.rows.push_back(rowOf(step));
    }
    for (const ListChange& change : changes) batch.lists.push_back({change.path, change.before});
    const bool anyMoved = !batch.rows.empty();
    isNoted = isNoted && journal.endMoves(timeText(), std::move(batch));
    if (!isNoted) context.errors.report(Text::JournalNotWritten, journal.folder());
    const bool areWritten = writeLists(changes, context.errors, context.calls);
    if (isNoted && anyMoved && areWritten) journal.finish();
}

// --- The way back --------------------------------------------------------------------------------

namespace {
bool isFileOf(const JournalRow& row, const std::string& path) {
    const auto info = fileInfo(path);
    return info && info->size == row.size && info->modified == row.modified;
}

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
    return writeLists(lists(context.ansi), context.errors, context.calls) &&
           std::ranges::all_of(plan_, &RenameStep::isMoved);
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

// A list that nobody else changed gets its old bytes, but for the names that stay. False where
// somebody did.
bool BatchBack::addOwnList(const JournalList& list, const CodePage& ansi,
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

}  // namespace tavlo
