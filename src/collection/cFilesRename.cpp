#include "collection/cFilesRename.h"

#include <algorithm>
#include <set>

#include "collection/FilesIn.h"
#include "collection/Playlist.h"
#include "core/Numbers.h"
#include "core/TextCase.h"
#include "core/WildcardMask.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"
#include "tags/AudioFile.h"

namespace tavlo {

namespace {
std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (FolderEntry& entry : listFolder(folder)) names.push_back(std::move(entry.name));
    return names;
}

bool isFreeOnDisk(std::string_view path) {
    return !fileInfo(std::string(path));
}

std::string nativePath(const std::string& folder, std::string levels) {
    std::replace(levels.begin(), levels.end(), '\\', separatorOf(nativePathStyle()));
    return joinPath(folder, levels, nativePathStyle());
}

std::vector<std::string> pathsOf(const cFilesCollection& files) {
    std::vector<std::string> paths;
    paths.reserve(files.count());
    for (std::size_t i = 1; i <= files.count(); ++i) paths.push_back(files.GetFile(i));
    return paths;
}
}  // namespace

// --- The plan ------------------------------------------------------------------------------------

void cFilesRename::ApplyFormat() {
    Template = formatTemplate(parseInteger(Format).value_or(0), Template);
}

std::string cFilesRename::GetNameByTemplate(const ID3tag& record, std::size_t extensionSize) const {
    return nameByTemplate(record, Template,
                          {nativePathStyle(), context_.transliteration, extensionSize});
}

RenameStep cFilesRename::wantedName(const ID3tag& record, const std::string& path,
                                    const std::string& folder) const {
    RenameStep step{path, path, RenameResult::Skipped};
    step.size = record.Length;
    step.modified = record.Modified;
    step.reason = record.Path.empty() ? Text::FileNotRead : Text::NoArtistOrTitle;
    if (record.Path.empty() || (record.GetArtist().empty() && record.GetTitle().empty())) {
        return step;
    }
    step.reason = Text::FileNotCreated;
    std::string extension = lowerCase(extensionOf(path, nativePathStyle()));
    if (!extension.empty()) extension.insert(0, 1, '.');
    const std::string name = GetNameByTemplate(record, extension.size());
    step.to = nativePath(folder, name + extension);
    step.result = name.empty() ? RenameResult::NotCreated : RenameResult::Done;
    if (equalsNoCase(step.to, path)) step.to = path;
    return step;
}

RenamePlan cFilesRename::plan(std::span<const std::string> paths, const std::string& targetFolder,
                              const std::vector<std::string>& lists) {
    ApplyFormat();
    const bool hasTarget = !targetFolder.empty() && folderExists(targetFolder);
    const bool asksForBitrate = Template.find("%B") != std::string::npos;
    const ReadContext reading{context_.ansi, asksForBitrate ? ReadDepth::List : ReadDepth::Tags};
    RenamePlan plan;
    plan.reserve(paths.size());
    context_.progress.setRange(paths.size());
    for (const std::string& path : paths) {
        const std::string own(folderOf(path, nativePathStyle()));
        plan.push_back(
            wantedName(ReadAudioFile(path, reading), path, hasTarget ? targetFolder : own));
        context_.progress.step();
        context_.progress.pumpMessages();
        if (isCancelled()) return {};
    }
    refuseWhatCannotBe(plan, lists);
    TakenNames taken(nativePathStyle(), namesIn);
    settleNames(plan, taken, nativePathStyle());
    return plan;
}

namespace {
// Whether a folder is there or can be made: the innermost that is there must be a folder.
bool isFolderOrFree(std::string_view folder) {
    for (; !folder.empty(); folder = parentOf(folder, nativePathStyle())) {
        if (const auto info = fileInfo(std::string(folder))) return info->isFolder;
    }
    return true;
}

void refuseImpossibleFolders(RenamePlan& plan) {
    std::unordered_map<std::string_view, bool> known;
    for (RenameStep& step : plan) {
        if (!step.moves()) continue;
        const std::string_view folder = folderOf(step.to, nativePathStyle());
        const auto [found, isNew] = known.try_emplace(folder, true);
        if (isNew) found->second = isFolderOrFree(folder);
        if (!found->second) step.result = RenameResult::FolderNotCreated;
    }
}

// A link may lead on from where it lies only, and to a name that the batch gives up.
void refuseLinks(RenamePlan& plan) {
    std::string_view last;
    std::set<std::string, std::less<>> links;  // in the folder of the row before
    for (RenameStep& step : plan) {
        if (!step.moves()) continue;
        const std::string_view folder = folderOf(step.from, nativePathStyle());
        if (folder != last) {
            last = folder;
            links.clear();
            for (FolderEntry& entry : listFolder(std::string(folder))) {
                if (entry.isLink) links.insert(std::move(entry.name));
            }
        }
        if (!links.contains(fileNameOf(step.from, nativePathStyle()))) continue;
        step.result = RenameResult::NotCreated;
        step.reason = Text::LinkStays;
    }
}

}  // namespace

