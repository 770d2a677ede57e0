#include <algorithm>
#include <array>

#include "core/ByteCursor.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr std::array<std::uint32_t, 4> rates{44100, 48000, 37800, 32000};
constexpr std::uint64_t frameSamples = 1152;

// --- Stream version 7 ----------------------------------------------------------------------------

std::optional<StreamFacts> readVersion7(File& file, SoundSpan span) {
    constexpr std::uint32_t smallestFrame = 20;  // bits of its length alone
    constexpr std::uint32_t hasLastLength = 1U << 31U;
    constexpr std::size_t headSize = 24;
    ByteCursor cursor(file.view(span.begin, headSize));
    cursor.take(4);
    if (cursor.left() < headSize - 4) return std::nullopt;
    const std::uint64_t frames = *cursor.littleEndian(4);
    const std::uint32_t flags = *cursor.littleEndian(4);
    cursor.take(8);  // gains and peaks
    const std::uint32_t ending = *cursor.littleEndian(4);
    StreamFacts facts;
    facts.sampleRate = facts.timeScale = rates[flags >> 16U & 3U];
    facts.channels = 2;
    facts.audioBytes = span.end - span.begin - headSize;
    if (frames * smallestFrame / 8 > facts.audioBytes) return std::nullopt;
    facts.length = frames * frameSamples;
    const std::uint64_t last = ending >> 20U & 0x7FFU;
    if ((ending & hasLastLength) != 0 && frames > 0 && last <= frameSamples) {
        facts.length -= frameSamples - last;
    }
    return facts;
}

// --- Stream version 8 ----------------------------------------------------------------------------

constexpr std::size_t longestNumber = 9;
constexpr std::size_t packetHeadSize = 2 + longestNumber, streamHeadSize = 25;
constexpr int mostHeaderPackets = 100, mostPackets = 100000;

// 7 bits a byte, the most significant first.
std::optional<std::uint64_t> takeNumber(ByteCursor& cursor) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < longestNumber; ++i) {
        const auto byte = cursor.u8();
        if (!byte) return std::nullopt;
        number = number << 7U | (*byte & 0x7FU);
        if ((*byte & 0x80U) == 0) return number;
    }
    return std::nullopt;
}

struct Packet {
    std::string key;
    std::uint64_t begin = 0, body = 0, end = 0;
};

std::optional<Packet> packetAt(File& file, SoundSpan span, std::uint64_t at) {
    const Bytes bytes = file.view(at, packetHeadSize);
    ByteCursor cursor(bytes);
    const auto key = cursor.take(2);
    const auto size = takeNumber(cursor);
    const std::size_t headSize = bytes.size() - cursor.left();
    if (!key || !size || *size < headSize || !span.holds(at, *size)) return std::nullopt;
    return Packet{std::string(textOf(*key)), at, at + headSize, at + *size};
}

Bytes bodyOf(File& file, const Packet& packet, std::size_t most) {
    return file.view(packet.body, static_cast<std::size_t>(
                                      std::min<std::uint64_t>(packet.end - packet.body, most)));
}

class Version8Reader {
 public:
    Version8Reader(File& file, SoundSpan span) : file_(file), span_(span) {}

    std::optional<StreamFacts> read() {
        std::uint64_t at = span_.begin + 4;
        bool isFinished = true;
        for (int i = 0; i < mostHeaderPackets; ++i) {
            const auto packet = packetAt(file_, span_, at);
            if (!packet) return std::nullopt;
            if (packet->key == "SH" && !parseStreamHead(bodyOf(file_, *packet, streamHeadSize))) {
                return std::nullopt;
            }
            if (packet->key == "SO") isFinished = leadsToSeekTable(*packet);
            if (packet->key == "SE" || packet->key == "AP") return finish(at, isFinished);
            at = packet->end;
        }
        return std::nullopt;
    }

 private:
    bool parseStreamHead(Bytes bytes) {
        ByteCursor cursor(bytes);
        cursor.take(4);  // a checksum
        const auto version = cursor.u8();
        const auto samples = takeNumber(cursor);
        const auto silence = takeNumber(cursor);
        const auto first = cursor.u8();
        const auto second = cursor.u8();
        if (version != 8 || !samples || !silence || !second || *first >> 5U >= rates.size())
            return false;
        facts_.sampleRate = facts_.timeScale = rates[*first >> 5U];
        facts_.channels = (*second >> 4U) + 1U;
        facts_.length = *samples - std::min(*samples, *silence);
        packetFrames_ = std::uint64_t{1} << 2 * (*second & 7U);
        return true;
    }

    // The table is written behind the sound, and its place is filled in at last.
    bool leadsToSeekTable(const Packet& packet) {
        ByteCursor cursor(bodyOf(file_, packet, longestNumber));
        const auto place = takeNumber(cursor);
        if (!place || *place > span_.end - packet.begin) return false;
        const auto table = packetAt(file_, span_, packet.begin + *place);
        return table && table->key == "ST";
    }

    std::optional<StreamFacts> finish(std::uint64_t at, bool isFinished) {
        if (facts_.sampleRate == 0) return std::nullopt;
        facts_.audioBytes = span_.end - at;
        if (!isFinished || facts_.length == 0) {
            const std::uint64_t held = heldSamples(at);
            facts_.isCut = held < facts_.length;
            facts_.length = facts_.length == 0 ? held : std::min(held, facts_.length);
        }
        return facts_;
    }

    std::uint64_t heldSamples(std::uint64_t at) {
        std::uint64_t packets = 0;
        while (packets < mostPackets) {
            const auto packet = packetAt(file_, span_, at);
            if (!packet || packet->key != "AP") break;
            at = packet->end;
            ++packets;
        }
        return packets * packetFrames_ * frameSamples;
    }

    File& file_;
    SoundSpan span_;
    StreamFacts facts_;
    std::uint64_t packetFrames_ = 1;
};
}  // namespace

std::optional<StreamFacts> readMusepack(File& file, SoundSpan span) {
    ByteCursor cursor(file.view(span.begin, 4));
    if (cursor.takeIf("MPCK")) return Version8Reader(file, span).read();
    if (cursor.takeIf("MP+") && (cursor.u8().value_or(0) & 15U) == 7) {
        return readVersion7(file, span);
    }
    return std::nullopt;
}

}  // namespace tavlo
