#include "core/ConsoleProgress.h"
#include "core/ConsoleSink.h"
#include "core/StartUp.h"
#include "platform/Console.h"
#include "platform/Registry.h"

namespace {

using namespace tavlo;

CancelFlag cancel{false};  // for the interrupt handler it has to outlive everything

}  // namespace

int main(int argc, char** argv) {
    Registry registry;
    ConsoleSink output(Stream::Output);
    ConsoleSink errors(Stream::Error);
    ConsoleProgress progress(errors,
                             isTerminal(Stream::Error) ? terminalColumns(Stream::Error) : 0);
    cancelOnInterrupt(cancel);
    StartUp startUp({registry, output, progress, progress, cancel, TAVLO_VERSION}, {});
    return startUp.run(programCommandLine(argc, argv));
}
