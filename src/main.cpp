#include <array>
#include <vector>

#include "cd/DiscJob.h"
#include "collection/ChangeJob.h"
#include "collection/CopyJob.h"
#include "collection/ListJob.h"
#include "collection/PlaylistJob.h"
#include "collection/RenameJob.h"
#include "collection/UndoJob.h"
#include "convert/ConversionJob.h"
#include "core/ConsoleProgress.h"
#include "core/ConsoleSink.h"
#include "core/StartUp.h"
#include "platform/Console.h"
#include "platform/FileSystem.h"
#include "platform/Registry.h"

namespace {

using namespace tavlo;

// A disc has tracks, one without music perhaps files. The width of a list's lines that go to no
// terminal does not matter.
int printList(Services& services) {
    if (const auto drive = wantedDrive(services.options)) {
        const DiscContents disc = ReadDisc(*drive);
        const bool hasFiles = disc.toc.text().empty() && folderExists(*drive);
        if (!hasFiles) return printDisc(services, *drive, disc);
    }
    const bool terminal = isTerminal(Stream::Output);
    const ListForm form = services.options.json ? ListForm::JsonLines
                          : terminal            ? ListForm::Table
                                                : ListForm::TabLines;
    const int columns = terminal ? terminalColumns(Stream::Output) : 0;
    return listFiles(services, form, static_cast<std::size_t>(columns));
}

CancelFlag cancel{false};  // for the interrupt handler it has to outlive everything

}  // namespace

int main(int argc, char** argv) {
    Registry registry;
    ConsoleSink output(Stream::Output);
    ConsoleSink errors(Stream::Error);
    ConsoleProgress progress(errors,
                             isTerminal(Stream::Error) ? terminalColumns(Stream::Error) : 0);
    cancelOnInterrupt(cancel);
    // Without a window to show it in, the list is printed.
    const std::vector<JobRow> jobs{
        {RunMode::MainWindow, printList}, {RunMode::Scan, printList},
        {RunMode::Change, changeTags},    {RunMode::Rename, renameFiles},
        {RunMode::Rename2, renameFiles},  {RunMode::AutoRename, renameFiles},
        {RunMode::Undo, undoRename},      {RunMode::MakeLists, makePlaylists},
        {RunMode::Copy, copyPlaylist},    {RunMode::Encode, convertFiles},
        {RunMode::Decode, convertFiles},
    };
    StartUp startUp({registry, output, progress, progress, cancel, TAVLO_VERSION}, jobs);
    return startUp.run(programCommandLine(argc, argv));
}
