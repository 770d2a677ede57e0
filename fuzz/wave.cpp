#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/Promise.h"
#include "tags/WaveFile.h"

using namespace tavlo;

// A WAV file as the converter meets it: what it plays, and whether it holds anything but sound.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int handle = ::memfd_create("fuzz", MFD_CLOEXEC);
    promise(::ftruncate(handle, 0) == 0);
    promise(::pwrite(handle, data, size, 0) == static_cast<ssize_t>(size));
    File file;
    file.openMemory({data, size});
    ID3tag record;
    const bool isRead = readWave(file, record);
    promise(isRead == record.StreamFound);
    promise(record.Seconds >= 0 && record.Channels >= 0 && record.SampleRate >= 0);
    promise(record.Bitrate >= 0);
    const WaveContents contents = waveContents("/proc/self/fd/" + std::to_string(handle));
    promise(isRead || (!contents.isWhole && !contents.hasOnlySound));
    return 0;
}