void cFilesRename::refuseWhatCannotBe(RenamePlan& plan, const std::vector<std::string>& lists) {
    refuseImpossibleFolders(plan);
    refuseLinks(plan);
    std::vector<std::string> all = playlistsAround(plan);
    all.insert(all.end(), lists.begin(), lists.end());
    const HeldRows held = rowsThatListsHold(std::move(all), plan, context_.ansi);
    for (const std::string& list : held.unread) context_.errors.note(Text::ListNotRead, list);
    for (const std::size_t row : held.rows) {
        plan[row].result = RenameResult::NotCreated;
        plan[row].reason = Text::ListNotWritable;
    }
}

// --- Carrying it out -----------------------------------------------------------------------------

void cFilesRename::moveFiles(RenamePlan& plan) {
    const std::vector<MoveStep> order = moveOrder(plan);
    context_.progress.setRange(order.size());
    for (std::size_t at = 0; at < order.size() && !isCancelled();) {
        const std::size_t first = at++;
        if (order[first].aside) {
            // A circle that was begun is gone through to its end.
            while (order[at++].row != order[first].row) {
            }
            moveCircle(plan, std::span(order).subspan(first + 1, at - first - 1));
        } else {
            move(plan[order[first].row], plan[order[first].row].from);
        }
        for (std::size_t i = first; i < at; ++i) context_.progress.step();
        context_.progress.pumpMessages();
    }
    for (const RenameStep& step : plan) {
        if (step.isMoved) AddValue(step.from, step.to);
    }
    lastFolder_.clear();
    context_.progress.setRange(0);
}

bool cFilesRename::move(RenameStep& step, const std::string& from) {
    const std::string_view folder = folderOf(step.to, nativePathStyle());
    if (folder != lastFolder_ && !createFolders(std::string(folder))) {
        step.result = RenameResult::FolderNotCreated;
        return false;
    }
    lastFolder_ = folder;
    const Transfer moved = moveFile(from, step.to, context_.calls);
    step.isMoved = moved == Transfer::Done || moved == Transfer::Copied;
    if (!step.isMoved) step.result = RenameResult::NotCreated;
    if (!step.isMoved && isInUse(from)) step.reason = Text::FileInUse;
    const auto copy = moved == Transfer::Copied ? fileInfo(step.to) : std::nullopt;
    if (copy) step.modified = copy->modified;
    return step.isMoved;
}

// The last of the moves is that of the file that goes aside first.
void cFilesRename::moveCircle(RenamePlan& plan, std::span<const MoveStep> moves) {
    const std::string& start = plan[moves.back().row].from;
    const std::string aside =
        freePath(start + std::string(asideEnding), nativePathStyle(), isFreeOnDisk);
    bool isWhole = moveFile(start, aside, context_.calls) == Transfer::Done;
    for (const MoveStep& each : moves) {
        RenameStep& step = plan[each.row];
        const bool isLast = each.row == moves.back().row;
        isWhole = isWhole && move(step, isLast ? aside : step.from);
        if (!isWhole && step.result == RenameResult::Done) step.result = RenameResult::NotCreated;
    }
    if (!isWhole) takeCircleBack(plan, moves, aside);
}

void cFilesRename::takeCircleBack(RenamePlan& plan, std::span<const MoveStep> moves,
                                  const std::string& aside) {
    for (std::size_t i = moves.size(); i-- > 0;) {
        RenameStep& step = plan[moves[i].row];
        if (!step.isMoved) continue;
        step.isMoved = moveFile(step.to, step.from, context_.calls) != Transfer::Done;
        step.result = step.isMoved ? RenameResult::Done : RenameResult::NotCreated;
    }
    RenameStep& start = plan[moves.back().row];
    if (start.isMoved || moveFile(aside, start.from, context_.calls) == Transfer::Done) return;
    if (isFreeOnDisk(aside)) return;
    // That is its name then, and no other.
    start.to = aside;
    start.isMoved = true;
    start.reason = Text::FileAside;
}

