#include "collection/cFilesCollection.h"

#include <algorithm>
#include <numeric>

#include "collection/FolderScan.h"
#include "collection/Playlist.h"
#include "core/TextCase.h"
#include "platform/FileSystem.h"

namespace tavlo {

namespace {
// Two names that differ only in case may be two files here.
PathList::Match foundMatch() {
    return nativePathStyle() == PathStyle::Windows ? PathList::Match::WithoutCase
                                                   : PathList::Match::Exact;
}

std::string_view commonFolder(std::string_view folder, std::string_view path, PathStyle style) {
    while (!folder.empty() && !liesIn(path, folder, style)) {
        const std::string_view parent = folderOf(folder, style);
        folder = parent.size() < folder.size() ? parent : std::string_view();
    }
    return folder;
}
}  // namespace

void cFilesCollection::Clean() {
    files_.clear();
    folders_.clear();
}

void cFilesCollection::AddFile(std::string_view path) {
    if (!path.empty()) files_.add(path, PathList::Match::WithoutCase);
}

void cFilesCollection::RemoveFile(std::size_t index) {
    if (index >= 1 && index <= count()) files_.remove(index - 1);
}

void cFilesCollection::AddFolder(std::string_view path) {
    folders_.emplace_back(path);
}

std::string_view cFilesCollection::pathAt(std::size_t index) const {
    return index >= 1 && index <= count() ? files_[index - 1] : std::string_view();
}

std::string cFilesCollection::GetFile(std::size_t index) const {
    return std::string(pathAt(index));
}

std::string cFilesCollection::GetFileName(std::size_t index) const {
    return std::string(fileNameOf(pathAt(index), nativePathStyle()));
}

std::string cFilesCollection::GetFileBaseName(std::size_t index) const {
    return std::string(baseNameOf(pathAt(index), nativePathStyle()));
}

std::string cFilesCollection::GetFileExt(std::size_t index) const {
    return std::string(extensionOf(pathAt(index), nativePathStyle()));
}

FileTypes cFilesCollection::GetFileType(std::size_t index) const {
    return tavlo::GetFileType(pathAt(index));
}

std::string cFilesCollection::GetFilePath(std::size_t index) const {
    return std::string(folderOf(pathAt(index), nativePathStyle()));
}

std::uint64_t cFilesCollection::GetFileSize(std::size_t index) const {
    const auto info = fileInfo(GetFile(index));
    return info ? info->size : 0;
}

std::string cFilesCollection::GetFileSubPath(std::size_t index) const {
    const PathStyle style = nativePathStyle();
    std::string_view path = pathAt(index);
    if (BaseFolder.empty() || !liesIn(path, BaseFolder, style)) return std::string(path);
    path.remove_prefix(std::min(path.size(), BaseFolder.size()));
    while (!path.empty() && isSeparator(path[0], style)) path.remove_prefix(1);
    return std::string(path);
}

std::string cFilesCollection::GetFileSubPathOnly(std::size_t index) const {
    const std::string path = GetFileSubPath(index);
    return std::string(folderOf(path, nativePathStyle()));
}

std::uint64_t cFilesCollection::GetTotalFilesSize() const {
    std::uint64_t total = 0;
    for (std::size_t index = 1; index <= count(); ++index) total += GetFileSize(index);
    return total;
}

std::string cFilesCollection::GetFolder(std::size_t index) const {
    return index >= 1 && index <= folders_.size() ? folders_[index - 1] : std::string();
}

void cFilesCollection::CheckBaseFolder() {
    const PathStyle style = nativePathStyle();
    std::string_view common = folderOf(pathAt(1), style);
    for (std::size_t i = 0; i < count(); ++i) common = commonFolder(common, files_[i], style);
    BaseFolder = common;
}

void cFilesCollection::FilterFiles(FileTypes mask) {
    keepIf([&](std::string_view path) { return (tavlo::GetFileType(path) & mask) != 0; });
}

void cFilesCollection::keepIf(const std::function<bool(std::string_view path)>& test) {
    std::vector<std::uint32_t> kept;
    for (std::size_t i = 0; i < count(); ++i) {
        if (test(files_[i])) kept.push_back(static_cast<std::uint32_t>(i));
    }
    if (kept.size() < count()) files_.arrange(kept);
}

void cFilesCollection::GetFilesFromFolders(FileTypes mask) {
    for (const std::string& folder : folders_) FillFromFolder(folder, mask, false, false, false);
}

// The longest paths first: a folder may become empty by what it held being deleted.
void cFilesCollection::DeleteEmptyFolders() {
    std::vector<std::string> deepestFirst = folders_;
    std::sort(deepestFirst.begin(), deepestFirst.end(),
              [](const std::string& a, const std::string& b) { return a.size() > b.size(); });
    for (const std::string& folder : deepestFirst) {
        if (removeEmptyFolder(folder)) std::erase(folders_, folder);
    }
}

bool cFilesCollection::FillFromPlaylist(const std::string& path, FileTypes mask,
                                        const CodePage& ansi) {
    return FillFromPlaylist(path, mask, ansi, [](const std::string&) {});
}

bool cFilesCollection::FillFromPlaylist(const std::string& path, FileTypes mask,
                                        const CodePage& ansi,
                                        const std::function<void(const std::string&)>& other) {
    const auto take = [&](const PlaylistEntry& entry) {
        if ((tavlo::GetFileType(entry.path) & mask) != 0) {
            files_.add(entry.path, foundMatch());
        } else {
            other(entry.path);
        }
        return true;
    };
    return eachEntryOf(path, ansi, take, &cancel_) || isCancelled();
}

void cFilesCollection::Sort() {
    std::vector<std::uint32_t> order(count());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        return std::is_lt(compareNatural(files_[a], files_[b]));
    });
    files_.arrange(order);
}

// One scan meets no path twice; only a list that held others before has to be asked.
void cFilesCollection::addFound(std::string_view path, FileTypes mask, bool intoEmpty) {
    if ((tavlo::GetFileType(path) & mask) != 0) {
        if (intoEmpty) {
            files_.append(path);
        } else {
            files_.add(path, foundMatch());
        }
    }
    progress_.report(fileNameOf(path, nativePathStyle()));
    progress_.step();
    progress_.pumpMessages();
}

bool cFilesCollection::FillFromFolder(const std::string& folder, FileTypes mask, bool subfolders,
                                      bool clean, bool hidden) {
    if (!folderExists(folder)) return false;
    if (clean) Clean();
    if (isCancelled()) return true;
    FolderScan scan(progress_, cancel_, hidden);
    const std::string paths = scan.run(folder, subfolders);
    unread_.insert(unread_.end(), scan.unreadFolders().begin(), scan.unreadFolders().end());
    // A scan that was cancelled keeps all it found; the walk below ends only by a later cancel.
    const bool wasCancelled = isCancelled();
    const bool intoEmpty = count() == 0;
    progress_.setRange(scan.count());
    for (std::size_t at = 0; at < paths.size() && (wasCancelled || !isCancelled());) {
        const std::string_view path = paths.data() + at;
        addFound(path, mask, intoEmpty);
        at += path.size() + 1;
    }
    progress_.setRange(0);
    return true;
}

}  // namespace tavlo
