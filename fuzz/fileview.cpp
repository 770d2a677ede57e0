#include <sys/mman.h>
#include <unistd.h>

#include <vector>

#include "fuzz/Reading.h"
#include "tags/AudioFile.h"

using namespace tavlo;

namespace {
// The input with zeroes between two of its parts, so that small inputs make large files.
std::vector<std::uint8_t> stretched(Bytes input) {
    const std::size_t place = std::min<std::size_t>(input[0] * 16U, input.size() - 2);
    const std::size_t gap = input[1] * 64U;
    input = input.subspan(2);
    std::vector<std::uint8_t> bytes(input.begin(), input.end());
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(place), gap, 0);
    return bytes;
}

std::string temporaryFile(int handle, Bytes bytes) {
    promise(::ftruncate(handle, 0) == 0);
    promise(::pwrite(handle, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    return "/proc/self/fd/" + std::to_string(handle);
}
}  // namespace

// A file that is read piece by piece gives the same record as its bytes in memory.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int handle = ::memfd_create("fuzz", MFD_CLOEXEC);
    if (size < 2) return 0;
    const std::vector<std::uint8_t> bytes = stretched({data, size});
    const std::string path = temporaryFile(handle, bytes);
    for (const ReadDepth depth : {ReadDepth::List, ReadDepth::Full}) {
        File memory, file;
        memory.openMemory(bytes);
        promise(file.open(path, Access::Read));
        const ID3tag expected = readWith(readMp3, memory, depth);
        const ID3tag found = readWith(readMp3, file, depth);
        promise(listed(found) == listed(expected));
        promise(found.AlbumArt.Data == expected.AlbumArt.Data);
        promise(found.ID3v2Ext.UnknownFrames == expected.ID3v2Ext.UnknownFrames);
        promise(found.UnknownItems == expected.UnknownItems);
    }
    return 0;
}
