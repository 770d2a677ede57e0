#include "tags/WaveFile.h"

#include <algorithm>
#include <array>
#include <limits>

#include "core/ByteCursor.h"

namespace tavlo {

namespace {
constexpr std::size_t chunkHeadSize = 8, formatSize = 16;
constexpr int mostChunks = 1000;

struct Chunk {
    std::string id;
    std::uint64_t data = 0;  // offset
    std::uint32_t size = 0;
};

std::optional<Chunk> chunkAt(File& file, std::uint64_t at) {
    ByteCursor cursor(file.view(at, chunkHeadSize));
    const auto id = cursor.take(4);
    const auto size = cursor.littleEndian(4);
    if (!id || !size) return std::nullopt;
    return Chunk{std::string(textOf(*id)), at + chunkHeadSize, *size};
}

// Gives the bytes a second.
std::uint32_t readFormat(Bytes bytes, ID3tag& record) {
    ByteCursor cursor(bytes);
    cursor.take(2);  // the kind of coding
    record.Channels = static_cast<int>(cursor.littleEndian(2).value_or(0));
    record.SampleRate = static_cast<int>(cursor.littleEndian(4).value_or(0) & 0x7FFFFFFFU);
    const std::uint32_t rate = cursor.littleEndian(4).value_or(0);
    cursor.take(2);  // the size of a block
    record.BitsPerSample = static_cast<int>(cursor.littleEndian(2).value_or(0));
    record.Bitrate = static_cast<int>(rate / 125);
    return rate;
}

// Programs like to sign what they write; that is no tag of the user's.
bool isSignatureOnly(File& file, const Chunk& list) {
    constexpr std::size_t kindSize = 4;
    if (textOf(file.view(list.data, kindSize)) != "INFO") return false;
    const std::uint64_t end = list.data + list.size;
    std::uint64_t at = list.data + kindSize;
    for (int i = 0; i < mostChunks && at + chunkHeadSize <= end; ++i) {
        const auto chunk = chunkAt(file, at);
        if (!chunk || chunk->id != "ISFT") return false;
        at = chunk->data + chunk->size + chunk->size % 2;
    }
    return true;
}

bool isOfSound(File& file, const Chunk& chunk) {
    constexpr std::array<std::string_view, 7> ids{"fmt ", "data", "fact", "PAD ",
                                                  "JUNK", "FLLR", "junk"};
    return std::ranges::find(ids, chunk.id) != ids.end() ||
           (chunk.id == "LIST" && isSignatureOnly(file, chunk));
}
}  // namespace

WaveContents waveContents(const std::string& path) {
    WaveContents contents;
    File file;
    ID3tag record;
    if (!file.open(path, Access::Read) || !readWave(file, record)) return {false, false};
    std::uint64_t at = 12;
    for (int i = 0; i < mostChunks && at + chunkHeadSize <= file.size(); ++i) {
        const auto chunk = chunkAt(file, at);
        if (!chunk) break;
        const bool fits = chunk->size <= file.size() - chunk->data;
        if (chunk->id == "data" && fits) contents.isWhole = chunk->size > 0;
        if (!fits || !isOfSound(file, *chunk)) contents.hasOnlySound = false;
        at = chunk->data + chunk->size + chunk->size % 2;
    }
    return contents;
}

bool readWave(File& file, ID3tag& record) {
    constexpr std::size_t headSize = 12;
    const std::string head(textOf(file.view(0, headSize)));
    if (!head.starts_with("RIFF") || head.substr(std::min(head.size(), headSize - 4)) != "WAVE") {
        return false;
    }
    std::uint32_t rate = 0;
    std::uint64_t at = headSize;
    for (int i = 0; i < mostChunks; ++i) {
        const auto chunk = chunkAt(file, at);
        if (!chunk) return false;
        if (chunk->id == "fmt ") rate = readFormat(file.view(chunk->data, formatSize), record);
        if (chunk->id == "data" && rate > 0) {
            // A recorder that was killed leaves a size that is too large, or none.
            const std::uint64_t left = file.size() - chunk->data;
            const std::uint64_t size =
                chunk->size == 0 ? left : std::min<std::uint64_t>(chunk->size, left);
            record.Seconds = static_cast<std::int32_t>(
                std::min<std::uint64_t>(size / rate, std::numeric_limits<std::int32_t>::max()));
            record.StreamFound = true;
            return true;
        }
        at = chunk->data + chunk->size + chunk->size % 2;
    }
    return false;
}

}  // namespace tavlo
