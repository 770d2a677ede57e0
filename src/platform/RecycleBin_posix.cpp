#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <string_view>
#include <vector>

#include "platform/Environment.h"
#include "platform/FileCalls.h"
#include "platform/FileSystem.h"
#include "platform/PlainText.h"
#include "platform/RecycleBin.h"

namespace tavlo {

// As desktops for Linux agreed: a folder "files" with what was thrown away, and for each of these
// a text in the folder "info" that says where it was.
namespace {
struct Bin {
    std::string folder;
    std::string above;  // paths are noted from here on; empty: whole
};

std::string parentOf(const std::string& path) {
    return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

std::string homeBin() {
    const std::string data = environmentVariable("XDG_DATA_HOME").value_or("");
    if (data.starts_with('/')) return data + "/Trash";
    const std::string home = environmentVariable("HOME").value_or("");
    return home.starts_with('/') ? home + "/.local/share/Trash" : std::string();
}

// The disk that a folder is on, or will be on once it is made.
std::uint64_t diskOf(std::string folder) {
    while (folder != "/" && !folderExists(folder)) folder = parentOf(folder);
    return folderId(folder).value_or(FileId{}).volume;
}

// The topmost folder on the disk of this one.
std::string topOf(std::string folder) {
    const std::uint64_t disk = diskOf(folder);
    while (folder != "/" && diskOf(parentOf(folder)) == disk) folder = parentOf(folder);
    return folder;
}

// A shared one counts only when nobody can take away what belongs to others.
bool isSharedBin(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           (status.st_mode & S_ISVTX) != 0;
}

std::vector<Bin> binsFor(const std::string& path) {
    const std::string home = homeBin();
    if (!home.empty() && diskOf(home) == diskOf(parentOf(path))) return {{home, ""}};
    const std::string top = topOf(parentOf(path));
    const std::string prefix = top == "/" ? top : top + "/";
    const std::string user = std::to_string(::getuid());
    std::vector<Bin> bins;
    if (isSharedBin(prefix + ".Trash")) bins.push_back({prefix + ".Trash/" + user, prefix});
    bins.push_back({prefix + ".Trash-" + user, prefix});
    return bins;
}

// A folder for this user alone; one that was made by somebody else is none.
bool makeOwnFolder(const std::string& path) {
    struct stat status {};
    ::mkdir(path.c_str(), S_IRWXU);
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::getuid();
}

bool makeBin(const Bin& bin) {
    if (bin.above.empty() && !createFolders(parentOf(bin.folder))) return false;
    return makeOwnFolder(bin.folder) && makeOwnFolder(bin.folder + "/files") &&
           makeOwnFolder(bin.folder + "/info");
}

std::string percentCoded(std::string_view path) {
    constexpr std::string_view plain = "/-_.~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const char lower = lowerAscii(c);
        if ((lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') ||
            plain.find(c) != std::string_view::npos) {
            result += c;
        } else {
            result.append({'%', digits[byte >> 4U], digits[byte & 15U]});
        }
    }
    return result;
}

std::string noteOf(std::string_view path) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
    return "[Trash Info]\nPath=" + percentCoded(path) + "\nDeletionDate=" + date.data() + "\n";
}

// The name itself first, then with a number before its extension; never too long for the note's.
std::string nameInBin(std::string_view name, int attempt) {
    constexpr std::size_t longestStem = 200;
    constexpr std::size_t longestExtension = 32;
    const std::size_t dot = name.rfind('.');
    const bool hasExtension =
        dot != std::string_view::npos && dot > 0 && name.size() - dot <= longestExtension;
    const std::string_view extension = hasExtension ? name.substr(dot) : std::string_view();
    std::string stem(name.substr(0, name.size() - extension.size()));
    if (stem.size() > longestStem) {
        std::size_t end = longestStem;
        while (end > 0 && isUtf8Continuation(stem[end])) --end;
        stem.resize(end);
    }
    if (attempt > 1) stem += "." + std::to_string(attempt);
    return stem.append(extension);
}

bool moveInto(const Bin& bin, const std::string& path) {
    constexpr int mostNames = 10'000;
    if (!makeBin(bin)) return false;
    const std::string_view whole = path;
    const std::string note = noteOf(whole.substr(bin.above.size()));
    const std::string_view own = whole.substr(whole.rfind('/') + 1);
    for (int attempt = 1; attempt <= mostNames; ++attempt) {
        const std::string name = nameInBin(own, attempt);
        const std::string notePath = bin.folder + "/info/" + name + ".trashinfo";
        const Created noted = writeNewFile(notePath, note);
        if (noted == Created::Exists) continue;
        if (noted == Created::Failed) return false;
        const Moved moved = systemCalls().move(path, bin.folder + "/files/" + name);
        if (moved != Moved::Done) ::unlink(notePath.c_str());
        if (moved != Moved::Exists) return moved == Moved::Done;
    }
    return false;
}
}  // namespace

bool moveToRecycleBin(const std::string& path) {
    struct stat status {};
    const std::string full = absolutePath(path);
    if (::lstat(full.c_str(), &status) != 0) return false;
    return std::ranges::any_of(binsFor(full), [&](const Bin& bin) { return moveInto(bin, full); });
}

}  // namespace tavlo
