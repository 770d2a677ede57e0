#include "collection/RenameJob.h"

#include <algorithm>
#include <chrono>
#include <set>

#include "collection/JobFiles.h"
#include "collection/JsonLine.h"
#include "collection/Playlist.h"
#include "collection/RenameJournal.h"
#include "collection/cFilesRename.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
RenameContext contextOf(Services& services, const CodePage& ansi) {
    const bool gost = services.settings.flag(Setting::TransliteByGOST);
    return {ansi, gost ? Transliteration::Gost : Transliteration::Phonetic, services.errors,
            services.progress, services.cancel};
}

std::string journalFolder() {
    const std::string folder = settingsFolder();
    return folder.empty() ? folder : joinPath(folder, "renames", nativePathStyle());
}

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

void chooseFormat(const Services& services, cFilesRename& renamer) {
    const JobOptions& options = services.options;
    const Settings& settings = services.settings;
    renamer.Format = "6";
    if (options.nameTemplate) {
        renamer.Template = *options.nameTemplate;
    } else if (options.mode == RunMode::AutoRename) {
        renamer.Template = settings.text(Setting::RenameTemplateDef);
    } else {
        renamer.Template = settings.text(Setting::TAGSRenTemplate);
        renamer.Format =
            std::to_string(options.outputFormat.value_or(settings.number(Setting::TAGSRenFormat)));
    }
}

// Shows plans and what came of them.
class RenameReport {
 public:
    explicit RenameReport(Services& services) : services_(services) {}

    void tell(const RenamePlan& plan) {
        for (const RenameStep& step : plan) tellStep(step);
    }

    void tellChangedSince(const JournalRow& row) {
        services_.errors.report(Text::ChangedSince, row.to);
        if (!services_.options.json) return;
        out_ +=
            pathsLine(row.to, row.from, "failed", services_.texts.get(Text::ChangedSince, row.to));
    }

    // Gives the job's exit code.
    int finish() {
        const Texts& texts = services_.texts;
        if (!services_.options.json) {
            const Text renamed =
                services_.options.dryRun ? Text::SummaryWouldRename : Text::SummaryRenamed;
            out_ += texts.get(renamed, std::to_string(renamed_)) + "  " +
                    texts.get(Text::SummaryUnchanged, std::to_string(unchanged_));
            if (skipped_ > 0) {
                out_ += "  " + texts.get(Text::SummarySkipped, std::to_string(skipped_));
            }
            out_ += '\n';
        }
        services_.progress.setRange(0);
        if (!services_.output.write(out_)) services_.errors.report(Text::OutputNotWritten);
        if (services_.cancel.load()) services_.errors.report(Text::Cancelled);
        return services_.errors.exitCode();
    }

 private:
    void tellStep(const RenameStep& step) {
        const std::string_view result = resultOf(step);
        if (result == "skipped") ++skipped_;
        if (result == "unchanged") ++unchanged_;
        if (result == "planned" || result == "renamed") ++renamed_;
        if (services_.options.json) {
            out_ += pathsLine(step.from, step.to, result, remarkOn(step));
        } else if (result == "planned") {
            const std::string remark = remarkOn(step);
            out_ += withoutControls(step.from + " -> " + step.to);
            out_ += remark.empty() ? "\n" : "  (" + remark + ")\n";
        }
    }

    [[nodiscard]] std::string_view resultOf(const RenameStep& step) const {
        if (step.result == RenameResult::Skipped) return "skipped";
        if (step.result != RenameResult::Done) return "failed";
        if (step.isMoved) return "renamed";
        if (!step.moves()) return "unchanged";
        return services_.options.dryRun ? "planned" : "cancelled";
    }

    [[nodiscard]] std::string remarkOn(const RenameStep& step) const {
        const Texts& texts = services_.texts;
        if (const auto failure = messageOf(step)) return texts.get(failure->text, failure->about);
        if (step.result == RenameResult::Skipped) return texts.get(Text::NoArtistOrTitle);
        return step.isNumbered ? texts.get(Text::NameTaken) : std::string();
    }

    Services& services_;
    std::string out_;
    std::size_t renamed_ = 0, unchanged_ = 0, skipped_ = 0;
};

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

// Carries a plan out with a journal, so that it can be taken back.
void performNoted(Services& services, cFilesRename& renamer, RenamePlan& plan,
                  std::vector<std::string> lists) {
    RenameJournal journal(journalFolder());
    JournalBatch batch;
    for (const RenameStep& step : plan) {
        if (step.moves()) batch.rows.push_back({step.size, step.modified, step.from, step.to});
    }
    if (batch.rows.empty()) return renamer.moveFiles(plan);
    batch.newFolders = newFolders(plan);
    bool isNoted = journal.begin(timeText(), batch);
    const std::vector<ListChange> changes = renamer.moveAndFollow(plan, std::move(lists));
    std::vector<JournalList> old;
    for (const ListChange& change : changes) old.push_back({change.path, change.before});
    isNoted = isNoted && journal.addLists(old);
    if (!isNoted) services.errors.report(Text::JournalNotWritten, journalFolder());
    writeLists(changes, services.errors, systemCalls());
}

struct RenameBatch {
    std::vector<std::string> paths;
    std::vector<std::string> lists;  // playlists that have to follow, besides those around
};

