#include "desk/FileDesk.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "collection/NotedRename.h"
#include "collection/Playlist.h"
#include "collection/RenameBasics.h"
#include "collection/TagColumns.h"
#include "core/FileNameText.h"
#include "core/QuietWork.h"
#include "platform/FileSystem.h"
#include "platform/Rescue.h"
#include "tags/AudioFile.h"
#include "tags/UpdateTags.h"

namespace tavlo {

namespace {
// Rows taken over at a time: a longer stretch would hold up whoever is typing.
constexpr std::size_t mostRowsAtOnce = 3000;

// What stands for bytes that cannot be shown is no part of a name that a person means.
bool isNameForFiles(const std::string& name) {
    return cleanFileName(name, nativePathStyle()) == name &&
           name.find("\uFFFD") == std::string::npos;
}
}  // namespace

void FileDesk::show(std::vector<std::string> paths) {
    if (isWorking()) return;
    paths_ = std::move(paths);
    reader_.reset();
    edits_.clear();
    selected_.clear();
    changed_.clear();
    leftOut_.clear();
    wasStopped_ = false;
    table_.clear(folder());
    const bool subfolders = services_.settings.flag(Setting::MainSubfolders);
    reader_ = std::make_unique<FolderReader>(ReadWish{paths_, subfolders, services_.ansiCodePage});
}

std::string FileDesk::folder() const {
    return paths_.size() == 1 && folderExists(paths_.front()) ? paths_.front() : std::string();
}

std::string FileDesk::place() const {
    if (paths_.empty()) return {};
    if (paths_.size() == 1) return paths_.front();
    return std::string(folderOf(paths_.front(), nativePathStyle()));
}

void FileDesk::stop() {
    if (reader_) {
        reader_->cancel();
        wasStopped_ = true;
    }
    if (work_) work_->cancel();
}

std::pair<std::size_t, std::size_t> FileDesk::progress() const {
    if (work_) return {work_->done(), work_->count()};
    if (reader_) return {reader_->read(), reader_->found()};
    return {0, 0};
}

DeskNews FileDesk::poll() {
    DeskNews news;
    takeRows(news);
    takeResults(news);
    return news;
}

void FileDesk::takeRows(DeskNews& news) {
    if (!reader_) return;
    const std::vector<FileRow> rows = reader_->take(mostRowsAtOnce);
    if (!rows.empty()) {
        table_.append(rows, reader_->store());
        news.rowsCame = true;
    }
    if (!reader_->isDone()) return;
    for (const std::string& path : reader_->unread()) {
        failures_.push_back(services_.texts.get(whyUnread(path), path));
    }
    reader_.reset();
    news.loadingEnded = true;
}

Text FileDesk::whyUnread(const std::string& path) {
    const auto there = fileInfo(path);
    if (!there) return isTaken(path) ? Text::FolderNotRead : Text::FolderNotFound;
    if (there->isFolder) return Text::FolderNotRead;
    return isPlaylist(path) ? Text::FileNotRead : Text::NeitherAudioNorList;
}

void FileDesk::takeResults(DeskNews& news) {
    if (!work_) return;
    std::vector<RowId> removed;
    std::vector<FileResult> results = work_->take();
    news.rowsChanged = !results.empty();
    for (FileResult& result : results) {
        isLayerWork_ ? takeLayer(std::move(result)) : take(std::move(result), removed);
    }
    news.rowsRemoved = !removed.empty();
    if (news.rowsRemoved) forget(removed);
    if (!work_->isDone()) return;
    work_.reset();
    news.workEnded = !std::exchange(isLayerWork_, false);
    news.list = std::exchange(list_, {});
}

void FileDesk::take(FileResult result, std::vector<RowId>& removed) {
    const RowId row = result.row;
    switch (result.outcome) {
        case FileOutcome::Saved:
            tellStaying(result);
            [[fallthrough]];
        case FileOutcome::Read:
            table_.replace(row, result.record, result.path);
            if (edits_.of(row) == result.changes) edits_.drop(std::span(&row, 1));
            ++workDone_;
            break;
        case FileOutcome::Failed:
            if (result.record.OK) table_.replace(row, result.record, result.path);
            break;
        case FileOutcome::Changed:
            changed_.push_back(row);
            break;
        case FileOutcome::Removed:
            removed.push_back(row);
            ++workDone_;
            break;
        case FileOutcome::Copied:
            ++workDone_;
            break;
        case FileOutcome::Listed:
            list_ = std::move(result.path);
            break;
        case FileOutcome::Gone:
            break;
    }
    if (!result.message.empty()) failures_.push_back(std::move(result.message));
}

// A tag that the options leave alone may still hold what was to be changed.
void FileDesk::tellStaying(const FileResult& saved) {
    if (!saved.changes) return;
    TextStore texts;
    const FileRow before = table_.row(saved.row);
    const FileRow after = rowOf(saved.record, saved.path, texts);
    std::string names;
    for (const auto& [field, wanted] : saved.changes->texts) {
        const TagFieldRow& row = tagFieldRow(field);
        const std::string shown = row.get(after);
        if (!staysOld(row.get(before), wanted, shown)) continue;
        names += (names.empty() ? "" : ", ") + services_.texts.get(row.caption);
    }
    if (!names.empty()) {
        failures_.push_back(saved.path + ": " + services_.texts.get(Text::FieldsStay, names));
    }
}

void FileDesk::forget(std::span<const RowId> rows) {
    table_.remove(rows);
    edits_.drop(rows);
    for (const RowId row : rows) leftOut_.erase(row);
    std::vector<RowId> sorted(rows.begin(), rows.end());
    std::ranges::sort(sorted);
    std::erase_if(selected_, [&](RowId row) { return std::ranges::binary_search(sorted, row); });
}

bool FileDesk::isEditable(RowId row) const {
    return hasWriter(table_.row(row).type) && !table_.row(row).isFailed;
}

void FileDesk::editSelected(const TagChanges& changes) {
    std::vector<RowId> rows;
    std::ranges::copy_if(selected_, std::back_inserter(rows),
                         [&](RowId row) { return isEditable(row); });
    edits_.add(rows, changes);
    if (rows.empty()) return;
    std::ranges::copy_if(selected_, std::inserter(leftOut_, leftOut_.end()),
                         [&](RowId row) { return !isEditable(row); });
}

bool FileDesk::isEdited(TagField field) const {
    if (edits_.isEmpty()) return false;
    return std::ranges::any_of(selected_, [&](RowId row) {
        const auto edits = edits_.of(row);
        return edits && edits->texts.contains(field);
    });
}

void FileDesk::revertSelected() {
    edits_.drop(selected_);
    for (const RowId row : selected_) leftOut_.erase(row);
}

void FileDesk::copyTags() {
    if (selected_.empty()) return;
    TagChanges copied;
    for (const TagFieldRow& field : tagFields()) {
        std::string text = edits_.value(table_, selected_.front(), field.field);
        if (!text.empty()) copied.texts[field.field] = std::move(text);
    }
    copied.picture = coverOf(selected_.front());
    copied_ = std::move(copied);
}

bool FileDesk::willHaveCover(RowId row) const {
    const auto edits = edits_.isEmpty() ? nullptr : edits_.of(row);
    return edits && edits->picture ? !edits->picture->Data.empty()
                                   : table_.row(row).pictureSize > 0;
}

// As it will be; nothing where there is none.
NewPicture FileDesk::coverOf(RowId row) const {
    const auto edits = edits_.of(row);
    if (!willHaveCover(row)) return nullptr;
    if (edits && edits->picture) return edits->picture;
    const CodePage ansi(services_.ansiCodePage);
    ID3tag record = ReadAudioFile(table_.row(row).path(), {ansi, ReadDepth::Full});
    if (record.AlbumArt.Data.empty()) return nullptr;
    return std::make_shared<const cAlbumArt>(std::move(record.AlbumArt));
}

void FileDesk::pasteTags() {
    if (copied_) editSelected(*copied_);
}

std::vector<FileItem> FileDesk::itemsOf(std::span<const RowId> rows) const {
    std::vector<FileItem> items;
    items.reserve(rows.size());
    for (const RowId row : rows) {
        const FileRow& file = table_.row(row);
        items.push_back({row, file.path(), file.size, file.modified, edits_.of(row)});
    }
    return items;
}

WorkContext FileDesk::context() const {
    return {
        services_.ansiCodePage, tagSettings(services_.settings), systemCalls(), {rescueFolder()}};
}

void FileDesk::begin(std::vector<FileItem> items, FileWork::Work work) {
    if (isWorking() || items.empty()) return;
    workDone_ = 0;
    work_ = std::make_unique<FileWork>(std::move(items), std::move(work));
}

void FileDesk::tellLeftOut() {
    for (const RowId row : std::exchange(leftOut_, {})) {
        const FileRow& file = table_.row(row);
        failures_.push_back(services_.texts.get(
            hasWriter(file.type) ? Text::FileNotRead : Text::FormatNotWritten, file.path()));
    }
}

void FileDesk::save() {
    if (!isWorking()) tellLeftOut();
    begin(itemsOf(edits_.rows()),
          [context = context(), texts = services_.texts](const FileItem& item, const CancelFlag&) {
              return saveTags(item, false, context, texts);
          });
}

std::vector<RowId> FileDesk::takeChanged() {
    return std::exchange(changed_, {});
}

void FileDesk::saveOnTop(std::span<const RowId> rows) {
    begin(itemsOf(rows),
          [context = context(), texts = services_.texts](const FileItem& item, const CancelFlag&) {
              return saveTags(item, true, context, texts);
          });
}

void FileDesk::reload(std::span<const RowId> rows) {
    edits_.drop(rows);
    begin(itemsOf(rows),
          [context = context(), texts = services_.texts](const FileItem& item, const CancelFlag&) {
              return readAgain(item, context, texts);
          });
}

bool FileDesk::changeLayer(const ID3tag& read, TagKind kind, LayerWish wish) {
    const auto row = table_.rowOfPath(read.Path);
    if (isWorking() || !row) return false;
    begin({{*row, read.Path, read.Length, read.Modified, nullptr}},
          [kind, wish, context = context(), texts = services_.texts](const FileItem& item,
                                                                     const CancelFlag&) {
              return tavlo::changeLayer(item, kind, wish, context, texts);
          });
    isLayerWork_ = true;
    return true;
}

void FileDesk::takeLayer(FileResult result) {
    if (result.record.OK) table_.replace(result.row, result.record, result.path);
    if (result.outcome == FileOutcome::Saved) ++workDone_;
    layerResult_ = std::move(result);
}

std::optional<FileResult> FileDesk::takeLayerResult() {
    return std::exchange(layerResult_, std::nullopt);
}

void FileDesk::deleteSelected() {
    const bool toBin = services_.settings.flag(Setting::DeleteToRecycleBin);
    begin(itemsOf(selected_),
          [toBin, texts = services_.texts](const FileItem& item, const CancelFlag&) {
              return deleteFile(item, toBin, texts);
          });
}

void FileDesk::copySelected(const std::string& folder) {
    begin(itemsOf(selected_),
          [folder, texts = services_.texts](const FileItem& item, const CancelFlag&) {
              return copyToFolder(item, folder, texts);
          });
}

void FileDesk::makeList(bool absolutePaths) {
    FileItem item;
    item.path = folder();
    begin({item}, [absolutePaths, context = context(), texts = services_.texts](
                      const FileItem& listed, const CancelFlag& cancel) {
        return writeList(listed, absolutePaths, context, texts, cancel);
    });
}

// The playlists among what is shown.
std::vector<std::string> FileDesk::shownLists() const {
    std::vector<std::string> lists;
    std::ranges::copy_if(paths_, std::back_inserter(lists), isPlaylist);
    return lists;
}

std::optional<std::string> FileDesk::rename(RowId row, const std::string& name) {
    const PathStyle style = nativePathStyle();
    const Texts& texts = services_.texts;
    const std::string from = table_.row(row).path();
    if (name.empty() || !isNameForFiles(name)) return texts.get(Text::NameNotAllowed, name);
    // A file that lost its ending would not be one of the list any more.
    const bool keepsType = GetFileType(name) == GetFileType(from);
    const std::string ending = keepsType ? "" : "." + std::string(extensionOf(from, style));
    RenameStep step{from, joinPath(folderOf(from, style), name + ending, style)};
    if (step.to == from) return std::nullopt;
    const auto there = fileInfo(from);
    if (!there) return texts.get(Text::FileGone, from);
    step.size = there->size;
    step.modified = there->modified;
    KeptLines kept;
    ErrorReport errors(texts, kept);
    NoProgress progress;
    const CancelFlag never{false};
    const CodePage ansi(services_.ansiCodePage);
    cFilesRename renamer({ansi, Transliteration::Gost, errors, progress, never});
    RenameJournal journal(journalFolder());
    if (!journal.lock()) return texts.get(Text::RenamingRuns);
    if (journal.isBrokenOff()) return texts.get(Text::RenamingBrokenOff);
    RenamePlan plan{step};
    performNoted(renamer, journal, plan, {std::string(folderOf(from, style))}, shownLists());
    if (plan.front().isMoved) {
        table_.replace(row, ReadAudioFile(step.to, {ansi}), step.to);
    } else if (kept.lines.empty()) {
        return texts.get(isTaken(step.to) ? Text::FileNameTaken : Text::NotRenamed, step.to);
    }
    if (kept.lines.empty()) return std::nullopt;
    return kept.joined();
}

std::vector<RowId> FileDesk::rowsOf(const std::vector<std::string>& paths) const {
    const std::unordered_set<std::string_view> wanted(paths.begin(), paths.end());
    std::vector<RowId> rows;
    std::ranges::copy_if(table_.shown(), std::back_inserter(rows),
                         [&](RowId row) { return wanted.contains(table_.row(row).path()); });
    return rows;
}

std::vector<std::string> FileDesk::takeFailures() {
    return std::exchange(failures_, {});
}

DeskState FileDesk::state() const {
    DeskState state;
    state.selected = selected_.size();
    state.editable = static_cast<std::size_t>(
        std::ranges::count_if(selected_, [&](RowId row) { return isEditable(row); }));
    state.hasCovers = std::ranges::any_of(selected_, [&](RowId row) { return willHaveCover(row); });
    state.shown = table_.shownCount();
    state.pending = edits_.count();
    state.hasFolder = !folder().empty();
    state.isLoading = isLoading();
    state.isSaving = isWorking();
    state.hasCopiedTags = copied_.has_value();
    return state;
}

void remember(Settings& settings, HistoryList list, const std::string& text) {
    constexpr std::size_t longest = 20;
    std::vector<std::string> texts = settings.history(list);
    std::erase(texts, text);
    texts.insert(texts.begin(), text);
    if (texts.size() > longest) texts.resize(longest);
    settings.saveHistory(list, texts);
}

}  // namespace tavlo
