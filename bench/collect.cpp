// bench_collect FOLDER: collects the audio files of a folder tree as the list does, prints their
// number and what a file costs in memory beyond its path.

#include <cstdio>

#include "bench/Counters.h"
#include "bench/Quiet.h"
#include "collection/cFilesCollection.h"

using namespace tavlo;

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    NoProgress progress;
    CancelFlag cancel{false};
    const Counters before = counters();
    cFilesCollection files(progress, cancel);
    if (!files.FillFromFolder(argv[1], FileType::Audio, true, true, false)) return 1;
    const Counters held = counters() - before;
    std::size_t paths = 0;
    for (std::size_t i = 1; i <= files.count(); ++i) paths += files.GetFile(i).size();
    if (files.count() == 0) return 1;
    std::printf("%zu files, %zu bytes a file beyond its path\n", files.count(),
                (held.heldBytes - paths) / files.count());
    return 0;
}
