#include "desk/FolderReader.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "collection/FolderScan.h"
#include "collection/Playlist.h"
#include "core/QuietWork.h"
#include "platform/FileSystem.h"
#include "platform/PriorityClass.h"
#include "tags/AudioFile.h"

namespace tavlo {

struct FolderReader::Shared {
    explicit Shared(ReadWish wanted) : wish(std::move(wanted)) {}

    const ReadWish wish;
    CancelFlag cancel{false};
    std::atomic<std::size_t> found{0}, read{0};
    const std::shared_ptr<TextStore> store = std::make_shared<TextStore>();  // the reader adds

    mutable std::mutex mutex;  // of all below
    std::condition_variable changed;
    std::deque<std::string> paths;
    bool allFound = false, allRead = false;
    int running = 2;  // threads
    std::condition_variable ended;
    std::vector<FileRow> rows;
    std::vector<std::string> unread;

    void add(std::vector<std::string> more) {
        if (more.empty()) return;
        found += more.size();
        const std::scoped_lock lock(mutex);
        std::ranges::move(more, std::back_inserter(paths));
        changed.notify_one();
    }
    void miss(std::string path) {
        const std::scoped_lock lock(mutex);
        unread.push_back(std::move(path));
    }
    void end() {
        const std::scoped_lock lock(mutex);
        --running;
        ended.notify_one();
    }
    // Waits for the next path; nothing at the end.
    std::optional<std::string> next() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return !paths.empty() || allFound || cancel; });
        if (paths.empty() || cancel) return std::nullopt;
        std::string path = std::move(paths.front());
        paths.pop_front();
        return path;
    }
};

namespace {
bool isListed(std::string_view path) {
    return (GetFileType(path) & FileType::Audio) != 0;
}

// What a scan found: paths, each ended by a NUL.
std::vector<std::string> listedOf(std::string_view paths) {
    std::vector<std::string> listed;
    while (!paths.empty()) {
        const std::string_view path = paths.substr(0, paths.find('\0'));
        if (isListed(path)) listed.emplace_back(path);
        paths.remove_prefix(path.size() + 1);
    }
    return listed;
}
}  // namespace

void FolderReader::look(const std::shared_ptr<Shared>& shared) {
    NoProgress progress;
    for (const std::string& path : shared->wish.paths) {
        if (folderExists(path)) {
            FolderScan scan(progress, shared->cancel, false);
            scan.run(path, shared->wish.subfolders,
                     [&](std::string_view paths) { shared->add(listedOf(paths)); });
            for (const std::string& folder : scan.unreadFolders()) shared->miss(folder);
        } else if (isPlaylist(path)) {
            std::vector<std::string> files;
            const auto take = [&](PlaylistEntry entry) {
                if (isListed(entry.path)) files.push_back(std::move(entry.path));
                return true;
            };
            const CodePage ansi(shared->wish.ansiCodePage);
            if (!eachEntryOf(path, ansi, take, &shared->cancel)) shared->miss(path);
            shared->add(std::move(files));
        } else if (isListed(path)) {
            shared->add({path});
        } else {
            shared->miss(path);
        }
    }
    const std::scoped_lock lock(shared->mutex);
    shared->allFound = true;
    shared->changed.notify_one();
}

// Rows are handed over in small heaps, so that the two threads seldom meet.
void FolderReader::readAll(const std::shared_ptr<Shared>& shared) {
    using Clock = std::chrono::steady_clock;
    constexpr std::size_t mostKept = 64;
    constexpr auto longestKept = std::chrono::milliseconds(20);
    const CodePage ansi(shared->wish.ansiCodePage);
    std::vector<FileRow> kept;
    auto since = Clock::now();
    const auto handOver = [&] {
        const std::scoped_lock lock(shared->mutex);
        std::ranges::move(kept, std::back_inserter(shared->rows));
        kept.clear();
        since = Clock::now();
    };
    while (const auto path = shared->next()) {
        kept.push_back(rowOf(ReadAudioFile(*path, {ansi}), *path, *shared->store));
        ++shared->read;
        if (kept.size() >= mostKept || Clock::now() - since > longestKept) handOver();
    }
    handOver();
    const std::scoped_lock lock(shared->mutex);
    shared->allRead = true;
}

FolderReader::FolderReader(ReadWish wish) : shared_(std::make_shared<Shared>(std::move(wish))) {
    for (const auto work : {look, readAll}) {
        std::thread([shared = shared_, work] {
            giveWayToOtherThreads();  // a full processor must not be felt in the window
            work(shared);
            shared->end();
        }).detach();
    }
}

// Threads end within a file, unless a disk hangs: nobody waits for that.
FolderReader::~FolderReader() {
    constexpr auto longest = std::chrono::milliseconds(500);
    cancel();
    std::unique_lock lock(shared_->mutex);
    shared_->ended.wait_for(lock, longest, [this] { return shared_->running == 0; });
}

void FolderReader::cancel() {
    const std::scoped_lock lock(shared_->mutex);
    shared_->cancel = true;
    shared_->changed.notify_one();
}

std::vector<FileRow> FolderReader::take(std::size_t most) {
    const std::scoped_lock lock(shared_->mutex);
    std::vector<FileRow>& rows = shared_->rows;
    if (rows.size() <= most) return std::exchange(rows, {});
    const auto end = rows.begin() + static_cast<std::ptrdiff_t>(most);
    std::vector<FileRow> taken(rows.begin(), end);
    rows.erase(rows.begin(), end);
    return taken;
}

std::shared_ptr<TextStore> FolderReader::store() const {
    return shared_->store;
}

bool FolderReader::isDone() const {
    const std::scoped_lock lock(shared_->mutex);
    return shared_->allRead && shared_->rows.empty();
}

std::size_t FolderReader::found() const {
    return shared_->found;
}

std::size_t FolderReader::read() const {
    return shared_->read;
}

std::vector<std::string> FolderReader::unread() const {
    const std::scoped_lock lock(shared_->mutex);
    return shared_->unread;
}

}  // namespace tavlo
