#include "platform/File.h"

#include <algorithm>

namespace tavlo {

bool File::open(const std::string& path, Access access) {
    close();
    access_ = access;
    return openHandle(path, access);
}

void File::openMemory(Bytes bytes) {
    close();
    size_ = bytes.size();
    head_ = {0, bytes};
}

void File::close() {
    if (isOpen()) closeHandle();
    handle_ = noHandle;
    size_ = 0;
    readOnly_ = false;
    head_ = tail_ = middle_ = {};
}

void File::load(Window& window, std::uint8_t* buffer, std::uint64_t offset,
                std::size_t count) const {
    window = {offset, Bytes(buffer, readHandle(offset, buffer, count))};
}

Bytes File::view(std::uint64_t offset, std::size_t count) {
    if (offset >= size_) return {};
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - offset));
    const bool inHead = offset + count <= headSize;
    if (inHead && head_.bytes.empty() && isOpen()) {
        load(head_, headBuffer_.data(), 0,
             static_cast<std::size_t>(std::min<std::uint64_t>(size_, headSize)));
    }
    const bool inTail = !inHead && offset + tailSize >= size_;
    if (inTail && tail_.bytes.empty() && isOpen()) {
        load(tail_, tailBuffer_.data(), size_ - std::min<std::uint64_t>(size_, tailSize), tailSize);
    }
    for (const Window* window : {&head_, &tail_, &middle_}) {
        if (window->covers(offset, count)) {
            return window->bytes.subspan(static_cast<std::size_t>(offset - window->offset), count);
        }
    }
    if (!isOpen()) return {};
    const auto most = static_cast<std::size_t>(
        std::min<std::uint64_t>(std::max(count, windowSize), size_ - offset));
    if (middleRoom_ < most) {
        middleBuffer_ = std::make_unique_for_overwrite<std::uint8_t[]>(most);
        middleRoom_ = most;
    }
    load(middle_, middleBuffer_.get(), offset, most);
    return middle_.bytes.first(std::min(count, middle_.bytes.size()));
}

bool File::truncate(std::uint64_t size) {
    if (!isWritable() || !truncateHandle(size)) return false;
    size_ = size;
    head_ = tail_ = middle_ = {};
    return true;
}

std::optional<std::string> readFile(const std::string& path, std::uint64_t most) {
    File file;
    if (!file.open(path, Access::Read) || file.size() > most) return std::nullopt;
    const Bytes bytes = file.view(0, static_cast<std::size_t>(file.size()));
    if (bytes.size() < file.size()) return std::nullopt;
    return std::string(bytes.begin(), bytes.end());
}

}  // namespace tavlo
