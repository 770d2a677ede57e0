#include <algorithm>

#include "core/ByteCursor.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr std::size_t headSize = 7;
constexpr std::uint64_t frameSamples = 1024;
// A short file is counted through. In a longer one frames are counted in some places only, for
// nothing in the file tells how many there are.
constexpr std::uint64_t wholeSize = 65536;
constexpr std::size_t placeSize = 8192, places = 8;

struct Frame {
    std::uint32_t fixed = 0;  // what is the same in every frame of a stream
    std::uint32_t rateIndex = 0, channels = 0;
    std::size_t size = 0;
    std::uint64_t samples = 0;
};

std::optional<Frame> parseFrame(Bytes bytes) {
    ByteCursor cursor(bytes.first(std::min(bytes.size(), headSize)));
    const auto high = cursor.bigEndian(4);
    const auto low = cursor.bigEndian(3);
    if (!high || !low || (*high >> 16U & 0xFFF6U) != 0xFFF0U) return std::nullopt;
    Frame frame;
    frame.fixed = *high >> 6U;
    frame.rateIndex = *high >> 10U & 15U;
    frame.channels = *high >> 6U & 7U;
    if (frame.channels == 7) frame.channels = 8;
    frame.size = (*high & 3U) << 11U | *low >> 13U;
    frame.samples = ((*low & 3U) + 1) * frameSamples;
    if (frame.size < headSize || frame.rateIndex >= aacRates.size()) return std::nullopt;
    return frame;
}

// The first frame that another one of the same stream, or the end, follows.
std::size_t findFrame(Bytes bytes, std::optional<std::uint32_t> fixed) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        at = textOf(bytes).find('\xFF', at);
        if (at == std::string_view::npos) break;
        const auto frame = parseFrame(bytes.subspan(at));
        if (!frame || frame->size > bytes.size() - at || (fixed && frame->fixed != *fixed))
            continue;
        const Bytes rest = bytes.subspan(at + frame->size);
        const auto next = parseFrame(rest);
        if (rest.empty() || (next && next->fixed == frame->fixed)) return at;
    }
    return bytes.size();
}

struct Count {
    std::uint64_t bytes = 0, samples = 0;
};

void countFrames(Bytes bytes, std::uint32_t fixed, Count& count) {
    bytes = bytes.subspan(findFrame(bytes, fixed));
    for (auto frame = parseFrame(bytes); frame; frame = parseFrame(bytes)) {
        if (frame->fixed != fixed || frame->size > bytes.size()) break;
        count.bytes += frame->size;
        count.samples += frame->samples;
        bytes = bytes.subspan(frame->size);
    }
}
}  // namespace

std::optional<StreamFacts> readAdts(File& file, SoundSpan span) {
    const std::uint64_t size = span.end - span.begin;
    const auto step = static_cast<std::size_t>(std::min(size, wholeSize));
    const Bytes head = file.view(span.begin, std::min(step, placeSize));
    const auto first = parseFrame(head.subspan(findFrame(head, std::nullopt)));
    if (!first) return std::nullopt;
    Count count;
    if (size <= wholeSize) {
        countFrames(file.view(span.begin, step), first->fixed, count);
    } else {
        for (std::uint64_t i = 0; i < places; ++i) {
            const std::uint64_t at = span.begin + (size - placeSize) * i / (places - 1);
            countFrames(file.view(at, placeSize), first->fixed, count);
        }
    }
    StreamFacts facts;
    facts.sampleRate = facts.timeScale = aacRates[first->rateIndex];
    facts.channels = first->channels;
    facts.audioBytes = size <= wholeSize ? count.bytes : size;
    if (count.bytes > 0) {
        const double share =
            static_cast<double>(facts.audioBytes) / static_cast<double>(count.bytes);
        facts.length = static_cast<std::uint64_t>(static_cast<double>(count.samples) * share);
    }
    return facts;
}

}  // namespace tavlo
