#include "collection/RenameBasics.h"

#include <chrono>

#include "platform/Environment.h"

namespace tavlo {

RenameContext renameContext(Services& services, const CodePage& ansi) {
    const bool gost = services.settings.flag(Setting::TransliteByGOST);
    return {ansi, gost ? Transliteration::Gost : Transliteration::Phonetic, services.errors,
            services.progress, services.cancel};
}

std::string journalFolder() {
    const std::string folder = settingsFolder();
    return folder.empty() ? folder : joinPath(folder, "renames", nativePathStyle());
}

bool mayRename(Services& services, RenameJournal& journal) {
    if (services.options.dryRun || journal.lock()) return true;
    services.errors.report(Text::RenamingRuns);
    return false;
}

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

}  // namespace tavlo
