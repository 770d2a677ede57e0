#include <algorithm>
#include <array>

#include "core/ByteCursor.h"
#include "tags/StreamReaders.h"

namespace tavlo {

namespace {
constexpr std::string_view mark = "wvpk";
constexpr std::size_t headSize = 32;
constexpr int mostFirstBlocks = 32;  // of one moment: a block holds two channels at most
constexpr int mostPieces = 64;

constexpr std::uint32_t mono = 1U << 2U, hybrid = 1U << 3U, floating = 1U << 7U;
constexpr std::uint32_t firstOfMoment = 1U << 11U, lastOfMoment = 1U << 12U, dsd = 1U << 31U;
constexpr std::array<std::uint32_t, 15> rates{6000,  8000,  9600,  11025, 12000,
                                              16000, 22050, 24000, 32000, 44100,
                                              48000, 64000, 88200, 96000, 192000};

struct Block {
    std::uint64_t size = 0;
    std::optional<std::uint64_t> total;  // samples of the whole stream
    std::uint64_t index = 0;             // of the first sample
    std::uint32_t samples = 0, flags = 0;
};

std::optional<Block> parseBlock(Bytes bytes) {
    ByteCursor cursor(bytes);
    if (bytes.size() < headSize || !cursor.takeIf(mark)) return std::nullopt;
    Block block;
    block.size = std::uint64_t{*cursor.littleEndian(4)} + 8;
    const std::uint32_t version = *cursor.littleEndian(2);
    const std::uint64_t indexHigh = *cursor.u8();
    const std::uint64_t totalHigh = *cursor.u8();
    const std::uint32_t total = *cursor.littleEndian(4);
    block.index = indexHigh << 32U | *cursor.littleEndian(4);
    block.samples = *cursor.littleEndian(4);
    block.flags = *cursor.littleEndian(4);
    // A low word of ones says "not known", so the high one counts in units of one less.
    if (total != 0xFFFFFFFFU && block.index == 0)
        block.total = (totalHigh << 32U) + total - totalHigh;
    if (version < 0x402 || version > 0x410 || block.size < headSize) return std::nullopt;
    return block;
}

std::optional<Block> blockAt(File& file, SoundSpan span, std::uint64_t at) {
    const auto block = parseBlock(file.view(at, headSize));
    return block && span.holds(at, block->size) ? block : std::nullopt;
}

// The first three bytes of a piece of a block, least significant first.
std::optional<std::uint32_t> pieceOf(File& file, std::uint64_t at, std::uint64_t end,
                                     unsigned wanted) {
    constexpr unsigned kind = 0x3F;
    constexpr unsigned isLarge = 0x80;
    for (int i = 0; i < mostPieces && at < end; ++i) {
        ByteCursor cursor(file.view(at, 7));
        const auto id = cursor.u8();
        const std::size_t sizeBytes = id && (*id & isLarge) != 0 ? 3 : 1;
        const auto words = cursor.littleEndian(sizeBytes);
        if (!words) return std::nullopt;
        if ((*id & kind) == wanted)
            return cursor.littleEndian(std::min<std::size_t>(std::size_t{*words} * 2, 3));
        at += 1 + sizeBytes + std::uint64_t{*words} * 2;
    }
    return std::nullopt;
}

class WavPackReader {
 public:
    WavPackReader(File& file, SoundSpan span) : file_(file), span_(span) {}

    std::optional<StreamFacts> read() {
        if (!passFirstMoment()) return std::nullopt;
        facts_.audioBytes = span_.end - span_.begin;
        facts_.length = total_.value_or(0);
        findLast(file_, span_, mark, headSize, [&](std::uint64_t at, Bytes bytes) {
            const auto block = parseBlock(bytes);
            if (!block || block->samples == 0 || block->index < begin_ ||
                !span_.holds(at, block->size)) {
                return false;
            }
            const std::uint64_t held = block->index + block->samples - begin_;
            facts_.length = total_ ? std::min(*total_, held) : held;
            return true;
        });
        facts_.isCut = total_ && facts_.length < *total_;
        return facts_;
    }

 private:
    // Blocks in front may hold no sound; more than two channels are spread over several blocks.
    bool passFirstMoment() {
        std::uint64_t at = span_.begin;
        for (int i = 0; i < mostFirstBlocks; ++i) {
            const auto block = blockAt(file_, span_, at);
            if (!block) return false;
            const bool isFirst = (block->flags & firstOfMoment) != 0;
            if (!total_ && (isFirst || block->samples == 0)) total_ = block->total;
            if (block->samples > 0) {
                if (isFirst) parseFlags(at, *block);
                facts_.channels += (block->flags & mono) != 0 ? 1 : 2;
                if ((block->flags & lastOfMoment) != 0) return facts_.sampleRate > 0;
            }
            at += block->size;
        }
        return false;
    }

    void parseFlags(std::uint64_t at, const Block& block) {
        constexpr unsigned rateId = 0x27;
        constexpr unsigned dsdId = 0x0E;
        const std::uint64_t begin = at + headSize;
        const std::uint64_t end = at + block.size;
        const std::uint32_t rate = block.flags >> 23U & 15U;
        begin_ = block.index;
        facts_.sampleRate =
            rate < rates.size() ? rates[rate] : pieceOf(file_, begin, end, rateId).value_or(0);
        facts_.timeScale = facts_.sampleRate;
        const std::uint32_t width = ((block.flags & 3U) + 1) * 8;
        const std::uint32_t spare = block.flags >> 13U & 31U;
        facts_.bitsPerSample = width - std::min(width, spare);
        facts_.isLossless = (block.flags & hybrid) == 0;
        facts_.isFloat = (block.flags & floating) != 0;
        if ((block.flags & dsd) != 0) {  // what is counted as a sample is 8 of one bit each
            const std::uint32_t power = pieceOf(file_, begin, end, dsdId).value_or(0) & 15U;
            facts_.timeScale <<= power;
            facts_.sampleRate = facts_.timeScale * 8;
            facts_.bitsPerSample = 1;
        }
    }

    File& file_;
    SoundSpan span_;
    StreamFacts facts_;
    std::optional<std::uint64_t> total_;
    std::uint64_t begin_ = 0;
};
}  // namespace

std::optional<StreamFacts> readWavPack(File& file, SoundSpan span) {
    return WavPackReader(file, span).read();
}

}  // namespace tavlo
