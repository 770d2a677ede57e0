#pragma once

#include <memory>
#include <string>

#include "desk/Batch.h"
#include "desk/TagChanges.h"
#include "desk/TagLayers.h"
#include "tags/TagWriting.h"

namespace tavlo {

/// One file of the list that something is done to, and what it was when its row was read.
struct FileItem {
    RowId row = 0;
    std::string path;
    std::uint64_t size = 0;
    std::int64_t modified = 0;
    std::shared_ptr<const TagChanges> changes;  ///< what is to be saved; null: nothing
};

enum class FileOutcome {
    Saved,
    Failed,   ///< `message` says why; the file is as it was
    Changed,  ///< it is not what it was when it was read; nothing was written
    Gone,     ///< there is no such file any more
    Read,     ///< read again
    Removed,
    Copied,
    Listed,  ///< `path` is the playlist
};

struct FileResult {
    RowId row = 0;
    std::string path;
    FileOutcome outcome = FileOutcome::Failed;
    std::string message;
    ID3tag record;  ///< what the disk holds now, where it was saved or read
    std::shared_ptr<const TagChanges> changes;  ///< those that were to be saved
};

using FileWork = Batch<FileItem, FileResult>;

struct WorkContext {
    int ansiCodePage = 0;
    TagSettings tags;
    FileCalls& calls = systemCalls();
    RewriteWays ways = {};
};

/// Writes one file's edits and reads back what it holds then. A file that another program changed
/// is left alone unless `evenIfChanged`: then the edits go on top of those changes. One without
/// edits is only read.
FileResult saveTags(const FileItem& item, bool evenIfChanged, const WorkContext& context,
                    const Texts& texts);

/// What may be done with one of a file's tags.
enum class LayerWish {
    CarryOver,  ///< its values go into all the others
    Remove
};

/// Carries out a wish about one tag and reads back what the file holds then: `Saved`, or `Read`
/// where nothing had to be changed. A file that another program changed is left alone.
FileResult changeLayer(const FileItem& item, TagKind kind, LayerWish wish,
                       const WorkContext& context, const Texts& texts);

/// Reads one file again.
FileResult readAgain(const FileItem& item, const WorkContext& context, const Texts& texts);

/// Moves one file to the recycle bin, or deletes it for good. A folder that took its place stays.
FileResult deleteFile(const FileItem& item, bool toRecycleBin, const Texts& texts);

/// Copies one file into a folder; where its name is taken it gets a number.
FileResult copyToFolder(const FileItem& item, const std::string& folder, const Texts& texts);

/// Writes the playlist of a folder, whose path the item has.
FileResult writeList(const FileItem& folder, bool absolutePaths, const WorkContext& context,
                     const Texts& texts, const CancelFlag& cancel);

}  // namespace tavlo
