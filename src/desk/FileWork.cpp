#include "desk/FileWork.h"

#include <algorithm>

#include "collection/FolderPlaylist.h"
#include "collection/RenamePlan.h"
#include "core/QuietWork.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "platform/RecycleBin.h"
#include "tags/AudioFile.h"
#include "tags/UpdateTags.h"

namespace tavlo {

namespace {
FileResult resultOf(const FileItem& item) {
    return {item.row, item.path, FileOutcome::Failed, {}, {}, item.changes};
}

FileResult gone(const FileItem& item, const Texts& texts) {
    FileResult result = resultOf(item);
    result.outcome = FileOutcome::Gone;
    result.message = texts.get(Text::FileGone, item.path);
    return result;
}

// Whether it still is what it was when it was read.
bool isUnchanged(const FileItem& item, const FileInfo& there) {
    return there.size == item.size && there.modified == item.modified;
}

bool isFolder(const FileItem& item) {
    const auto there = fileInfo(item.path);
    return there && there->isFolder;
}

FileOutcome write(const FileItem& item, ID3tag& record, const WriteContext& context) {
    if (!record.OK) {
        context.errors.report(Text::FileNotRead, item.path);
        return FileOutcome::Failed;
    }
    item.changes->applyTo(record);
    const bool isRefused = UpdateTags(record, context) == TagUpdate::Refused;
    return isRefused || context.errors.count() > 0 ? FileOutcome::Failed : FileOutcome::Saved;
}
}  // namespace

FileResult saveTags(const FileItem& item, bool evenIfChanged, const WorkContext& context,
                    const Texts& texts) {
    if (!item.changes) return readAgain(item, context, texts);
    const auto there = fileInfo(item.path);
    if (!there || there->isFolder) return gone(item, texts);
    FileResult result = resultOf(item);
    const CodePage ansi(context.ansiCodePage);
    if (!evenIfChanged && !isUnchanged(item, *there)) {
        result.outcome = FileOutcome::Changed;
        return result;
    }
    KeptLines kept;
    ErrorReport errors(texts, kept);
    NoProgress progress;
    ID3tag record = ReadAudioFile(item.path, {ansi});
    result.outcome = write(
        item, record, {ansi, context.tags, errors, progress, context.calls, false, context.ways});
    result.message = kept.joined();
    if (result.outcome == FileOutcome::Failed && result.message.empty()) {
        result.message = texts.get(Text::FileNotWritten, item.path);
    }
    result.record = ReadAudioFile(item.path, {ansi});
    return result;
}

namespace {
// What the layers say now is what counts; it is what they said when they were shown.
TagUpdate carryLayer(const FileItem& item, TagKind kind, const WriteContext& context) {
    File file(context.calls);
    std::vector<TagLayer> layers;
    if (file.open(item.path, Access::Read)) {
        layers = readLayers(file, GetFileType(item.path), context.ansi);
    }
    file.close();
    const auto layer = std::ranges::find(layers, kind, &TagLayer::kind);
    ID3tag record = ReadAudioFile(item.path, {context.ansi});
    if (layer == layers.end() || !record.OK) {
        context.errors.report(Text::FileNotRead, item.path);
        return TagUpdate::Refused;
    }
    return carryOver(record, layers, static_cast<std::size_t>(layer - layers.begin()), context);
}

TagUpdate removeLayer(const FileItem& item, TagKind kind, const WriteContext& context) {
    ID3tag record;
    record.Path = item.path;
    record.FileType = GetFileType(item.path);
    record.OK = true;
    std::vector<TagKind> removed;
    return RemoveTags(record, std::span(&kind, 1), context, removed);
}

FileOutcome outcomeOf(TagUpdate done) {
    if (done == TagUpdate::Refused) return FileOutcome::Failed;
    return done == TagUpdate::Unchanged ? FileOutcome::Read : FileOutcome::Saved;
}
}  // namespace

FileResult changeLayer(const FileItem& item, TagKind kind, LayerWish wish,
                       const WorkContext& context, const Texts& texts) {
    const auto there = fileInfo(item.path);
    if (!there || there->isFolder) return gone(item, texts);
    FileResult result = resultOf(item);
    const CodePage ansi(context.ansiCodePage);
    KeptLines kept;
    ErrorReport errors(texts, kept);
    NoProgress progress;
    const WriteContext writing{ansi, context.tags, errors, progress, context.calls};
    if (isUnchanged(item, *there)) {
        const bool carries = wish == LayerWish::CarryOver;
        result.outcome =
            outcomeOf(carries ? carryLayer(item, kind, writing) : removeLayer(item, kind, writing));
        if (errors.count() > 0) result.outcome = FileOutcome::Failed;
        result.message = kept.joined();
    } else {
        result.outcome = FileOutcome::Changed;
        result.message = texts.get(Text::ChangedMeanwhile, item.path);
    }
    result.record = ReadAudioFile(item.path, {ansi});
    return result;
}

FileResult readAgain(const FileItem& item, const WorkContext& context, const Texts& texts) {
    if (!fileInfo(item.path) || isFolder(item)) return gone(item, texts);
    FileResult result = resultOf(item);
    result.record = ReadAudioFile(item.path, {CodePage(context.ansiCodePage)});
    result.outcome = FileOutcome::Read;
    return result;
}

FileResult deleteFile(const FileItem& item, bool toRecycleBin, const Texts& texts) {
    if (!isTaken(item.path) || isFolder(item)) return gone(item, texts);
    FileResult result = resultOf(item);
    if (toRecycleBin ? moveToRecycleBin(item.path) : removeFile(item.path)) {
        result.outcome = FileOutcome::Removed;
    } else {
        result.message = texts.get(toRecycleBin ? Text::NotRecycled : Text::NotDeleted, item.path);
    }
    return result;
}

FileResult copyToFolder(const FileItem& item, const std::string& folder, const Texts& texts) {
    const PathStyle style = nativePathStyle();
    FileResult result = resultOf(item);
    if (withoutLinks(std::string(folderOf(item.path, style))) == withoutLinks(folder)) {
        result.message = texts.get(Text::IsInTarget, item.path);
        return result;
    }
    result.message = texts.get(Text::NotCopied, item.path);
    const std::string wanted = joinPath(folder, fileNameOf(item.path, style), style);
    const std::string free =
        freePath(wanted, style, [](std::string_view path) { return !isTaken(std::string(path)); });
    if (free.empty()) return result;
    const Transfer copied = copyFile(item.path, free);
    if (copied != Transfer::Done && copied != Transfer::Copied) return result;
    result.outcome = FileOutcome::Copied;
    result.message.clear();
    return result;
}

FileResult writeList(const FileItem& folder, bool absolutePaths, const WorkContext& context,
                     const Texts& texts, const CancelFlag& cancel) {
    PlaylistWish wish{folder.path};
    wish.absolutePaths = absolutePaths;
    NoProgress progress;
    const auto list = folderPlaylist(wish, CodePage(context.ansiCodePage), progress, cancel);
    FileResult result = resultOf(folder);
    // Names that the code page does not have are in a list of their own.
    const bool needsUtf8 = list && list->notHeld > 0;
    if (list && list->unread.empty() && writePlaylist(*list, needsUtf8, context.calls)) {
        result.outcome = FileOutcome::Listed;
        result.path = list->path;
        if (needsUtf8) result.message = texts.get(Text::ListedInUtf8, list->path + "8");
    } else {
        result.message = texts.get(Text::ListNotWrittenThere, folder.path);
    }
    return result;
}

}  // namespace tavlo
