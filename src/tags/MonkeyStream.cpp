#include "core/ByteCursor.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr std::size_t markSize = 4, seekSize = 4;  // bytes of one entry of the seek table
constexpr std::uint32_t oldestVersion = 3000, newestVersion = 4999, firstWithDescriptor = 3980;

struct Frames {
    std::uint32_t count = 0, samples = 0, lastSamples = 0;
};

bool setLength(StreamFacts& facts, const Frames& frames) {
    if (frames.count == 0 || frames.lastSamples > frames.samples) return false;
    facts.timeScale = facts.sampleRate;
    facts.length = std::uint64_t{frames.count - 1} * frames.samples + frames.lastSamples;
    return facts.channels > 0;
}

// From version 3.98 on: a descriptor that tells the size of all that follows.
std::optional<StreamFacts> readNewer(File& file, SoundSpan span) {
    constexpr std::size_t descriptorSize = 52;
    constexpr std::size_t headerSize = 24;
    ByteCursor cursor(file.view(span.begin, descriptorSize));
    cursor.take(8);
    std::uint64_t front = 0;
    const std::uint64_t descriptor = cursor.littleEndian(4).value_or(0);
    for (int i = 0; i < 3; ++i) front += cursor.littleEndian(4).value_or(0);
    const std::uint64_t low = cursor.littleEndian(4).value_or(0);
    const auto high = cursor.littleEndian(4);
    if (!high || descriptor < descriptorSize) return std::nullopt;
    front += descriptor;
    StreamFacts facts;
    facts.audioBytes = std::uint64_t{*high} << 32U | low;
    if (!span.holds(span.begin, front) || !span.holds(span.begin + front, facts.audioBytes)) {
        return std::nullopt;
    }
    ByteCursor header(file.view(span.begin + descriptor, headerSize));
    header.take(4);  // compression and flags
    Frames frames;
    frames.samples = header.littleEndian(4).value_or(0);
    frames.lastSamples = header.littleEndian(4).value_or(0);
    frames.count = header.littleEndian(4).value_or(0);
    facts.bitsPerSample = header.littleEndian(2).value_or(0);
    facts.channels = header.littleEndian(2).value_or(0);
    facts.sampleRate = header.littleEndian(4).value_or(0);
    return setLength(facts, frames) ? std::optional(facts) : std::nullopt;
}

std::uint32_t frameSamples(std::uint32_t version, std::uint32_t compression) {
    constexpr std::uint32_t extraHigh = 4000;
    constexpr std::uint32_t longer = 73728;
    constexpr std::uint32_t shorter = 9216;
    if (version >= 3950) return longer * 4;
    return version >= 3900 || (version >= 3800 && compression == extraHigh) ? longer : shorter;
}

// Where the last frame begins, by the seek table; nothing where that cannot be.
std::optional<std::uint64_t> lastFrame(File& file, SoundSpan span, std::uint64_t table,
                                       const Frames& frames) {
    const std::uint64_t entry = table + (std::uint64_t{frames.count} - 1) * seekSize;
    const auto place = ByteCursor(file.view(entry, seekSize)).littleEndian(seekSize);
    return place && *place < span.end - span.begin ? std::optional<std::uint64_t>(*place)
                                                   : std::nullopt;
}

std::optional<StreamFacts> readOlder(File& file, SoundSpan span, std::uint32_t version) {
    constexpr unsigned is8Bit = 1;
    constexpr unsigned hasPeak = 4;
    constexpr unsigned is24Bit = 8;
    constexpr unsigned hasSeekCount = 16;
    constexpr unsigned makesWaveHead = 32;
    constexpr std::size_t headerSize = 40;
    const Bytes bytes = file.view(span.begin, headerSize);
    ByteCursor cursor(bytes);
    cursor.take(markSize + 2);
    const std::uint32_t compression = cursor.littleEndian(2).value_or(0);
    const std::uint32_t flags = cursor.littleEndian(2).value_or(0);
    StreamFacts facts;
    facts.channels = cursor.littleEndian(2).value_or(0);
    facts.sampleRate = cursor.littleEndian(4).value_or(0);
    const std::uint64_t waveHead = cursor.littleEndian(4).value_or(0);
    cursor.take(4);  // what followed the sound
    Frames frames{cursor.littleEndian(4).value_or(0), frameSamples(version, compression), 0};
    frames.lastSamples = cursor.littleEndian(4).value_or(0);
    if ((flags & hasPeak) != 0) cursor.take(4);
    const auto seekCount =
        (flags & hasSeekCount) != 0 ? cursor.littleEndian(4) : std::optional(frames.count);
    if (!seekCount || !setLength(facts, frames)) return std::nullopt;
    std::uint64_t table = span.begin + (bytes.size() - cursor.left());
    if ((flags & makesWaveHead) == 0) table += waveHead;
    if (*seekCount >= frames.count && !lastFrame(file, span, table, frames)) return std::nullopt;
    const std::uint64_t front = table + std::uint64_t{*seekCount} * seekSize;
    if (!span.holds(front, 1)) return std::nullopt;
    facts.audioBytes = span.end - front;
    facts.bitsPerSample = (flags & is8Bit) != 0 ? 8 : (flags & is24Bit) != 0 ? 24 : 16;
    return facts;
}
}  // namespace

std::optional<StreamFacts> readMonkey(File& file, SoundSpan span) {
    ByteCursor cursor(file.view(span.begin, markSize + 2));
    const bool isFloat = cursor.takeIf("MACF");
    if (!isFloat && !cursor.takeIf("MAC ")) return std::nullopt;
    const std::uint32_t version = cursor.littleEndian(2).value_or(0);
    if (version < oldestVersion || version > newestVersion) return std::nullopt;
    auto facts =
        version >= firstWithDescriptor ? readNewer(file, span) : readOlder(file, span, version);
    if (!facts) return std::nullopt;
    facts->isLossless = true;
    facts->isFloat = isFloat;
    return facts;
}

}  // namespace tavlo
