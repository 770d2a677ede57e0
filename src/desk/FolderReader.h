#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "desk/FileRow.h"

namespace tavlo {

/// What a list is to show.
struct ReadWish {
    std::vector<std::string> paths;  ///< folders, playlists and audio files
    bool subfolders = false;
    int ansiCodePage = 0;
};

/// Reads the files of folders and playlists while its owner goes on: one thread looks for them,
/// another one reads them. The order is that of the scan. An owner that goes lets both stop by
/// themselves, so that a disk that hangs holds nobody up.
class FolderReader {
 public:
    explicit FolderReader(ReadWish wish);
    FolderReader(const FolderReader&) = delete;
    FolderReader& operator=(const FolderReader&) = delete;
    ~FolderReader();

    /// Ends the reading; what was read can still be taken.
    void cancel();

    /// The rows that were read since the last call, at most so many.
    std::vector<FileRow> take(std::size_t most);
    /// Where their texts lie.
    [[nodiscard]] std::shared_ptr<TextStore> store() const;

    /// True when no more rows will come and all were taken.
    [[nodiscard]] bool isDone() const;
    [[nodiscard]] std::size_t found() const;  ///< files so far
    [[nodiscard]] std::size_t read() const;
    /// Folders and playlists that could not be read, once it is done.
    [[nodiscard]] std::vector<std::string> unread() const;

 private:
    struct Shared;
    static void look(const std::shared_ptr<Shared>& shared);
    static void readAll(const std::shared_ptr<Shared>& shared);

    std::shared_ptr<Shared> shared_;
};

}  // namespace tavlo
