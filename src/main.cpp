#include <array>
#include <vector>

#include "cd/DiscJob.h"
#include "collection/ChangeJob.h"
#include "collection/CopyJob.h"
#include "collection/ListJob.h"
#include "collection/PlaylistJob.h"
#include "collection/RemoveTagsJob.h"
#include "collection/RenameJob.h"
#include "collection/UndoJob.h"
#include "convert/ConversionJob.h"
#include "core/ConsoleProgress.h"
#include "core/ConsoleSink.h"
#include "core/QuietWork.h"
#include "core/StartUp.h"
#include "platform/Console.h"
#include "platform/FileSystem.h"
#include "platform/Registry.h"
#include "platform/Rescue.h"
#include "ui/MainWindow.h"

namespace {

using namespace tavlo;

// A disc has tracks, one without music perhaps files. The width of a list's lines that go to no
// terminal does not matter.
int printList(Services& services) {
    if (const auto drive = wantedDrive(services.options)) {
        const DiscContents disc = ReadDisc(*drive);
        const bool mayHaveFiles =
            disc.toc.text().empty() && disc.answer != CdAnswer::TimedOut;  // that asks the drive
        const bool hasFiles = mayHaveFiles && folderExists(*drive);
        if (!hasFiles) return printDisc(services, *drive, disc);
    }
    const bool terminal = isTerminal(Stream::Output);
    const ListForm form = services.options.json ? ListForm::JsonLines
                          : terminal            ? ListForm::Table
                                                : ListForm::TabLines;
    const int columns = terminal ? terminalColumns(Stream::Output) : 0;
    return listFiles(services, form, static_cast<std::size_t>(columns));
}

// Tells lines at once, and keeps them for a window.
class ToldTwice final : public TextSink {
 public:
    explicit ToldTwice(TextSink& first) : first_(first) {}

    bool write(std::string_view text) override {
        kept.write(text);
        return first_.write(text);
    }

    KeptLines kept;

 private:
    TextSink& first_;
};

// Without a window to show it in, the list is printed.
int showList(Services& services, KeptLines& told) {
    const bool hasWindow = hasDisplay() && !services.options.json && !wantedDrive(services.options);
    return hasWindow ? openMainWindow(services, told) : printList(services);
}

int setUp(Services& services, KeptLines& told) {
    if (hasDisplay()) return openSetup(services, told);
    services.errors.report(Text::NoDisplay);
    return services.errors.exitCode();
}

void mendFiles(ErrorReport& errors) {
    const Recovered found = recoverFiles(rescueFolder());
    if (found.putBack > 0) errors.note(Text::FilesPutBack, std::to_string(found.putBack));
    for (const std::string& path : found.setAside) errors.note(Text::RescueSetAside, path);
}

CancelFlag cancel{false};  // for the interrupt handler it has to outlive everything

}  // namespace

int main(int argc, char** argv) {
    joinConsole();
    Registry registry;
    ConsoleSink output(Stream::Output);
    ConsoleSink errors(Stream::Error);
    ConsoleProgress progress(errors,
                             isTerminal(Stream::Error) ? terminalColumns(Stream::Error) : 0);
    cancelOnInterrupt(cancel);
    ToldTwice messages(progress);
    const std::vector<JobRow> jobs{
        {RunMode::MainWindow,
         [&](Services& services) { return showList(services, messages.kept); }},
        {RunMode::Setup, [&](Services& services) { return setUp(services, messages.kept); }},
        {RunMode::Scan, printList},
        {RunMode::Change, changeTags},
        {RunMode::RemoveTags, removeTags},
        {RunMode::Rename, renameFiles},
        {RunMode::Rename2, renameFiles},
        {RunMode::AutoRename, renameFiles},
        {RunMode::Undo, undoRename},
        {RunMode::MakeLists, makePlaylists},
        {RunMode::Copy, copyPlaylist},
        {RunMode::Encode, convertFiles},
        {RunMode::Decode, convertFiles},
    };
    StartUpParts parts{registry, output, messages, progress, cancel, TAVLO_VERSION};
    parts.mend = mendFiles;
    if (hasDisplay() && !isHeard(Stream::Output)) parts.showPage = openHelp;
    StartUp startUp(parts, jobs);
    const int code = startUp.run(programCommandLine(argc, argv));
    const bool isUntold = !isHeard(Stream::Error) && !messages.kept.lines.empty();
    if (isUntold && hasDisplay()) {
        openMessages(messages.kept.lines, Texts(languageFor(systemLanguage())));
    }
    return code;
}
