#include "collection/JournalBelief.h"

#include <algorithm>
#include <array>

#include "collection/Playlist.h"
#include "collection/cFilesRename.h"
#include "core/PathText.h"
#include "core/TextCase.h"
#include "tags/FileType.h"

namespace tavlo {

BatchBounds::BatchBounds(const JournalBatch& batch)
    : folders_(batch.roots.begin(), batch.roots.end()) {
    folders_.insert(batch.within.begin(), batch.within.end());
}

bool BatchBounds::hold(std::string_view path) const {
    for (; !path.empty(); path = parentOf(path, nativePathStyle())) {
        if (folders_.contains(path)) return true;
    }
    return false;
}

std::vector<std::string> BatchBounds::widenTo(const std::vector<JournalRow>& rows) {
    std::vector<std::string> added;
    for (const JournalRow& row : rows) {
        for (const std::string& path : {row.from, row.to}) {
            if (hold(path)) continue;
            added.emplace_back(folderOf(path, nativePathStyle()));
            folders_.insert(added.back());
        }
    }
    return added;
}

namespace {
// Full, and without a step that leads elsewhere than the text says.
bool isStraight(std::string_view path) {
    const PathStyle style = nativePathStyle();
    if (!isAbsolutePath(path, style)) return false;
    while (!path.empty()) {
        const std::size_t at = lastSeparator(path, style);
        const std::string_view level = path.substr(at + 1);
        if (level == "." || level == "..") return false;
        path = path.substr(0, at == std::string_view::npos ? 0 : at);
    }
    return true;
}

// A file of a circle that was broken off stands aside.
std::string_view withoutAside(std::string_view path) {
    if (path.ends_with(cFilesRename::asideEnding)) {
        path.remove_suffix(cFilesRename::asideEnding.size());
    }
    return path;
}

std::string_view withoutExtension(std::string_view path) {
    const std::size_t size = extensionOf(path, nativePathStyle()).size();
    return size == 0 ? path : path.substr(0, path.size() - size - 1);
}

bool isAudio(std::string_view path) {
    return (GetFileType(path) & FileType::Audio) != 0;
}

bool isCompanion(std::string_view path) {
    constexpr std::array<std::string_view, 9> extensions{"jpg",  "jpeg", "png", "gif", "bmp",
                                                         "webp", "lrc",  "txt", "cue"};
    const std::string_view extension = extensionOf(path, nativePathStyle());
    return std::ranges::any_of(
        extensions, [&](std::string_view each) { return equalsNoCase(each, extension); });
}

class Believer {
 public:
    explicit Believer(const JournalBatch& batch) : bounds_(batch) {
        for (const JournalRow& row : batch.rows) {
            if (isAudio(row.from)) songs_.emplace(basesOf(row));
        }
    }

    [[nodiscard]] bool believes(const JournalRow& row) const {
        const std::string_view to = withoutAside(row.to);
        const PathStyle style = nativePathStyle();
        if (!isStraight(row.from) || !isStraight(to) || !stays(row)) return false;
        if (!equalsNoCase(extensionOf(row.from, style), extensionOf(to, style))) return false;
        return isAudio(row.from) || isPlaylist(row.from) ||
               (isCompanion(row.from) && songs_.contains(basesOf(row)));
    }
    [[nodiscard]] bool believesFolder(const std::string& folder) const {
        return isStraight(folder) && (bounds_.isEmpty() || bounds_.hold(folder));
    }

 private:
    static std::pair<std::string, std::string> basesOf(const JournalRow& row) {
        return {std::string(withoutExtension(row.from)),
                std::string(withoutExtension(withoutAside(row.to)))};
    }
    // Older journals of single files tell no folders: their names went below the file's own.
    [[nodiscard]] bool stays(const JournalRow& row) const {
        const PathStyle style = nativePathStyle();
        if (bounds_.isEmpty()) return liesIn(row.to, folderOf(row.from, style), style);
        return bounds_.hold(row.from) && bounds_.hold(row.to);
    }

    BatchBounds bounds_;
    std::set<std::pair<std::string, std::string>> songs_;
};
}  // namespace

std::vector<JournalRow> takeUnbelievable(JournalBatch& batch) {
    const Believer believer(batch);
    std::vector<JournalRow> out;
    std::erase_if(batch.rows, [&](const JournalRow& row) {
        if (believer.believes(row)) return false;
        out.push_back(row);
        return true;
    });
    std::erase_if(batch.newFolders,
                  [&](const std::string& folder) { return !believer.believesFolder(folder); });
    std::erase_if(batch.lists, [](const JournalList& list) {
        return !isStraight(list.path) || !isPlaylist(list.path);
    });
    return out;
}

}  // namespace tavlo
