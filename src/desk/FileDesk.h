#pragma once

#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "core/StartUp.h"
#include "desk/Commands.h"
#include "desk/FileTable.h"
#include "desk/FileWork.h"
#include "desk/FolderReader.h"
#include "desk/TagChanges.h"

namespace tavlo {

/// What became different since the last look.
struct DeskNews {
    bool rowsCame = false;
    bool loadingEnded = false;
    bool rowsChanged = false;
    bool rowsRemoved = false;
    bool workEnded = false;
    std::string list;  ///< the playlist that this work has written
};

/// The main window's work without its windows: what is shown, what is selected, which edits are not
/// saved, and the reading, saving and deleting that goes on beside it. Its owner calls `poll` some
/// ten times a second.
class FileDesk {
 public:
    explicit FileDesk(Services& services) : services_(services) {}

    /// Shows folders, playlists or files. Edits that were not saved are dropped: ask first. Nothing
    /// happens while files are being written.
    void show(std::vector<std::string> paths);
    [[nodiscard]] const std::vector<std::string>& paths() const { return paths_; }
    /// The folder that is shown; empty where it is not just one.
    [[nodiscard]] std::string folder() const;
    /// Where all of it lies: the folder or playlist itself, or else the folder of the first file.
    [[nodiscard]] std::string place() const;

    DeskNews poll();
    /// Ends reading or writing; what is done stays.
    void stop();
    [[nodiscard]] bool isLoading() const { return reader_ != nullptr; }
    [[nodiscard]] bool isWorking() const { return work_ != nullptr; }
    [[nodiscard]] bool wasStopped() const { return wasStopped_; }  ///< while it was loading
    /// How far reading or writing is: files done, and files known of.
    [[nodiscard]] std::pair<std::size_t, std::size_t> progress() const;

    [[nodiscard]] FileTable& table() { return table_; }
    [[nodiscard]] const FileTable& table() const { return table_; }
    [[nodiscard]] const PendingEdits& edits() const { return edits_; }

    /// Whether its tags can be written.
    [[nodiscard]] bool isEditable(RowId row) const;
    void select(std::vector<RowId> rows) { selected_ = std::move(rows); }
    [[nodiscard]] const std::vector<RowId>& selected() const { return selected_; }

    /// Changes to the selected files; those whose tags cannot be written are left out, which is
    /// told when the others are saved.
    void editSelected(const TagChanges& changes);
    void revertSelected();
    /// Whether a selected file has an edit of the field.
    [[nodiscard]] bool isEdited(TagField field) const;
    [[nodiscard]] CommonValue common(TagField field) const {
        return edits_.common(table_, selected_, field);
    }

    /// Remembers the tags of the first selected file, cover included.
    void copyTags();
    void pasteTags();

    /// Writes every edit that is pending.
    void save();
    /// Of the last saving: files that another program had changed. Taken once.
    std::vector<RowId> takeChanged();
    /// Writes their edits on top of what they hold now.
    void saveOnTop(std::span<const RowId> rows);
    /// Drops their edits and shows what they hold now.
    void reload(std::span<const RowId> rows);

    /// Does something with one tag of a file of the list, if that still is what it was when the
    /// record was read. False while other work goes on, or where the list has no such file.
    bool changeLayer(const ID3tag& read, TagKind kind, LayerWish wish);
    /// What came of it; taken once. Its message is in no other place.
    std::optional<FileResult> takeLayerResult();

    void deleteSelected();
    void copySelected(const std::string& folder);
    /// Writes the playlist of the folder that is shown.
    void makeList(bool absolutePaths);
    /// Gives a file another name in its folder; playlists follow. Gives what went wrong, if so.
    std::optional<std::string> rename(RowId row, const std::string& name);

    /// Rows of these paths, where they are in the list.
    [[nodiscard]] std::vector<RowId> rowsOf(const std::vector<std::string>& paths) const;

    /// What went wrong since the last call, a line each.
    std::vector<std::string> takeFailures();
    /// Files that were copied or saved by what ended last.
    [[nodiscard]] std::size_t workDone() const { return workDone_; }

    [[nodiscard]] DeskState state() const;

 private:
    [[nodiscard]] std::vector<FileItem> itemsOf(std::span<const RowId> rows) const;
    [[nodiscard]] WorkContext context() const;
    void tellLeftOut();
    void begin(std::vector<FileItem> items, FileWork::Work work);
    static Text whyUnread(const std::string& path);
    void takeRows(DeskNews& news);
    void takeResults(DeskNews& news);
    void take(FileResult result, std::vector<RowId>& removed);
    void takeLayer(FileResult result);
    void tellStaying(const FileResult& saved);
    [[nodiscard]] bool willHaveCover(RowId row) const;
    [[nodiscard]] NewPicture coverOf(RowId row) const;
    [[nodiscard]] std::vector<std::string> shownLists() const;
    void forget(std::span<const RowId> rows);

    Services& services_;
    FileTable table_;
    PendingEdits edits_;
    std::vector<RowId> selected_;
    std::vector<std::string> paths_;
    std::unique_ptr<FolderReader> reader_;
    std::unique_ptr<FileWork> work_;
    std::size_t workDone_ = 0;
    bool wasStopped_ = false;
    std::set<RowId> leftOut_;  // selected when edits were made that they cannot take
    std::string list_;
    std::vector<RowId> changed_;
    std::vector<std::string> failures_;
    std::optional<TagChanges> copied_;
    bool isLayerWork_ = false;
    std::optional<FileResult> layerResult_;
};

/// Puts a text at the front of a remembered list, once.
void remember(Settings& settings, HistoryList list, const std::string& text);

}  // namespace tavlo
