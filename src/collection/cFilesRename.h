#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "collection/NameTemplate.h"
#include "collection/PlaylistFollow.h"
#include "collection/RenamePlan.h"
#include "collection/cFilesCollection.h"
#include "core/ErrorReport.h"
#include "core/Progress.h"
#include "platform/FileCalls.h"

namespace tavlo {

struct RenameContext {
    const CodePage& ansi;
    Transliteration transliteration;
    ErrorReport& errors;
    Progress& progress;
    const CancelFlag& cancel;
    FileCalls& calls = systemCalls();
};

/// Gives files new names by a template of their tags. Every operation makes a plan first, which can
/// be shown, and then carries it out: no file is ever overwritten, names that the batch itself
/// gives up are free, and playlists that name a renamed file follow it.
class cFilesRename {
 public:
    /// A circle's first file waits under its name with this behind it.
    static constexpr std::string_view asideEnding = ".moving";

    std::string Format = "6";  ///< "1" to "8"; "6" is `Template` as it stands
    std::string Mask = "*.*";  ///< of the files of a folder, without case
    std::string Template;

    explicit cFilesRename(const RenameContext& context) : context_(context) {}
    [[nodiscard]] const RenameContext& context() const { return context_; }

    /// The new name without extension, by `Template`; it leaves `extensionSize` bytes free.
    [[nodiscard]] std::string GetNameByTemplate(const ID3tag& record,
                                                std::size_t extensionSize = 0) const;
    /// Renames one file below `targetFolder`, or its own folder where that is empty or not there.
    RenameResult CreateName(const std::string& path, const std::string& targetFolder,
                            std::string& newPath);

    void RenameFilesCollection(cFilesCollection& files);
    void RenameFiles(const std::string& folder);
    void RenameFilesTree(const std::string& folder);
    /// The files that the playlists of a folder and its subfolders name by relative entries.
    void RenamePlaylists(const std::string& folder);
    /// The same of the playlists of a collection; each stays, with a new one "NAME (new).m3u".
    void RenameFilesEx(cFilesCollection& playlists);

    /// The playlists that `RenamePlaylists` goes through, by `Mask`.
    [[nodiscard]] std::vector<std::string> playlistsOf(const std::string& folder) const;

    /// What each of the files would be called; `Format` decides about `Template` first. A file that
    /// one of the `lists`, or one around it, names stays where that list cannot be written. Empty
    /// when it was cancelled.
    RenamePlan plan(std::span<const std::string> paths, const std::string& targetFolder = {},
                    const std::vector<std::string>& lists = {});
    /// What a file with this record should be called, before other files' names are looked at.
    [[nodiscard]] RenameStep wantedName(const ID3tag& record, const std::string& path,
                                        const std::string& folder) const;

    /// Reports what fails in the rows of a plan.
    void reportFailures(const RenamePlan& plan);

    /// Moves the files of a plan; a row that a cancel left alone is neither moved nor failed.
    void moveFiles(RenamePlan& plan);
    /// The same, and what playlists have to become then: those around the files, and `lists`.
    std::vector<ListChange> moveAndFollow(RenamePlan& plan, std::vector<std::string> lists = {});

    /// The new path of a file that was renamed in this run; empty for any other.
    [[nodiscard]] std::string GetValue(const std::string& oldPath) const;
    void AddValue(const std::string& oldPath, const std::string& newPath);
    void Dispatch() { map_.clear(); }

 private:
    void ApplyFormat();
    [[nodiscard]] bool isCancelled() const {
        return context_.cancel.load(std::memory_order_relaxed);
    }

    void refuseWhatCannotBe(RenamePlan& plan, const std::vector<std::string>& lists);

    bool move(RenameStep& step, const std::string& from);
    void moveCircle(RenamePlan& plan, std::span<const MoveStep> moves);
    void takeCircleBack(RenamePlan& plan, std::span<const MoveStep> moves,
                        const std::string& aside);

    RenamePlan rename(std::span<const std::string> paths, std::vector<std::string> lists = {});
    [[nodiscard]] std::vector<std::string> filesOf(const std::string& folder,
                                                   bool subfolders) const;
    void writeNewPlaylist(const std::string& list, const RenamePlan& done);

    const RenameContext context_;
    std::unordered_map<std::string, std::string> map_;
    std::string lastFolder_;  // it is there
};

}  // namespace tavlo
