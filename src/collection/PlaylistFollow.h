#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/RenamePlan.h"
#include "core/ErrorReport.h"
#include "core/Progress.h"
#include "platform/CodePage.h"
#include "platform/FileCalls.h"

namespace tavlo {

/// The playlists in a folder, or in it and all below it, in the order of their paths.
std::vector<std::string> playlistsIn(const std::string& folder, bool subfolders);

/// The playlists that may name a file of a batch: those in the folders that its files leave or
/// enter and in every folder above these.
std::vector<std::string> playlistsAround(const RenamePlan& plan);

/// Takes out what names the same file as any of the `others`.
void eraseLists(std::vector<std::string>& lists, std::span<const std::string> others);

/// The files that playlists name by relative entries, each once; those so far when it is cancelled.
std::vector<std::string> relativeEntries(std::span<const std::string> lists, const CodePage& ansi,
                                         const CancelFlag* cancel = nullptr);

/// The bytes that a plan which was carried out turns those of a list into.
std::string followed(std::string_view before, std::string_view path, const RenamePlan& done,
                     const CodePage& ansi);

/// Whether a list is `before` with entries changed by such a plan only, all of them or some.
bool hasOnlyFollowed(std::string_view now, std::string_view before, std::string_view path,
                     const RenamePlan& done, const CodePage& ansi);

/// A playlist that has to follow renamed files.
struct ListChange {
    std::string path;
    std::string before, after;  ///< bytes
};

/// What playlists stand in the way of.
struct HeldRows {
    std::vector<std::size_t> rows;    ///< of a plan: their file's list cannot take another name
    std::vector<std::string> unread;  ///< lists that may name any file
};
HeldRows rowsThatListsHold(std::vector<std::string> lists, const RenamePlan& plan,
                           const CodePage& ansi);

/// What the playlists, of which each may be given more than once, have to become by a plan that was
/// carried out.
std::vector<ListChange> listChanges(std::vector<std::string> lists, const RenamePlan& done,
                                    const CodePage& ansi);

/// Puts each new list in its old one's place and reports those that stayed as they were; false
/// where there is one.
bool writeLists(std::span<const ListChange> changes, ErrorReport& errors, FileCalls& calls);

}  // namespace tavlo
