// bench_rename FOLDER MUSIC [ROUNDS]: the files of FOLDER renamed by template under second names
// for them, beside a loop of TagLib; plans from records in memory, templates read backwards and
// playlists beside reading the records of MUSIC.
// bench_rename FOLDER --taglib: one pass over FOLDER itself.

#include <taglib/mpegfile.h>
#include <taglib/tag.h>

#include <array>
#include <cstdio>
#include <filesystem>

#include "bench/Copies.h"
#include "bench/Counters.h"
#include "bench/Quiet.h"
#include "bench/Rounds.h"
#include "collection/FolderPlaylist.h"
#include "collection/ListJob.h"
#include "collection/ReverseTemplate.h"
#include "collection/cFilesRename.h"
#include "tags/AudioFile.h"

using namespace tavlo;

namespace {

// What our routines are handed; all that they tell goes nowhere.
struct Desk {
    const CodePage ansi{1252};
    Texts texts;
    NoSink sink;
    NoProgress progress;
    CancelFlag cancel{false};
    ErrorReport errors{texts, sink};
    const RenameContext context{ansi, Transliteration::Phonetic, errors, progress, cancel};
};

Desk& desk() {
    static Desk desk;
    return desk;
}

ID3tag recordOf(const std::string& path) {
    return ReadAudioFile(path, {desk().ansi});
}

// --- Renaming by template ------------------------------------------------------------------------

constexpr const char* usualTemplate = "%N %A - %T";

// As somebody would write it who needs it once: nothing is cleaned, planned or kept from loss. The
// stream is not looked at.
bool renameWithTagLib(const std::string& path) {
    std::string name;
    {
        TagLib::MPEG::File file(path.c_str(), false);
        if (!file.isValid()) return false;
        const TagLib::Tag& tag = *file.tag();
        const unsigned track = tag.track();
        name = (track < 10 ? "0" : "") + std::to_string(track) + " " + tag.artist().to8Bit(true) +
               " - " + tag.title().to8Bit(true) + ".mp3";
    }
    const std::string to = path.substr(0, path.rfind('/') + 1) + name;
    return std::rename(path.c_str(), to.c_str()) == 0;
}

bool renameAllWithTagLib(const std::vector<std::string>& paths) {
    return std::all_of(paths.begin(), paths.end(), renameWithTagLib);
}

bool renameAllOurs(const std::vector<std::string>& paths) {
    cFilesRename renamer(desk().context);
    renamer.Template = usualTemplate;
    RenamePlan plan = renamer.plan(paths);
    renamer.moveAndFollow(plan);
    return std::all_of(plan.begin(), plan.end(), [](const RenameStep& s) { return s.isMoved; });
}

int compareRenaming(const std::string& folder, int rounds) {
    const std::string copies = folder + ".work";
    using std::filesystem::copy_options;
    const auto fresh = [&] {
        return copyFresh(folder, copies, copy_options::recursive | copy_options::create_hard_links);
    };
    if (!fresh()) return 1;
    const std::vector<std::string> paths = mp3FilesBelow(copies);
    std::vector<Contender> contenders{
        {"TagLib", [&] { return renameAllWithTagLib(paths); }, {}, fresh},
        {"plan and move", [&] { return renameAllOurs(paths); }, {}, fresh}};
    if (!runRounds(contenders, rounds)) return 1;
    std::printf("| %zu files, %d rounds | times TagLib's speed | files/s |\n|---|---|---|\n",
                paths.size(), rounds);
    for (const Contender& contender : contenders) {
        std::printf("| %s | %.2f | %.0f |\n", contender.name.c_str(),
                    ratio(contenders[0], contender),
                    static_cast<double>(paths.size()) / median(contender.seconds));
    }
    std::filesystem::remove_all(copies);
    return 0;
}

// --- Beside reading the records ------------------------------------------------------------------

constexpr std::size_t rowCount = 100'000;

// As many records as a large collection has, by those of some files: all in one folder, each with a
// title of its own.
std::vector<ID3tag> manyRecords(const std::vector<std::string>& paths) {
    std::vector<ID3tag> records;
    records.reserve(rowCount);
    for (std::size_t i = 0; i < rowCount; ++i) {
        const std::string number = std::to_string(i);
        ID3tag& record =
            records.emplace_back(i < paths.size() ? recordOf(paths[i]) : records[i - paths.size()]);
        record.SetTitle(std::string(record.GetTitle()) + " " + number);
        record.Path = "/media/anna/Music/Everything/" + number + " as it came.mp3";
    }
    return records;
}

RenamePlan planOf(const std::vector<ID3tag>& records) {
    cFilesRename renamer(desk().context);
    renamer.Template = usualTemplate;
    const std::string folder(folderOf(records[0].Path, nativePathStyle()));
    RenamePlan plan;
    plan.reserve(records.size());
    for (const ID3tag& record : records) {
        plan.push_back(renamer.wantedName(record, record.Path, folder));
    }
    TakenNames taken(nativePathStyle(), [&](const std::string&) {
        std::vector<std::string> names;
        for (const ID3tag& record : records) {
            names.emplace_back(fileNameOf(record.Path, nativePathStyle()));
        }
        return names;
    });
    settleNames(plan, taken, nativePathStyle());
    return plan;
}

bool readPathsBackwards() {
    constexpr std::string_view path =
        "/media/ann/Music/Paper Comets/Orbit and Back Again/07 Silver River.mp3";
    static_assert(path.size() == 70);
    const ReverseTemplate reverse("%A\\%L\\%N %T");
    std::size_t right = 0;
    for (std::size_t i = 0; i < rowCount; ++i) {
        ID3tag record;
        reverse.RetrieveTags(path, PathStyle::Posix, record);
        right += record.GetArtist() == "Paper Comets" && record.GetTitle() == "Silver River";
    }
    return right == rowCount;
}

bool writePlaylistOf(const std::string& folder, const std::string& path) {
    const PlaylistWish wish{.folder = folder, .playlistPath = path, .subfolders = true};
    const auto list = folderPlaylist(wish, desk().ansi, desk().progress, desk().cancel);
    return list && writePlaylist(*list, false);
}

bool listFolder(const std::string& folder) {
    static Registry registry;
    static RegistryEx store(registry);
    static Settings settings(store);
    JobOptions options;
    options.folder = folder;
    options.subfolders = true;
    Services services{options,     settings,        desk().texts,  desk().errors,
                      desk().sink, desk().progress, desk().cancel, 1252};
    return listFiles(services, ListForm::TabLines, 0) == 0;
}

int compareReading(const std::string& music, const std::string& playlist, int rounds) {
    const std::vector<std::string> paths = mp3FilesBelow(music);
    const std::vector<ID3tag> records = manyRecords(paths);
    const auto readAll = [&] {
        return std::all_of(paths.begin(), paths.end(),
                           [](const std::string& path) { return recordOf(path).OK; });
    };
    std::vector<Contender> contenders{
        {"ReadAudioFile", readAll, {}},
        {"plan", [&] { return planOf(records).size() == rowCount; }, {}},
        {"template backwards", readPathsBackwards, {}},
        {"list", [&] { return listFolder(music); }, {}},
        {"playlist", [&] { return writePlaylistOf(music, playlist); }, {}}};
    if (!runRounds(contenders, rounds)) return 1;
    const std::array counts{paths.size(), rowCount, rowCount, paths.size(), paths.size()};
    std::printf("\n| %d rounds | files | times ReadAudioFile's time a file |\n|---|---|---|\n",
                rounds);
    for (std::size_t i = 0; i < contenders.size(); ++i) {
        const double share = static_cast<double>(counts[0]) / static_cast<double>(counts[i]);
        std::printf("| %s | %zu | %.3f |\n", contenders[i].name.c_str(), counts[i],
                    ratio(contenders[i], contenders[0]) * share);
    }
    std::printf("\nA playlist takes %.2f times a list's time.\n",
                ratio(contenders[4], contenders[3]));
    std::filesystem::remove(playlist);
    const PeakWatch peak;
    const RenamePlan plan = planOf(records);
    std::printf("A plan takes at most %zu bytes of heap a row.\n",
                static_cast<std::size_t>(peak.bytes()) / plan.size());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const std::string folder = argv[1], music = argv[2];
    if (music == "--taglib") return renameAllWithTagLib(mp3FilesBelow(folder)) ? 0 : 1;
    const int rounds = argc > 3 ? std::atoi(argv[3]) : 9;
    const int failed = compareRenaming(folder, rounds);
    return failed != 0 ? failed : compareReading(music, folder + ".m3u", rounds);
}
