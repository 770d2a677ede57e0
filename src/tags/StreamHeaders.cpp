#include "tags/StreamHeaders.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tags/ID3v2.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr std::uint64_t searchedEnd = 1U << 20U;
// The first step finds the last page of a usual Ogg file; larger units need larger steps.
constexpr std::size_t firstStep = 8192, largestStep = 65536;

struct Reader {
    FileTypes type;
    std::optional<StreamFacts> (*read)(File&, SoundSpan);
};

constexpr std::array<Reader, 8> readers{{
    {FileType::Ogg, readOggVorbis},
    {FileType::Mpc, readMusepack},
    {FileType::Wma, readAsf},
    {FileType::Mp4, readMp4},
    {FileType::Aac, readAdts},
    {FileType::Flac, readFlac},
    {FileType::Wv, readWavPack},
    {FileType::Ape, readMonkey},
}};

constexpr std::uint32_t largestNumber = std::numeric_limits<std::int32_t>::max();

void fillLengths(ID3tag& record, const StreamFacts& facts) {
    if (facts.length == 0 || facts.timeScale == 0) {
        record.Seconds = 0;
        record.Bitrate = static_cast<int>(facts.usualBitrate / 1000);
        return;
    }
    record.Seconds = static_cast<std::int32_t>(
        std::min<std::uint64_t>(facts.length / facts.timeScale, largestNumber));
    const double seconds = static_cast<double>(facts.length) / facts.timeScale;
    const double bits = static_cast<double>(facts.audioBytes) * 8;
    record.Bitrate = static_cast<int>(std::lround(std::min(bits / seconds / 1000, 1e6)));
}
}  // namespace

std::optional<std::uint64_t> findLast(File& file, SoundSpan span, std::string_view mark,
                                      std::size_t headSize,
                                      const std::function<bool(std::uint64_t, Bytes)>& accept) {
    const std::uint64_t least = span.end - std::min(span.end - span.begin, searchedEnd);
    std::uint64_t end = span.end;
    for (std::size_t step = firstStep; end > least; step = std::min(step * 2, largestStep)) {
        const std::uint64_t begin = end - std::min<std::uint64_t>(end - least, step);
        const auto count =
            static_cast<std::size_t>(std::min(end - begin + headSize, span.end - begin));
        const Bytes bytes = file.view(begin, count);
        for (auto at = static_cast<std::size_t>(end - begin); at > 0;) {
            at = textOf(bytes).rfind(mark, at - 1);
            if (at == std::string_view::npos) break;
            if (accept(begin + at, bytes.subspan(at))) return begin + at;
        }
        end = begin;
    }
    return std::nullopt;
}

bool readStream(File& file, ID3tag& record, std::uint64_t audioEnd) {
    const auto* reader = std::find_if(readers.begin(), readers.end(),
                                      [&](const Reader& r) { return r.type == record.FileType; });
    if (reader == readers.end()) return false;
    const std::uint64_t begin = ID3v2TagEnd(file);
    const auto facts =
        reader->read(file, {begin, std::max(begin, std::min(audioEnd, file.size()))});
    if (!facts || facts->sampleRate == 0 || facts->sampleRate > largestNumber) return false;
    record.SampleRate = static_cast<int>(facts->sampleRate);
    record.Channels = static_cast<int>(facts->channels);
    record.BitsPerSample = static_cast<int>(facts->bitsPerSample);
    record.Lossless = facts->isLossless;
    record.Float = facts->isFloat;
    record.Encoder = facts->encoder;
    record.StreamFound = !facts->isCut;
    fillLengths(record, *facts);
    return true;
}

}  // namespace tavlo
