#include "collection/RenameBasics.h"

#include "platform/Environment.h"

namespace tavlo {

RenameContext renameContext(Services& services, const CodePage& ansi) {
    const bool gost = services.settings.flag(Setting::TransliteByGOST);
    return {ansi, gost ? Transliteration::Gost : Transliteration::Phonetic, services.errors,
            services.progress, services.cancel};
}

std::string journalFolder() {
    return stateFolder("renames");
}

bool mayRename(Services& services, RenameJournal& journal) {
    if (services.options.dryRun || journal.lock()) return true;
    services.errors.report(Text::RenamingRuns);
    return false;
}

}  // namespace tavlo
