#include "collection/FolderPlaylist.h"

#include "collection/Playlist.h"
#include "collection/cFilesCollection.h"
#include "core/WildcardMask.h"
#include "platform/File.h"
#include "platform/FileTransfer.h"
#include "tags/AudioFile.h"

namespace tavlo {

namespace {
constexpr FileTypes listedTypes = FileType::Tagged | FileType::Wave;

// What would be read as lines of its own.
std::string onOneLine(std::string text) {
    for (char& c : text) {
        if (c == '\r' || c == '\n') c = ' ';
    }
    return text;
}

// A type that is not read gives an empty record without being opened.
bool isReadable(const ID3tag& record, const std::string& path) {
    File file;
    return !record.Path.empty() || file.open(path, Access::Read);
}

// "#EXTINF:245,Artist - Title"; nothing for a file that cannot be read.
std::optional<std::string> infoLine(const ID3tag& record, const std::string& baseName) {
    if (record.Path.empty() || !record.OK) return std::nullopt;
    const bool isNamed = !record.GetArtist().empty() || !record.GetTitle().empty();
    return onOneLine("#EXTINF:" + std::to_string(record.Seconds) + "," +
                     (isNamed ? record.GetArtistTitleMix() : baseName));
}

// A line's end begins another entry, and readers take "\" as a border of folders.
bool isReadAsItIs(std::string_view entry) {
    const bool isPosix = nativePathStyle() == PathStyle::Posix;
    return entry.find_first_of(isPosix ? "\r\n\\" : "\r\n") == std::string_view::npos;
}

class Lines {
 public:
    Lines(FolderPlaylist& list, const CodePage& ansi) : list_(list), ansi_(ansi) {}

    // False when the code page cannot hold the line.
    bool add(std::string_view line) {
        constexpr std::string_view lineEnd = "\r\n";
        const CodePage::Encoded encoded = ansi_.fromUtf8(line);
        list_.bytes.append(encoded.bytes).append(lineEnd);
        list_.utf8.append(line).append(lineEnd);
        return !encoded.lossy;
    }

 private:
    FolderPlaylist& list_;
    const CodePage& ansi_;
};
}  // namespace

std::optional<FolderPlaylist> folderPlaylist(const PlaylistWish& wish, const CodePage& ansi,
                                             Progress& progress, const CancelFlag& cancel) {
    FolderPlaylist list;
    list.path = wish.playlistPath.empty()
                    ? joinPath(wish.folder, "!Playlist.m3u", nativePathStyle())
                    : wish.playlistPath;
    cFilesCollection files(progress, cancel);
    files.BaseFolder = wish.folder;
    files.FillFromFolder(wish.folder, listedTypes, wish.subfolders, true, true);
    const WildcardMask mask(wish.mask);
    files.keepIf([&](std::string_view path) {
        return mask.takesAll() || mask.matches(fileNameOf(path, nativePathStyle()));
    });
    files.Sort();
    Lines lines(list, ansi);
    lines.add("#EXTM3U");
    for (std::size_t i = 1; i <= files.FilesCount() && !cancel.load(); ++i) {
        const std::string path = files.GetFile(i);
        const ID3tag record = ReadAudioFile(path, {ansi});
        if (!isReadable(record, path)) {
            list.unreadFiles.push_back(path);
            continue;
        }
        const auto info = infoLine(record, files.GetFileBaseName(i));
        if (info) lines.add(*info);
        const std::string entry =
            plainEntry(wish.absolutePaths ? path : files.GetFileSubPath(i), nativePathStyle());
        if (!lines.add(onOneLine(entry)) || !isReadAsItIs(entry)) ++list.notHeld;
        ++list.files;
        progress.pumpMessages();
    }
    if (looksLikeUtf8(list.bytes)) list.bytes = withMark(list.utf8);
    list.unread = files.unreadFolders();
    return cancel.load() ? std::nullopt : std::optional(std::move(list));
}

bool writePlaylist(const FolderPlaylist& list, bool utf8, FileCalls& calls) {
    return replaceFile(list.path, list.bytes, calls) &&
           (!utf8 || replaceFile(list.path + "8", list.utf8, calls));
}

bool MakeFolderPlaylist(const PlaylistWish& wish, const CodePage& ansi, Progress& progress,
                        const CancelFlag& cancel) {
    const auto list = folderPlaylist(wish, ansi, progress, cancel);
    return list && writePlaylist(*list, wish.utf8);
}

}  // namespace tavlo
