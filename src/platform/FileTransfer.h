#pragma once

#include <string>
#include <string_view>

#include "platform/FileCalls.h"

namespace tavlo {

enum class Transfer {
    Done,
    Copied,   ///< done by a copy to another disk, which may keep coarser times
    Exists,   ///< the new name is taken; nothing was changed
    NotRead,  ///< the source is no file that can be read; nothing was changed
    Failed    ///< the source is as it was, and nothing lies under the new name
};

/// Copies a file with its time and attributes: beside its new place, flushed, read back and
/// compared, and only then under its new name, which it never overwrites.
Transfer copyFile(const std::string& from, const std::string& to, FileCalls& calls = systemCalls());

/// Gives a file another name, on another disk by a copy (`Copied`); the source goes when that is
/// whole.
Transfer moveFile(const std::string& from, const std::string& to, FileCalls& calls = systemCalls());

/// Writes a whole file beside its place, flushed, and puts it there in one step, whether or not
/// there is one of that name, which then gives it its attributes. False, and no change, on failure
/// and where the path is a link: somebody else may have put it there.
bool replaceFile(const std::string& path, std::string_view bytes, FileCalls& calls = systemCalls());

/// Gives a file the bytes of another in the same way.
bool replaceByCopy(const std::string& path, const std::string& from,
                   FileCalls& calls = systemCalls());

/// Brings a file's bytes onto the disk.
bool flushFile(const std::string& path, FileCalls& calls = systemCalls());

/// Whether `replaceFile` may be expected to succeed; nothing is written to find out.
bool canBeReplaced(const std::string& path, FileCalls& calls = systemCalls());

/// Writes a whole file in the same way, but never over another.
Transfer writeFile(const std::string& path, std::string_view bytes,
                   FileCalls& calls = systemCalls());

/// Removes a file, read-only or not.
bool removeFile(const std::string& path, FileCalls& calls = systemCalls());

}  // namespace tavlo
