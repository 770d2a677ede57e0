#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "collection/PathList.h"
#include "collection/Playlist.h"
#include "core/PathText.h"
#include "core/Progress.h"
#include "platform/CodePage.h"
#include "tags/FileType.h"

namespace tavlo {

/// The ordered set of file paths that a list or a batch job works on. Indexes begin at 1; an index
/// beyond the end gives empty text, 0 or nothing done. A path is held once, letters compared
/// without case; only files that a case-sensitive disk really holds apart are both kept by a scan.
class cFilesCollection {
 public:
    std::string BaseFolder;    ///< what sub-paths are computed against
    std::string TargetFolder;  ///< where a job writes to

    cFilesCollection(Progress& progress, const CancelFlag& cancel)
        : progress_(progress), cancel_(cancel) {}

    void Clean();
    /// Adds a path unless it is held already.
    void AddFile(std::string_view path);
    void RemoveFile(std::size_t index);
    void AddFolder(std::string_view path);

    [[nodiscard]] std::size_t FilesCount() const { return files_.count(); }
    [[nodiscard]] std::size_t count() const { return files_.count(); }
    [[nodiscard]] std::size_t FoldersCount() const { return folders_.size(); }
    [[nodiscard]] std::size_t AllCount() const { return FilesCount() + FoldersCount(); }

    [[nodiscard]] std::string GetFile(std::size_t index) const;
    [[nodiscard]] std::string GetFileName(std::size_t index) const;
    [[nodiscard]] std::string GetFileBaseName(std::size_t index) const;
    [[nodiscard]] std::string GetFileExt(std::size_t index) const;
    [[nodiscard]] FileTypes GetFileType(std::size_t index) const;
    [[nodiscard]] std::string GetFilePath(std::size_t index) const;
    [[nodiscard]] std::uint64_t GetFileSize(std::size_t index) const;
    /// Subfolders that no scan could read.
    [[nodiscard]] const std::vector<std::string>& unreadFolders() const { return unread_; }
    /// The path below `BaseFolder`; the whole path for a file that lies elsewhere.
    [[nodiscard]] std::string GetFileSubPath(std::size_t index) const;
    /// The same without the name; empty for a file directly in `BaseFolder`.
    [[nodiscard]] std::string GetFileSubPathOnly(std::size_t index) const;
    [[nodiscard]] std::uint64_t GetTotalFilesSize() const;
    [[nodiscard]] std::uint64_t GetTotalFilesSizeK() const { return GetTotalFilesSize() >> 10U; }
    [[nodiscard]] std::uint64_t GetTotalFilesSizeM() const { return GetTotalFilesSize() >> 20U; }
    [[nodiscard]] std::string GetFolder(std::size_t index) const;

    /// Makes `BaseFolder` the longest folder that all items lie in; empty where there is none.
    void CheckBaseFolder();
    /// Keeps only the items whose type is in the mask.
    void FilterFiles(FileTypes mask);
    /// Keeps only the items that the test accepts.
    void keepIf(const std::function<bool(std::string_view path)>& test);
    /// Scans every listed folder, without subfolders and hidden files.
    void GetFilesFromFolders(FileTypes mask);
    /// Deletes the listed folders that are empty and takes them off the list.
    void DeleteEmptyFolders();
    /// Adds the entries of an M3U playlist whose type is in the mask; relative entries start from
    /// the playlist's folder. False when it cannot be read; the cancel flag leaves what was read.
    bool FillFromPlaylist(const std::string& path, FileTypes mask, const CodePage& ansi);
    /// The same; each entry of another type goes to `other`.
    bool FillFromPlaylist(const std::string& path, FileTypes mask, const CodePage& ansi,
                          const std::function<void(const std::string& path)>& other);
    /// By path, ascending, without case, digits as numbers.
    void Sort();
    /// Adds the files of a folder whose type is in the mask: with subfolders depth first, a
    /// subfolder's files before the folder's own. False when there is no such folder. The cancel
    /// flag ends the scan and leaves what was gathered.
    bool FillFromFolder(const std::string& folder, FileTypes mask, bool subfolders, bool clean,
                        bool hidden);

 private:
    [[nodiscard]] std::string_view pathAt(std::size_t index) const;
    [[nodiscard]] bool isCancelled() const { return cancel_.load(std::memory_order_relaxed); }
    void addFound(std::string_view path, FileTypes mask, bool intoEmpty);

    Progress& progress_;
    const CancelFlag& cancel_;
    PathList files_;
    std::vector<std::string> folders_;
    std::vector<std::string> unread_;
};

}  // namespace tavlo