void cFilesRename::reportFailures(const RenamePlan& plan) {
    for (const RenameStep& step : plan) {
        if (const auto message = messageOf(step)) {
            context_.errors.report(message->text, message->about);
        }
    }
}

std::vector<ListChange> cFilesRename::moveAndFollow(RenamePlan& plan,
                                                    std::vector<std::string> lists) {
    moveFiles(plan);
    std::ranges::move(playlistsAround(plan), std::back_inserter(lists));
    return listChanges(std::move(lists), plan, context_.ansi);
}

// --- What a batch works on -----------------------------------------------------------------------

RenamePlan cFilesRename::rename(std::span<const std::string> paths,
                                std::vector<std::string> lists) {
    RenamePlan all = plan(paths, {}, lists);
    writeLists(moveAndFollow(all, std::move(lists)), context_.errors, context_.calls);
    reportFailures(all);
    return all;
}

RenameResult cFilesRename::CreateName(const std::string& path, const std::string& targetFolder,
                                      std::string& newPath) {
    RenamePlan one = plan({&path, 1}, targetFolder);
    newPath = path;
    if (one.empty()) return RenameResult::Unknown;
    writeLists(moveAndFollow(one), context_.errors, context_.calls);
    reportFailures(one);
    if (one[0].isMoved) newPath = one[0].to;
    return one[0].result;
}

void cFilesRename::RenameFilesCollection(cFilesCollection& files) {
    const std::vector<std::string> paths = pathsOf(files);
    const RenamePlan done = rename(paths);
    if (done.empty()) return;
    files.Clean();
    for (const RenameStep& step : done) files.AddFile(step.isMoved ? step.to : step.from);
}

std::vector<std::string> cFilesRename::filesOf(const std::string& folder, bool subfolders) const {
    const WildcardMask mask(Mask);
    return filesIn(folder, subfolders, [&](std::string_view name) { return mask.matches(name); });
}

void cFilesRename::RenameFiles(const std::string& folder) {
    rename(filesOf(folder, false), playlistsIn(folder, true));
}

void cFilesRename::RenameFilesTree(const std::string& folder) {
    rename(filesOf(folder, true), playlistsIn(folder, true));
}

std::vector<std::string> cFilesRename::playlistsOf(const std::string& folder) const {
    const WildcardMask mask(Mask);
    return filesIn(folder, true,
                   [&](std::string_view name) { return isPlaylist(name) && mask.matches(name); });
}

void cFilesRename::RenamePlaylists(const std::string& folder) {
    const std::vector<std::string> lists = playlistsOf(folder);
    rename(relativeEntries(lists, context_.ansi, &context_.cancel), lists);
}

void cFilesRename::RenameFilesEx(cFilesCollection& playlists) {
    std::vector<std::string> lists = pathsOf(playlists);
    std::erase_if(lists, [](const std::string& path) { return !isPlaylist(path); });
    RenamePlan all = plan(relativeEntries(lists, context_.ansi, &context_.cancel));
    std::vector<ListChange> changes = moveAndFollow(all);
    std::erase_if(changes, [&](const ListChange& change) {
        return std::ranges::find(lists, change.path) != lists.end();
    });
    writeLists(changes, context_.errors, context_.calls);
    for (const std::string& list : lists) writeNewPlaylist(list, all);
    reportFailures(all);
}

void cFilesRename::writeNewPlaylist(const std::string& list, const RenamePlan& done) {
    const std::vector<ListChange> changes = listChanges({list}, done, context_.ansi);
    const auto bytes =
        changes.empty() ? readFile(list, largestPlaylist) : std::optional(changes[0].after);
    if (!bytes) return;
    const std::size_t endSize = extensionOf(list, nativePathStyle()).size() + 1;
    const std::string path = freePath(list.substr(0, list.size() - endSize) + " (new)" +
                                          lowerCase(list.substr(list.size() - endSize)),
                                      nativePathStyle(), isFreeOnDisk);
    if (writeFile(path, *bytes, context_.calls) != Transfer::Done) {
        context_.errors.report(Text::FileNotCreated, path);
    }
}

// --- What was renamed ----------------------------------------------------------------------------

std::string cFilesRename::GetValue(const std::string& oldPath) const {
    const auto found = map_.find(oldPath);
    return found == map_.end() ? std::string() : found->second;
}

void cFilesRename::AddValue(const std::string& oldPath, const std::string& newPath) {
    map_[oldPath] = newPath;
}

}  // namespace tavlo
