#include <array>

#include "fuzz/Promise.h"
#include "platform/Utf8.h"
#include "tags/StreamHeaders.h"

using namespace tavlo;

// The first byte chooses the format.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::array types{FileType::Ogg, FileType::Flac, FileType::Mpc, FileType::Wv,
                               FileType::Ape, FileType::Mp4,  FileType::Aac, FileType::Wma};
    if (size == 0) return 0;
    File file;
    file.openMemory({data + 1, size - 1});
    ID3tag record;
    record.FileType = types[data[0] % types.size()];
    const bool isRead = readStream(file, record, size - 1);
    promise((isRead || !record.StreamFound) && isRead == (record.SampleRate > 0));
    promise(record.Seconds >= 0 && record.Channels >= 0 && record.BitsPerSample >= 0);
    promise(record.Bitrate >= 0 && record.Bitrate <= 0x7FFFFFFF / 1000);
    promise(record.Encoder.size() <= size && isValidUtf8(record.Encoder));
    return 0;
}
