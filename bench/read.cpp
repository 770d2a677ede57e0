// bench_read FOLDER [ROUNDS]: our reader of MP3 files beside a loop that only reads and TagLib.
// bench_read FOLDER --ours | --taglib | --walk: one pass, for other tools to look at.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "bench/Counters.h"
#include "bench/Rounds.h"
#include "bench/TagLibReader.h"
#include "tags/AudioFile.h"
#include "tests/support/RecordTexts.h"

using namespace tavlo;

namespace {

// Open, size, 4 KB of the head, 300 bytes of the tail, close.
std::size_t readPlainly(const std::string& path) {
    std::array<char, 4096> head;
    std::array<char, 300> tail;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || ::fstat(file, &status) != 0) return 0;
    const off_t behind = std::max<off_t>(status.st_size - static_cast<off_t>(tail.size()), 0);
    const ssize_t bytes = ::pread(file, head.data(), head.size(), 0) +
                          ::pread(file, tail.data(), tail.size(), behind);
    ::close(file);
    return static_cast<std::size_t>(bytes);
}

std::size_t readOurs(const std::string& path) {
    static const CodePage ansi(1252);
    const ID3tag record = ReadAudioFile(path, {ansi});
    return record.OK ? record.GetTitle().size() + record.GetArtist().size() + record.Length : 0;
}

// Bytes of heap that the texts of a record take.
std::size_t textBytes(const ID3tag& record) {
    std::size_t bytes = 0;
    for (const std::string* text : test::textsOf(record)) {
        bytes += text->size();
    }
    return bytes;
}

using Reader = std::size_t (*)(const std::string&);

bool readAll(const std::vector<std::string>& paths, Reader read) {
    return std::all_of(paths.begin(), paths.end(),
                       [&](const std::string& path) { return read(path) != 0; });
}

void printHeld(const std::vector<std::string>& paths) {
    const CodePage ansi(1252);
    std::size_t texts = 0;
    const Counters before = counters();
    std::vector<ID3tag> records;
    records.reserve(paths.size());
    for (const std::string& path : paths) {
        records.push_back(ReadAudioFile(path, {ansi}));
        texts += textBytes(records.back());
    }
    const Counters held = counters() - before;
    std::printf("\nA kept record: %zu bytes of texts and %zu bytes beyond them.\n",
                texts / paths.size(), (held.heldBytes - texts) / paths.size());
}

int compare(const std::vector<std::string>& paths, int rounds) {
    struct Row {
        const char* name;
        Reader read;
    };
    constexpr std::array<Row, 3> rows{
        {{"plain loop", readPlainly}, {"TagLib", readWithTagLib}, {"ReadAudioFile", readOurs}}};
    std::vector<Contender> contenders;
    for (const Row& row : rows) {
        contenders.push_back({row.name, [&] { return readAll(paths, row.read); }, {}});
    }
    if (!runRounds(contenders, rounds)) return 1;
    std::printf(
        "| %zu files, %d rounds | times the plain loop | times TagLib's speed | files/s |"
        " reads a file | bytes read a file | operator new a file |\n"
        "|---|---|---|---|---|---|---|\n",
        paths.size(), rounds);
    const auto count = static_cast<double>(paths.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Counters before = counters();
        readAll(paths, rows[i].read);
        const Counters spent = counters() - before;
        std::printf("| %s | %.2f | %.2f | %.0f | %.2f | %.0f | %.1f |\n", rows[i].name,
                    ratio(contenders[i], contenders[0]), ratio(contenders[1], contenders[i]),
                    count / median(contenders[i].seconds), static_cast<double>(spent.reads) / count,
                    static_cast<double>(spent.readBytes) / count,
                    static_cast<double>(spent.allocations) / count);
    }
    printHeld(paths);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    const std::string mode = argc > 2 ? argv[2] : "9";
    const std::vector<std::string> paths = mp3FilesBelow(argv[1]);
    if (mode == "--ours") return readAll(paths, readOurs) ? 0 : 1;
    if (mode == "--taglib") return readAll(paths, readWithTagLib) ? 0 : 1;
    if (mode == "--walk") return 0;
    return compare(paths, std::atoi(mode.c_str()));
}
