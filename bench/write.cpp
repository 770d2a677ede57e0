// bench_write FOLDER [ROUNDS]: the title of every MP3 file of FOLDER set in copies, by us beside
// TagLib and a loop that only moves the bytes: over the tag where it ends in padding, else into a
// new file that takes the old one's place.
// bench_write FOLDER --ours | --taglib | --plain | --walk: one pass over FOLDER itself.

#include <fcntl.h>
#include <sys/stat.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>

#include "bench/Copies.h"
#include "bench/Counters.h"
#include "bench/Quiet.h"
#include "bench/Rounds.h"
#include "platform/File.h"
#include "tags/UpdateTags.h"

using namespace tavlo;

namespace {

// Longer than any title of the files, so that it needs the padding or makes the tag grow.
const std::string newTitle =
    "A title for the measurement that is longer than any other one in the files that it is for";

constexpr std::size_t headSize = 4096;

std::size_t tagSize(const std::string& bytes) {
    std::size_t size = 0;
    for (std::size_t i = 6; i < TagLib::ID3v2::Header::size(); ++i) {
        size = size << 7U | static_cast<unsigned char>(bytes[i]);
    }
    return size + TagLib::ID3v2::Header::size();
}

// Tag in memory, written with a kilobyte more beside the sound that the system copies.
bool replacePlainly(const std::string& path, int from, off_t size, std::string tag) {
    const std::string temporary = path + ".tmp";
    auto source = static_cast<off_t>(tag.size());
    tag.resize(tag.size() + 1024);
    const std::size_t body = tag.size() - TagLib::ID3v2::Header::size();
    for (std::size_t i = 0; i < 4; ++i) tag[6 + i] = static_cast<char>(body >> (21 - 7 * i) & 127U);
    const int to = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    bool done = ::pwrite(to, tag.data(), tag.size(), 0) == static_cast<ssize_t>(tag.size());
    auto target = static_cast<off_t>(tag.size());
    while (done && source < size) {
        done = ::copy_file_range(from, &source, to, &target,
                                 static_cast<std::size_t>(size - source), 0) > 0;
    }
    done = done && ::fsync(to) == 0;
    ::close(to);
    return done && ::rename(temporary.c_str(), path.c_str()) == 0;
}

bool writePlainly(const std::string& path) {
    constexpr std::size_t room = 600;
    std::string head(headSize, '\0');
    const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || ::fstat(file, &status) != 0) return false;
    if (::pread(file, head.data(), head.size(), 0) != static_cast<ssize_t>(head.size()))
        return false;
    const std::size_t size = tagSize(head);
    if (size > head.size()) {
        head.resize(size);
        if (::pread(file, head.data(), size, 0) != static_cast<ssize_t>(size)) return false;
    }
    head.resize(size);
    const bool fits = head.find_last_not_of('\0') + room < size;
    const bool done = fits ? ::pwrite(file, head.data(), size, 0) == static_cast<ssize_t>(size)
                           : replacePlainly(path, file, status.st_size, head);
    ::close(file);
    return done;
}

bool writeWithTagLib(const std::string& path) {
    using TagLib::MPEG::File;
    TagLib::ID3v2::FrameFactory::instance()->setDefaultTextEncoding(TagLib::String::UTF16);
    File file(path.c_str(), false);
    if (!file.isValid()) return false;
    file.ID3v2Tag(true)->setTitle(newTitle);
    return file.save(File::ID3v2, File::StripNone, TagLib::ID3v2::v3, File::DoNotDuplicate);
}

bool writeTitle(const std::string& path, const std::string& title) {
    static const CodePage ansi(1252);
    static const Texts texts;
    static NoSink sink;
    static ErrorReport errors(texts, sink);
    static NoProgress progress;
    TagSettings settings;
    settings.id3v1 = false;
    settings.id3v2Unicode = true;
    const WriteContext context{ansi, settings, errors, progress};
    ID3tag record;
    record.Path = path;
    record.FileType = FileType::Mp3;
    record.OK = true;
    record.SetTitle(title);
    return UpdateTags(record, context) == TagUpdate::Written;
}

