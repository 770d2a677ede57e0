#include "collection/UndoJob.h"

#include "collection/JobFiles.h"
#include "collection/NotedRename.h"
#include "collection/RenameBasics.h"
#include "collection/RenameReport.h"

namespace tavlo {

int undoRename(Services& services) {
    if (!isUnderstood(services)) return unusableCommandLine;
    if (services.options.folder) {
        services.errors.report(Text::UndoHasNoFolder, *services.options.folder);
        return unusableCommandLine;
    }
    RenameJournal journal(journalFolder());
    if (!mayRename(services, journal)) return services.errors.exitCode();
    const JournalBatch batch = journal.last();
    for (const std::string& path : journal.passedOver()) {
        services.errors.report(Text::JournalNotBelieved, path);
    }
    if (batch.rows.empty()) {
        services.errors.report(Text::NothingToUndo);
        return services.errors.exitCode();
    }
    const CodePage ansi(services.ansiCodePage);
    cFilesRename renamer(renameContext(services, ansi));
    RenameReport report(services);
    for (const JournalRow& row : journal.strangeRows()) {
        services.errors.report(Text::JournalRowNotBelieved, row.to);
    }
    BatchBack back(batch);
    for (const JournalRow& row : back.changedRows()) report.tellChangedSince(row);
    for (const std::string& copy : back.leftCopies()) services.errors.report(Text::CopyLeft, copy);
    const bool isDone = services.options.dryRun || (back.perform(renamer) && journal.drop());
    report.tell(back.plan());
    const int exitCode = report.finish();
    if (!isDone) services.errors.note(Text::UndoAgain, journal.path());
    return exitCode;
}

}  // namespace tavlo
