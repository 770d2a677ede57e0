#include "core/ByteCursor.h"
#include "fuzz/Reading.h"
#include "tags/AudioFile.h"
#include "tags/MPEGHeader.h"

using namespace tavlo;

namespace {
void checkHeader(std::string_view bytes) {
    MPEGHeader header;
    if (!header.ParseHeader(bytes)) return;
    promise(header.BitrateIndex >= 0 && header.BitrateIndex <= 14);
    promise(header.ChannelMode >= 0 && header.ChannelMode <= 3);
    promise(header.SampleRate > 0 || header.SampleRateIndex == 3);
    promise(header.frameSize() < 8192 && header.samplesPerFrame() >= 384);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkHeader(textOf(Bytes(data, size).first(std::min<std::size_t>(size, 4))));
    checkReader({data, size}, readMp3);
    return 0;
}