bool writeOurs(const std::string& path) {
    return writeTitle(path, newTitle);
}

using Writer = bool (*)(const std::string&);

bool writeAll(const std::vector<std::string>& paths, Writer write) {
    return std::all_of(paths.begin(), paths.end(), write);
}

std::string bytesBehindTag(const std::string& path) {
    const std::string bytes = readFile(path, 1U << 30U).value_or("");
    return bytes.size() < headSize ? "" : bytes.substr(tagSize(bytes));
}

// The sound is the old one, the title, as TagLib reads it, the new one.
bool isWritten(const std::string& path, const std::string& original) {
    TagLib::MPEG::File file(path.c_str(), false);
    return file.isValid() && file.ID3v2Tag()->title() == TagLib::String(newTitle) &&
           bytesBehindTag(path) == bytesBehindTag(original);
}

ino_t numberOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

// Of our files, those whose next edit stays in the same file, which is told by its number.
void printNextEdit(const std::vector<std::string>& paths) {
    std::size_t inPlace = 0;
    for (const std::string& path : paths) {
        const ino_t before = numberOf(path);
        const bool done = writeTitle(path, newTitle + " again");
        inPlace += done && numberOf(path) == before ? 1U : 0U;
    }
    std::printf("\nOur next edit of these files is in place in %zu of %zu.\n", inPlace,
                paths.size());
}

struct Row {
    const char* name;
    Writer write;
};
constexpr std::array<Row, 3> rows{
    {{"plain loop", writePlainly}, {"TagLib", writeWithTagLib}, {"UpdateTags", writeOurs}}};

void printRow(const std::vector<Contender>& contenders, std::size_t row, std::size_t count,
              std::uint64_t bytes, const Counters& spent) {
    const auto files = static_cast<double>(count);
    std::printf("| %s | %.2f | %.2f | %.0f | %.2f | %.0f | %.3f | %.3f |\n", rows[row].name,
                ratio(contenders[row], contenders[0]), ratio(contenders[1], contenders[row]),
                files / median(contenders[row].seconds), static_cast<double>(spent.writes) / files,
                static_cast<double>(spent.writtenBytes) / files,
                static_cast<double>(spent.readBytes) / static_cast<double>(bytes),
                static_cast<double>(spent.writtenBytes) / static_cast<double>(bytes));
}

int compare(const std::string& folder, int rounds) {
    const std::string copies = folder + ".work";
    if (!copyFresh(folder, copies)) return 1;
    const std::vector<std::string> originals = mp3FilesBelow(folder), paths = mp3FilesBelow(copies);
    const auto fresh = [&] { return copyFresh(folder, copies); };
    std::vector<Contender> contenders;
    for (const Row& row : rows) {
        contenders.push_back({row.name, [&] { return writeAll(paths, row.write); }, {}, fresh});
    }
    if (!runRounds(contenders, rounds)) return 1;
    std::printf(
        "| %zu files, %d rounds | times the plain loop | times TagLib's speed | files/s |"
        " writes a file | bytes written a file | read, of the file | written, of the file |\n"
        "|---|---|---|---|---|---|---|---|\n",
        paths.size(), rounds);
    std::uint64_t bytes = 0;
    for (const std::string& path : originals) bytes += std::filesystem::file_size(path);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Counters before = fresh() ? counters() : Counters();
        writeAll(paths, rows[i].write);
        printRow(contenders, i, paths.size(), bytes, counters() - before);
        if (i > 0 && !std::equal(paths.begin(), paths.end(), originals.begin(), isWritten))
            return 1;
    }
    printNextEdit(paths);
    std::filesystem::remove_all(copies);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    const std::string mode = argc > 2 ? argv[2] : "9";
    const std::vector<std::string> paths = mp3FilesBelow(argv[1]);
    if (mode == "--ours") return writeAll(paths, writeOurs) ? 0 : 1;
    if (mode == "--taglib") return writeAll(paths, writeWithTagLib) ? 0 : 1;
    if (mode == "--plain") return writeAll(paths, writePlainly) ? 0 : 1;
    if (mode == "--walk") return 0;
    return compare(argv[1], std::atoi(mode.c_str()));
}
