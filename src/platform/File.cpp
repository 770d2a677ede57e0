#include "platform/File.h"

#include <algorithm>

namespace tavlo {

bool File::open(const std::string& path, Access access) {
    close();
    access_ = access;
    handle_ = calls_.open(path, access, status_);
    return isOpen();
}

void File::openMemory(Bytes bytes) {
    close();
    status_.size = bytes.size();
    head_ = {0, bytes};
}

FileHandle File::release() {
    const FileHandle handle = handle_;
    handle_ = noFile;
    close();
    return handle;
}

void File::close() {
    if (isOpen()) calls_.close(handle_);
    handle_ = noFile;
    status_ = {};
    failed_ = false;
    dropWindows();
}

void File::load(Window& window, std::uint8_t* buffer, std::uint64_t offset, std::size_t count) {
    window = {offset, Bytes(buffer, calls_.read(handle_, offset, buffer, count))};
    const std::uint64_t wanted = std::min<std::uint64_t>(count, size() - offset);
    failed_ = failed_ || window.bytes.size() < wanted;
}

Bytes File::view(std::uint64_t offset, std::size_t count) {
    if (offset >= status_.size) return {};
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, status_.size - offset));
    const bool inHead = offset + count <= headSize;
    if (inHead && head_.bytes.empty() && isOpen()) {
        load(head_, headBuffer_.data(), 0,
             static_cast<std::size_t>(std::min<std::uint64_t>(status_.size, headSize)));
    }
    const bool inTail = !inHead && offset + tailSize >= status_.size;
    if (inTail && tail_.bytes.empty() && isOpen()) {
        load(tail_, tailBuffer_.data(),
             status_.size - std::min<std::uint64_t>(status_.size, tailSize), tailSize);
    }
    for (const Window* window : {&head_, &tail_, &middle_}) {
        if (window->covers(offset, count)) {
            return window->bytes.subspan(static_cast<std::size_t>(offset - window->offset), count);
        }
    }
    if (!isOpen()) return {};
    const auto most = static_cast<std::size_t>(
        std::min<std::uint64_t>(std::max(count, windowSize), status_.size - offset));
    if (middleRoom_ < most) {
        middleBuffer_ = std::make_unique_for_overwrite<std::uint8_t[]>(most);
        middleRoom_ = most;
    }
    load(middle_, middleBuffer_.get(), offset, most);
    return middle_.bytes.first(std::min(count, middle_.bytes.size()));
}

bool File::write(std::uint64_t offset, Bytes bytes) {
    if (!isWritable()) return false;
    const std::size_t done = calls_.write(handle_, offset, bytes);
    status_.size = std::max(status_.size, offset + done);
    dropWindows();
    return done == bytes.size();
}

bool File::truncate(std::uint64_t size) {
    if (!isWritable() || !calls_.truncate(handle_, size)) return false;
    status_.size = size;
    dropWindows();
    return true;
}

std::optional<std::string> readFile(const std::string& path, std::uint64_t most,
                                    const std::atomic<bool>* cancel) {
    constexpr std::size_t block = std::size_t{1} << 20U;
    File file;
    if (!file.open(path, Access::Read) || file.size() > most) return std::nullopt;
    std::string bytes(static_cast<std::size_t>(file.size()), '\0');
    for (std::size_t at = 0; at < bytes.size(); at += block) {
        if (cancel != nullptr && cancel->load()) return std::nullopt;
        const std::size_t count = std::min(block, bytes.size() - at);
        auto* to = reinterpret_cast<std::uint8_t*>(bytes.data()) + at;
        if (file.calls().read(file.handle(), at, to, count) < count) return std::nullopt;
    }
    return bytes;
}

}  // namespace tavlo
