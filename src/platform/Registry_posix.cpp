#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <system_error>
#include <utility>

#include "platform/Environment.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/Registry.h"
#include "platform/RegistryText.h"

namespace tavlo {
namespace {

constexpr std::uint64_t largestFile = 16U << 20U;  // bytes; a settings file has a few thousand
constexpr int lockTries = 200;               // of 10 ms each: a stopped instance must not hang us
constexpr useconds_t lockPause = 10 * 1000;  // microseconds

class Descriptor {
 public:
    Descriptor(const std::string& path, int flags)
        : number_(open(path.c_str(), flags | O_CLOEXEC, 0600)) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    explicit operator bool() const { return number_ >= 0; }
    int get() const { return number_; }

 private:
    int number_;
};

std::string defaultFile() {
    const std::string folder = settingsFolder();
    return folder.empty() ? std::string() : folder + "/settings.txt";
}

/// The user's own links, and the system's, are followed: people keep their settings elsewhere and
/// link to them. Such a link stays one when the file is replaced, even where it leads to none yet.
/// Empty where somebody else's link is on the way, for it would choose what is overwritten.
std::string behindLinks(std::string path) {
    constexpr int mostLinks = 16;
    for (int i = 0; i < mostLinks; ++i) {
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
        std::error_code error;
        const auto target = std::filesystem::read_symlink(path, error);
        const bool isTrusted = status.st_uid == geteuid() || status.st_uid == 0;
        if (error || !isTrusted) break;
        path = (std::filesystem::path(path).parent_path() / target).string();
    }
    return {};
}

std::string parentOf(const std::string& path) {
    const std::string parent = std::filesystem::path(path).parent_path().string();
    return parent.empty() ? "." : parent;
}

/// A missing file reads as empty; nothing when it is there and cannot be read, or is no file.
std::optional<std::string> readStored(const std::string& path) {
    return fileInfo(path) ? readFile(path, largestFile) : std::optional<std::string>("");
}

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
    }
    return fsync(file) == 0;
}

bool writeTemporary(const std::string& path, std::string_view text) {
    // The lock is held: what lies there was left by a killed writer, or is a link.
    unlink(path.c_str());
    const Descriptor file(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    return file && writeAll(file.get(), text);
}

bool replaceFile(const std::string& path, std::string_view text) {
    const std::string temporary = path + ".tmp";
    if (!writeTemporary(temporary, text) || std::rename(temporary.c_str(), path.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    const Descriptor folder(parentOf(path), O_RDONLY | O_DIRECTORY);
    if (folder) fsync(folder.get());
    return true;
}

bool lock(int file) {
    for (int i = 0; i < lockTries; ++i) {
        if (flock(file, LOCK_EX | LOCK_NB) == 0) return true;
        if (errno != EWOULDBLOCK && errno != EINTR) return false;
        usleep(lockPause);
    }
    return false;
}

}  // namespace

/// The file's text as last read, and the changes that wait for being stored.
class Registry::Store {
 public:
    using Change = std::function<void(RegistryText&)>;

    explicit Store(const std::string& path) : path_(path.empty() ? path : behindLinks(path)) {
        if (!path_.empty()) text_ = RegistryText(readStored(path_).value_or(""));
        stored_ = text_;
    }

    const RegistryText& text() const { return text_; }

    bool apply(Change change) {
        change(text_);
        waiting_.push_back(std::move(change));
        return depth_ > 0 || store();
    }

    void begin() { ++depth_; }
    bool end() { return --depth_ > 0 || waiting_.empty() || store(); }

 private:
    /// What could not be stored is taken back.
    bool store() {
        const std::vector<Change> changes = std::exchange(waiting_, {});
        if (!merge(changes)) {
            text_ = stored_;
            return false;
        }
        stored_ = text_;
        return true;
    }

    /// What another instance stored meanwhile stays: own changes are made to the file as it is.
    bool merge(const std::vector<Change>& changes) {
        if (path_.empty()) return false;
        std::error_code error;
        std::filesystem::create_directories(parentOf(path_), error);
        const Descriptor guard(path_ + ".lock", O_RDWR | O_CREAT | O_NOFOLLOW);
        if (!guard || !lock(guard.get())) return false;
        const auto current = readStored(path_);
        if (!current) return false;
        RegistryText merged(*current);
        for (const Change& change : changes) change(merged);
        text_ = std::move(merged);
        const std::string result = text_.text();
        return result == *current || replaceFile(path_, result);
    }

    std::string path_;
    RegistryText text_;
    RegistryText stored_;  // as last read or written
    std::vector<Change> waiting_;
    int depth_ = 0;
};

Registry::Registry(const std::string& file)
    : store_(std::make_unique<Store>(file.empty() ? defaultFile() : file)) {}

Registry::~Registry() = default;

std::optional<RegistryValue> Registry::read(const RegistryKey& key, const std::string& name) const {
    return store_->text().read(key, name);
}

bool Registry::write(const RegistryKey& key, const std::string& name, const RegistryValue& value) {
    return store_->apply([=](RegistryText& text) { text.write(key, name, value); });
}

bool Registry::deleteValue(const RegistryKey& key, const std::string& name) {
    if (!store_->text().read(key, name)) return false;
    return store_->apply([=](RegistryText& text) { text.deleteValue(key, name); });
}

bool Registry::deleteKey(const RegistryKey& key) {
    if (key.path.empty()) return false;
    RegistryText probe = store_->text();
    if (!probe.deleteKey(key)) return false;
    return store_->apply([=](RegistryText& text) { text.deleteKey(key); });
}

std::vector<std::string> Registry::valueNames(const RegistryKey& key) const {
    return store_->text().valueNames(key);
}

std::vector<std::string> Registry::subkeys(const RegistryKey& key) const {
    return store_->text().subkeys(key);
}

void Registry::beginBatch() {
    store_->begin();
}

bool Registry::endBatch() {
    return store_->end();
}

}  // namespace tavlo
