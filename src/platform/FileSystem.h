#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileId.h"

namespace tavlo {

struct FolderEntry {
    std::string name;
    bool isFolder = false;
    bool isHidden = false;
    bool isLink = false;  ///< a link or junction; isFolder then speaks of what it leads to
};

struct FileInfo {
    std::uint64_t size = 0;     ///< bytes
    std::int64_t modified = 0;  ///< in the system's own ticks, as `FileStatus` has it
    bool isFolder = false;
    bool isHidden = false;    ///< Windows: attribute; elsewhere a name that begins with a dot
    bool isReadOnly = false;  ///< Windows: attribute; elsewhere the owner may not write
};

/// The entries of a folder but "." and "..", in no order; nothing when it cannot be read.
std::vector<FolderEntry> listFolder(const std::string& folder);

/// What a path leads to; nothing when there is no such file or folder.
std::optional<FileInfo> fileInfo(const std::string& path);

/// Whether a name is taken by anything, be it a link that leads nowhere.
bool isTaken(const std::string& path);

/// Whether a path is a program that may be started.
bool isProgram(const std::string& path);

/// Makes a file writable for its owner; other attributes stay. False when it could not be done.
bool clearReadOnly(const std::string& path);

bool folderExists(const std::string& path);

/// Whether the entries of a folder can be asked for.
bool isReadableFolder(const std::string& path);

/// Whether files can be made in a folder, as far as the rights tell.
bool isWritableFolder(const std::string& path);

std::optional<FileId> folderId(const std::string& path);

/// The same of a file, under every name that it gets on its disk; nothing where the disk keeps no
/// such number for good.
std::optional<FileId> lastingFileId(const std::string& path);

/// Whether a file or folder is the user's own, no link, and nobody else may write to it. Windows
/// guards the user's folders by their access lists: there only links are looked for.
bool isOwn(const std::string& path);

/// Takes the right to write away from all others; false where it is not the user's.
bool makeOwn(const std::string& path);

/// The path with every link resolved; empty when there is none.
std::string canonicalPath(const std::string& path);

/// Whether a path is itself a link or junction, wherever that leads.
bool isLink(const std::string& path);

/// Where a link leads to; any other path as it is.
std::string withoutLinks(const std::string& path);

/// The path from the root, without "." and ".." steps; links stay where no ".." follows them.
std::string absolutePath(const std::string& path);

enum class Created { Done, Exists, Failed };

/// Writes a file that does not exist yet; one that does stays as it is.
Created writeNewFile(const std::string& path, std::string_view bytes);

/// Makes one folder; one that is there already is `Exists`.
Created createFolder(const std::string& path);

/// The same for the user alone, never one that is there already.
Created createOwnFolder(const std::string& path);

/// Makes a folder and every one above it that is missing.
bool createFolders(const std::string& path);

/// Removes a file that nobody else uses, or a link, not what it leads to.
bool removeEntry(const std::string& path);

/// Makes a file reachable under another name, only to be read: by a link, or else by a copy.
bool linkOrCopy(const std::string& from, const std::string& to);

/// Removes a folder that is empty; false, and no change, when it is not.
bool removeEmptyFolder(const std::string& path);

/// Whether other programs that are given the path find this file there. On Windows a name that ends
/// in a dot or blank, or that means a device, leads them elsewhere.
bool isPlainForPrograms(const std::string& path);

/// Whether another program (elsewhere: another run of this one) has a file open in a way that bars
/// it. To be asked when a call on it was refused, for the reason.
bool isInUse(const std::string& path);

/// The character between a folder and a name: "\" or "/".
char nativeSeparator();

}  // namespace tavlo
