#include "platform/FileTransfer.h"

#include "platform/FileSystem.h"
#include "platform/TemporaryFile.h"

namespace tavlo {

namespace {
Transfer resultOf(Moved moved) {
    if (moved == Moved::Done) return Transfer::Done;
    return moved == Moved::Exists ? Transfer::Exists : Transfer::Failed;
}

Transfer copyOpened(File& source, const std::string& to) {
    TemporaryFile copy(source.calls());
    const bool complete = copy.createBeside(to) && copy.append(source.handle(), 0, source.size()) &&
                          copy.complete(source.handle(), source.modified()) &&
                          copy.holdsAllOf(source);
    return complete ? resultOf(copy.moveTo(to)) : Transfer::Failed;
}

// Opened for writing, where that may be, nobody else of this program changes it meanwhile.
bool openToMove(File& file, const std::string& path) {
    return file.open(path, Access::ReadWrite) || file.open(path, Access::Read);
}

// Replaces a file, or makes it, by one that `fill` gives its bytes.
template <typename Fill>
bool replaceBy(const std::string& path, FileCalls& calls, const Fill& fill) {
    if (calls.isLink(path)) return false;
    File old(calls);
    const bool isThere = openToMove(old, path);
    // What is there and no file that can be read (a device, a pipe) is never replaced.
    if (!isThere && fileInfo(path)) return false;
    TemporaryFile file(calls);
    const bool complete = file.createBeside(path) && fill(file) &&
                          file.complete(isThere ? old.handle() : noFile, std::nullopt);
    if (!complete) return false;
    if (isThere && old.isReadOnly()) calls.clearReadOnly(path);
    return file.replace(path, isThere ? old.release() : noFile) == Replaced::Done;
}
}  // namespace

bool removeFile(const std::string& path, FileCalls& calls) {
    File file(calls);
    return openToMove(file, path) && calls.remove(file.release(), path);
}

Transfer copyFile(const std::string& from, const std::string& to, FileCalls& calls) {
    File source(calls);
    return source.open(from, Access::Read) ? copyOpened(source, to) : Transfer::NotRead;
}

Transfer moveFile(const std::string& from, const std::string& to, FileCalls& calls) {
    const Moved moved = calls.move(from, to);
    if (moved != Moved::OtherDisk) return resultOf(moved);
    File source(calls);
    if (!openToMove(source, from)) return Transfer::NotRead;
    const Transfer copied = copyOpened(source, to);
    if (copied != Transfer::Done) return copied;
    if (calls.remove(source.release(), from)) return Transfer::Copied;
    removeFile(to, calls);
    return Transfer::Failed;
}

bool replaceFile(const std::string& path, std::string_view bytes, FileCalls& calls) {
    return replaceBy(path, calls, [&](TemporaryFile& file) { return file.append(bytes); });
}

bool replaceByCopy(const std::string& path, const std::string& from, FileCalls& calls) {
    File source(calls);
    if (!source.open(from, Access::Read)) return false;
    return replaceBy(path, calls, [&](TemporaryFile& file) {
        return file.append(source.handle(), 0, source.size());
    });
}

bool flushFile(const std::string& path, FileCalls& calls) {
    File file(calls);
    return file.open(path, Access::ReadWrite) && calls.flush(file.handle());
}

bool canBeReplaced(const std::string& path, FileCalls& calls) {
    if (calls.isLink(path)) return false;
    File file(calls);
    const bool isOpen =
        file.open(path, Access::ReadWrite) || (file.open(path, Access::Read) && file.isReadOnly());
    return isOpen && isWritableFolder(path.substr(0, path.find_last_of(nativeSeparator()) + 1));
}

Transfer writeFile(const std::string& path, std::string_view bytes, FileCalls& calls) {
    TemporaryFile file(calls);
    const bool complete =
        file.createBeside(path) && file.append(bytes) && file.complete(noFile, std::nullopt);
    return complete ? resultOf(file.moveTo(path)) : Transfer::Failed;
}

}  // namespace tavlo
