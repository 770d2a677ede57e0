#include "convert/WorkFolder.h"

#include <chrono>
#include <random>
#include <thread>

#include "core/PathText.h"
#include "platform/FileSystem.h"
#include "platform/FileTransfer.h"

namespace tavlo {

namespace {
// Too many are possible to be guessed: 60 bits.
std::string anyName(std::random_device& random) {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz234567";
    constexpr std::size_t length = 12;
    std::string name;
    while (name.size() < length) name += letters[random() % letters.size()];
    return name;
}
}  // namespace

WorkFolder::WorkFolder(const std::string& parent) {
    constexpr int tries = 100;
    std::random_device random;
    for (int i = 0; i < tries; ++i) {
        name_ = "tavlo-" + anyName(random);
        const std::string path = joinPath(parent, name_, nativePathStyle());
        const Created created = createOwnFolder(path);
        if (created == Created::Done) path_ = path;
        if (created != Created::Exists) return;
    }
}

WorkFolder::~WorkFolder() {
    if (path_.empty()) return;
    for (const FolderEntry& entry : listFolder(path_)) {
        removeEntry(joinPath(path_, entry.name, nativePathStyle()));
    }
    // A program that has just ended may hold the folder that it ran in for a moment.
    constexpr int tries = 40;
    constexpr auto pause = std::chrono::milliseconds(25);
    for (int i = 0; i < tries && !removeEmptyFolder(path_) && isTaken(path_); ++i) {
        std::this_thread::sleep_for(pause);
    }
}

std::string WorkFolder::newName() {
    return name_ + "-" + std::to_string(++last_);
}

std::string WorkFolder::newPath(const std::string& extension) {
    return joinPath(path_, newName() + extension, nativePathStyle());
}

PassingFile::~PassingFile() {
    if (!path_.empty()) removeEntry(path_);
}

}  // namespace tavlo
