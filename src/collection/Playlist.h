#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/PathText.h"
#include "platform/CodePage.h"

namespace tavlo {

inline constexpr std::uint64_t largestPlaylist = 64U << 20U;  ///< bytes; a larger one is not read
inline constexpr std::size_t longestEntry = 128U << 10U;      ///< bytes; no system has longer paths

/// What the entries of a list mean beyond their bytes.
struct PlaylistPlace {
    std::string_view folder;  ///< where relative entries start from
    bool isUtf8 = false;      ///< in any case; otherwise with a mark or where all of it is valid,
                              ///< else it is the code page's text
    PathStyle style = nativePathStyle();
};
/// Of a list on the disk; ".m3u8" is UTF-8.
PlaylistPlace playlistPlace(std::string_view path);
bool isUtf8Playlist(std::string_view path);
bool isPlaylist(std::string_view path);

struct PlaylistEntry {
    std::string path;  ///< full
    bool isAbsolute;
};
using PlaylistEntries = std::vector<PlaylistEntry>;

/// A relative entry as a list has to hold it: what would read as a comment gets "./" before it.
std::string plainEntry(const std::string& entry, PathStyle style);

/// The files that an M3U playlist names, in its order. Entries may use "\" or "/"; blanks behind
/// one are none of it.
PlaylistEntries playlistEntries(std::string_view bytes, const PlaylistPlace& place,
                                const CodePage& ansi);
/// Gives each entry of a list on the disk to `take`, until that answers false. False when the list
/// cannot be read. Nothing but the list's own bytes is held meanwhile.
using TakeEntry = std::function<bool(PlaylistEntry entry)>;
bool eachEntryOf(const std::string& path, const CodePage& ansi, const TakeEntry& take,
                 const std::atomic<bool>* cancel = nullptr);

/// The lines of a list, one after the other.
class PlaylistLines {
 public:
    PlaylistLines(std::string_view bytes, const PlaylistPlace& place, const CodePage& ansi);

    /// Goes to the next line, the first to begin with; false behind the last one.
    bool next();
    /// The line as it stands in the list, and its end.
    std::string_view bytes, end;
    std::string text;         ///< in UTF-8
    bool isEntry = false;     ///< it names a file
    bool isAbsolute = false;  ///< by its full path
    /// The full path of an entry.
    [[nodiscard]] std::string path() const;

    /// Whether the list is UTF-8, and the mark in front of it that says so.
    [[nodiscard]] bool isUtf8() const { return isUtf8_; }
    [[nodiscard]] std::string_view mark() const { return mark_; }

 private:
    const PlaylistPlace place_;
    const CodePage& ansi_;
    bool isUtf8_;
    std::string_view mark_, rest_;
};

/// Whether text of a code page would be taken for UTF-8.
bool looksLikeUtf8(std::string_view bytes);
/// UTF-8 with the mark that tells it.
std::string withMark(std::string_view utf8);

/// The full path of an entry, "." and ".." steps resolved by the text alone.
std::string resolveEntry(std::string_view entry, std::string_view folder, PathStyle style);

/// Gives the new full path of a file; empty for one that keeps its name.
using NewPathOf = std::function<std::string(const std::string& path)>;

/// The list's bytes with every entry changed whose file has another path now: a relative entry
/// stays relative, with the separator that it had; everything else stays byte for byte. A list
/// whose code page cannot hold a name becomes UTF-8 with its mark. Nothing when nothing changes.
std::optional<std::string> rewrittenPlaylist(std::string_view bytes, const PlaylistPlace& place,
                                             const CodePage& ansi, const NewPathOf& newPath);

}  // namespace tavlo
