#include <algorithm>

#include "core/ByteCursor.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr int mostBlocks = 1000;
constexpr std::size_t blockHeadSize = 4, streamInfoSize = 34;
constexpr std::size_t frameHeadSize = 16;
constexpr std::uint32_t frameMark = 0x7FFC;  // 15 bits; the next one tells how frames are numbered

// Says by which number a frame's own is to be multiplied: 1 where that counts samples.
std::uint32_t parseStreamInfo(Bytes bytes, StreamFacts& facts) {
    ByteCursor cursor(bytes);
    const std::uint32_t least = cursor.bigEndian(2).value_or(0);
    const std::uint32_t most = cursor.bigEndian(2).value_or(0);
    cursor.take(6);                                                // sizes of frames
    const std::uint32_t packed = cursor.bigEndian(4).value_or(0);  // 20 + 3 + 5 + 4 bits
    facts.sampleRate = facts.timeScale = packed >> 12U;
    facts.channels = (packed >> 9U & 7U) + 1;
    facts.bitsPerSample = (packed >> 4U & 31U) + 1;
    facts.length = std::uint64_t{packed & 15U} << 32U | cursor.bigEndian(4).value_or(0);
    return least == most ? most : 1;
}

// Where the frames begin; nothing where a block runs past the end.
std::optional<std::uint64_t> passBlocks(File& file, SoundSpan span, std::uint64_t at) {
    for (int i = 0; i < mostBlocks; ++i) {
        ByteCursor cursor(file.view(at, blockHeadSize));
        const auto type = cursor.u8();
        const auto size = cursor.bigEndian(3);
        if (!size || !span.holds(at, blockHeadSize + *size)) return std::nullopt;
        at += blockHeadSize + *size;
        if ((*type & 0x80U) != 0) return at;
    }
    return std::nullopt;
}

std::uint8_t checksum(Bytes bytes) {
    unsigned sum = 0;
    for (const std::uint8_t byte : bytes) {
        sum ^= byte;
        for (int bit = 0; bit < 8; ++bit) sum = sum << 1U ^ ((sum & 0x80U) != 0 ? 0x107U : 0U);
    }
    return static_cast<std::uint8_t>(sum);
}

// A number in the form of UTF-8, up to 36 bits.
std::optional<std::uint64_t> takeNumber(ByteCursor& cursor) {
    const auto first = cursor.u8();
    if (!first) return std::nullopt;
    unsigned more = 0;
    while (more < 7 && (unsigned{*first} << more & 0x80U) != 0) ++more;
    if (more == 1 || *first == 0xFF) return std::nullopt;
    std::uint64_t number = *first & (0x7FU >> more);
    for (unsigned i = 1; i < more; ++i) {
        const auto byte = cursor.u8();
        if (!byte || (*byte & 0xC0U) != 0x80U) return std::nullopt;
        number = number << 6U | (*byte & 0x3FU);
    }
    return number;
}

std::optional<std::uint32_t> takeBlockSize(ByteCursor& cursor, unsigned code) {
    if (code == 1) return 192;
    if (code >= 2 && code <= 5) return 576U << (code - 2);
    if (code >= 8) return 256U << (code - 8);
    const auto number = code == 0 ? std::nullopt : cursor.bigEndian(code - 5);  // 6 or 7
    return number ? std::optional(*number + 1) : std::nullopt;
}

// The number of samples up to the end of the frame that begins here; nothing where none does.
std::optional<std::uint64_t> parseFrame(Bytes bytes, std::uint32_t unit) {
    ByteCursor cursor(bytes);
    const std::uint32_t head = cursor.bigEndian(4).value_or(0);
    if (head >> 17U != frameMark || (head & 1U) != 0) return std::nullopt;
    const auto number = takeNumber(cursor);
    const auto size = number ? takeBlockSize(cursor, head >> 12U & 15U) : std::nullopt;
    if (!size) return std::nullopt;
    const unsigned rate = head >> 8U & 15U;
    cursor.take(rate == 12 ? 1 : rate == 13 || rate == 14 ? 2 : 0);
    const std::size_t length = bytes.size() - cursor.left();
    if (cursor.u8() != checksum(bytes.first(length))) return std::nullopt;
    const bool isVariable = (head >> 16U & 1U) != 0;
    return *number * (isVariable ? 1 : unit) + *size;
}
// What all frame heads of a stream have alike.
std::uint32_t sameInAll(Bytes bytes) {
    return ByteCursor(bytes).bigEndian(4).value_or(0) & 0xFFFF0F0FU;
}
}  // namespace

std::optional<StreamFacts> readFlac(File& file, SoundSpan span) {
    constexpr std::string_view mark = "fLaC";
    ByteCursor cursor(file.view(span.begin, mark.size() + blockHeadSize + streamInfoSize));
    if (!cursor.takeIf(mark)) return std::nullopt;
    const auto head = cursor.bigEndian(4);
    if (!head || (*head & 0x7FFFFFFFU) != streamInfoSize || cursor.left() < streamInfoSize) {
        return std::nullopt;
    }
    StreamFacts facts;
    facts.isLossless = true;
    const std::uint32_t unit = parseStreamInfo(cursor.rest(), facts);
    const auto frames = passBlocks(file, span, span.begin + mark.size());
    if (!frames) return std::nullopt;
    facts.audioBytes = span.end - *frames;
    const std::uint32_t first = sameInAll(file.view(*frames, 4));
    if (first >> 17U != frameMark && facts.length > 0) return std::nullopt;
    const std::uint64_t promised = facts.length;
    // An encoder that was killed has promised what it never wrote, or left the number empty.
    findLast(file, {*frames, span.end}, "\xFF", frameHeadSize, [&](std::uint64_t, Bytes bytes) {
        if (sameInAll(bytes) != first) return false;
        const auto end = parseFrame(bytes.first(std::min(bytes.size(), frameHeadSize)), unit);
        if (!end || (facts.length > 0 && *end > facts.length)) return false;
        facts.length = *end;
        return true;
    });
    facts.isCut = facts.length < promised;
    return facts;
}

}  // namespace tavlo
