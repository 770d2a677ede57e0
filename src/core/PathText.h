#pragma once

#include <string>
#include <string_view>

namespace tavlo {

/// How paths are written: Windows with "\" (reading accepts "/" too), drives and shares; POSIX
/// with "/" only. A value, so that both rules are tested on every system.
enum class PathStyle { Posix, Windows };

/// The style of the system the program runs on.
PathStyle nativePathStyle();

char separatorOf(PathStyle style);
bool isSeparator(char c, PathStyle style);
std::size_t lastSeparator(std::string_view path, PathStyle style);  ///< npos where there is none

/// The parts of "folder/name.ext"; each is a piece of `path` and may be empty. A name that only
/// begins with a dot has no extension.
std::string_view folderOf(std::string_view path, PathStyle style);  ///< without a separator behind
std::string_view fileNameOf(std::string_view path, PathStyle style);   ///< "name.ext"
std::string_view baseNameOf(std::string_view path, PathStyle style);   ///< "name"
std::string_view extensionOf(std::string_view path, PathStyle style);  ///< "ext"

/// The folder above a folder; empty above a root.
std::string_view parentOf(std::string_view folder, PathStyle style);

/// The folder with exactly one separator between it and the name.
std::string joinPath(std::string_view folder, std::string_view name, PathStyle style);

bool isAbsolutePath(std::string_view path, PathStyle style);

/// Whether the path is the folder or lies anywhere below it; letters compare without case in the
/// Windows style.
bool liesIn(std::string_view path, std::string_view folder, PathStyle style);

}  // namespace tavlo
