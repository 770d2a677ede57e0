#include "core/ByteCursor.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
using namespace std::string_view_literals;

constexpr auto headerObject = "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv;
constexpr auto dataObject = "\x36\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv;
constexpr auto fileProperties =
    "\xA1\xDC\xAB\x8C\x47\xA9\xCF\x11\x8E\xE4\x00\xC0\x0C\x20\x53\x65"sv;
constexpr auto streamProperties =
    "\x91\x07\xDC\xB7\xB7\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65"sv;
constexpr auto audioStream = "\x40\x9E\x69\xF8\x4D\x5B\xCF\x11\xA8\xFD\x00\x80\x5F\x5C\x44\x2B"sv;

constexpr std::size_t objectHeadSize = 24, headerHeadSize = 30, dataHeadSize = 50;
constexpr int mostObjects = 1000;
constexpr std::uint32_t ticksPerSecond = 10000000, ticksPerMillisecond = 10000;

std::optional<std::uint64_t> takeLong(ByteCursor& cursor) {
    const auto low = cursor.littleEndian(4);
    const auto high = cursor.littleEndian(4);
    if (!high) return std::nullopt;
    return std::uint64_t{*high} << 32U | *low;
}

struct Object {
    std::string id;
    std::uint64_t body = 0, size = 0;  // the size with the head
};

std::optional<Object> objectAt(File& file, std::uint64_t at) {
    ByteCursor cursor(file.view(at, objectHeadSize));
    const auto id = cursor.take(16);
    const auto size = takeLong(cursor);
    if (!id || !size || *size < objectHeadSize) return std::nullopt;
    return Object{std::string(textOf(*id)), at + objectHeadSize, *size};
}

// False where it is a broadcast, whose header was written before anything was known.
bool parseFileProperties(Bytes bytes, StreamFacts& facts) {
    constexpr std::uint32_t isBroadcast = 1;
    if (bytes.size() < 68) return true;
    ByteCursor cursor(bytes);
    cursor.take(16 + 3 * 8);  // the file's mark, its size, its time, the number of packets
    const std::uint64_t playing = *takeLong(cursor);
    cursor.take(8);
    const std::uint64_t preroll = *takeLong(cursor);
    if ((*cursor.littleEndian(4) & isBroadcast) != 0) return false;
    facts.length =
        preroll < playing / ticksPerMillisecond ? playing - preroll * ticksPerMillisecond : 0;
    facts.timeScale = ticksPerSecond;
    return true;
}

void parseStreamProperties(Bytes bytes, StreamFacts& facts) {
    constexpr std::uint32_t losslessCoding = 0x163;
    ByteCursor cursor(bytes);
    if (bytes.size() < 70 || facts.sampleRate > 0 || !cursor.takeIf(audioStream)) return;
    cursor.take(16 + 8 + 4 + 4 + 2 + 4);  // up to the description of the sound
    const std::uint32_t coding = *cursor.littleEndian(2);
    facts.channels = *cursor.littleEndian(2);
    facts.sampleRate = *cursor.littleEndian(4);
    const std::uint32_t bytesPerSecond = *cursor.littleEndian(4);
    cursor.take(2);  // the size of a block
    const std::uint32_t bits = *cursor.littleEndian(2);
    facts.isLossless = coding == losslessCoding;
    facts.usualBitrate = bytesPerSecond < 1U << 27U ? bytesPerSecond * 8 : 0;
    if (facts.isLossless) facts.bitsPerSample = bits;
}
}  // namespace

std::optional<StreamFacts> readAsf(File& file, SoundSpan span) {
    constexpr std::size_t mostBody = 96;  // all that is read of an object
    const auto header = objectAt(file, span.begin);
    if (!header || header->id != headerObject || !span.holds(span.begin, header->size)) {
        return std::nullopt;
    }
    const std::uint64_t end = span.begin + header->size;
    StreamFacts facts;
    bool isBroadcast = false;
    std::uint64_t at = span.begin + headerHeadSize;
    for (int i = 0; i < mostObjects && at < end; ++i) {
        const auto object = objectAt(file, at);
        if (!object || object->size > end - at) return std::nullopt;
        const Bytes body = file.view(object->body, mostBody);
        if (object->id == fileProperties) isBroadcast = !parseFileProperties(body, facts);
        if (object->id == streamProperties) parseStreamProperties(body, facts);
        at += object->size;
    }
    const auto data = objectAt(file, end);
    if (!data || data->id != dataObject || data->size < dataHeadSize ||
        !span.holds(end, dataHeadSize)) {
        return std::nullopt;
    }
    if (!isBroadcast && !span.holds(end, data->size)) return std::nullopt;
    facts.audioBytes = (isBroadcast ? span.end - end : data->size) - dataHeadSize;
    return facts;
}

}  // namespace tavlo