// What the job was asked to rename. False when it cannot be told.
bool gatherBatch(Services& services, const cFilesRename& renamer, RenameBatch& batch) {
    const bool byLists = services.options.mode == RunMode::Rename2;
    cFilesCollection files(services.progress, services.cancel);
    if (!gatherFilesToChange(services, {}, files)) return false;
    for (const std::string& wanted : wantedPaths(services)) {
        const std::string path = absolutePath(wanted);
        std::vector<std::string> found;
        if (isPlaylist(path)) found.push_back(path);
        if (folderExists(path) && byLists) found = renamer.playlistsOf(path);
        if (folderExists(path) && services.options.subfolders) found = playlistsIn(path, true);
        std::ranges::move(found, std::back_inserter(batch.lists));
    }
    if (byLists) {
        batch.paths = relativeEntries(batch.lists, CodePage(services.ansiCodePage));
        return true;
    }
    for (std::size_t i = 1; i <= files.count(); ++i) batch.paths.push_back(files.GetFile(i));
    return true;
}
}  // namespace

int renameFiles(Services& services) {
    const CodePage ansi(services.ansiCodePage);
    cFilesRename renamer(contextOf(services, ansi));
    chooseFormat(services, renamer);
    RenameBatch batch;
    if (!gatherBatch(services, renamer, batch)) return unusableCommandLine;
    const std::string target = services.options.targetFolder.value_or("");
    RenameReport report(services);
    // A scan that was cancelled found a part of the files only: then nothing is renamed.
    if (!services.cancel.load()) {
        RenamePlan plan = renamer.plan(batch.paths, target.empty() ? target : absolutePath(target));
        if (services.options.dryRun) {
            renamer.reportFailures(plan);
        } else {
            performNoted(services, renamer, plan, std::move(batch.lists));
        }
        report.tell(plan);
    }
    return report.finish();
}

namespace {
// Where the file of a row is now, if it still is what it was. One of a circle of names that was
// broken off may stand aside.
std::string placeOf(const JournalRow& row) {
    for (const std::string& place : {row.to, row.from + std::string(cFilesRename::asideEnding)}) {
        const auto info = fileInfo(place);
        if (info && info->size == row.size && info->modified == row.modified) return place;
    }
    return {};
}

// What stands at the old name already was never moved.
bool isAtOldName(const JournalRow& row) {
    const auto info = fileInfo(row.from);
    return info && info->size == row.size && info->modified == row.modified && !fileInfo(row.to);
}

// A playlist that is what the batch made of it becomes, byte for byte, what it was before.
void restoreBytes(std::vector<ListChange>& changes, const JournalBatch& batch,
                  const CodePage& ansi) {
    RenamePlan forward;
    forward.reserve(batch.rows.size());
    for (const JournalRow& row : batch.rows) {
        forward.push_back({row.from, row.to, RenameResult::Done, false, true});
    }
    for (const JournalList& list : batch.lists) {
        const auto change = std::ranges::find(changes, list.path, &ListChange::path);
        if (change == changes.end()) continue;
        if (followed(list.before, list.path, forward, ansi) == change->before) {
            change->after = list.before;
        }
    }
}

// The rows that could not be taken back stay in the journal.
JournalBatch restOf(const JournalBatch& batch, const RenamePlan& done) {
    JournalBatch rest;
    for (const RenameStep& step : done) {
        if (step.isMoved) continue;
        const auto row = std::ranges::find(batch.rows, step.to, &JournalRow::from);
        if (row != batch.rows.end()) rest.rows.push_back(*row);
    }
    if (rest.rows.empty()) return rest;
    rest.newFolders = batch.newFolders;
    rest.lists = batch.lists;
    return rest;
}

void takeBack(Services& services, const JournalBatch& batch, RenamePlan& plan,
              RenameJournal& journal) {
    const CodePage ansi(services.ansiCodePage);
    cFilesRename renamer(contextOf(services, ansi));
    std::vector<std::string> lists;
    for (const JournalList& list : batch.lists) lists.push_back(list.path);
    std::vector<ListChange> changes = renamer.moveAndFollow(plan, std::move(lists));
    const JournalBatch rest = restOf(batch, plan);
    if (rest.rows.empty()) restoreBytes(changes, batch, ansi);
    writeLists(changes, services.errors, systemCalls());
    for (const std::string& folder : batch.newFolders) removeEmptyFolder(folder);
    if (!journal.keep(timeText(), rest)) {
        services.errors.report(Text::FileNotWritten, journal.path());
    }
}
}  // namespace

int undoRename(Services& services) {
    if (!isUnderstood(services)) return unusableCommandLine;
    RenameJournal journal(journalFolder());
    const JournalBatch batch = journal.last();
    if (batch.rows.empty()) {
        services.errors.report(Text::NothingToUndo);
        return services.errors.exitCode();
    }
    RenameReport report(services);
    RenamePlan plan;
    for (const JournalRow& row : batch.rows) {
        if (isAtOldName(row)) continue;
        const std::string place = placeOf(row);
        if (place.empty()) {
            report.tellChangedSince(row);
        } else {
            plan.push_back({place, row.from});
        }
    }
    if (!services.options.dryRun) takeBack(services, batch, plan, journal);
    report.tell(plan);
    return report.finish();
}

}  // namespace tavlo
