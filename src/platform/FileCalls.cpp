#include "platform/FileCalls.h"

#include <algorithm>
#include <memory>

#include "platform/FileSystem.h"

namespace tavlo {

bool FileCalls::copyThroughMemory(FileHandle from, std::uint64_t fromOffset, FileHandle to,
                                  std::uint64_t toOffset, std::uint64_t count) {
    constexpr std::size_t blockSize = std::size_t{1} << 18U;
    const auto block = std::make_unique_for_overwrite<std::uint8_t[]>(blockSize);
    while (count > 0) {
        const auto step = static_cast<std::size_t>(std::min<std::uint64_t>(count, blockSize));
        if (read(from, fromOffset, block.get(), step) != step) return false;
        if (write(to, toOffset, Bytes(block.get(), step)) != step) return false;
        fromOffset += step;
        toOffset += step;
        count -= step;
    }
    return true;
}

bool FileCalls::isLink(const std::string& path) {
    return tavlo::isLink(path);
}

}  // namespace tavlo
