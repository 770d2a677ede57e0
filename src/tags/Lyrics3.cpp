#include "tags/Lyrics3.h"

#include <algorithm>
#include <charconv>

#include "core/ByteCursor.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::string_view beginMark = "LYRICSBEGIN";
constexpr std::string_view endMark = "LYRICS";  // its first letters; the version follows
constexpr std::uint64_t searchSpan = 300;
constexpr std::size_t sizeDigits = 6, endMarkSize = 9, idSize = 3, lengthDigits = 5;

std::optional<std::uint32_t> decimal(std::string_view digits) {
    std::uint32_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

struct Block {
    std::uint64_t begin;  // offset of the begin marker
    std::uint32_t size;   // begin marker and fields
};

// The block whose size field stands in front of `mark`; the begin marker has to be where it says.
std::optional<Block> blockBefore(File& file, std::uint64_t mark) {
    if (mark < sizeDigits) return std::nullopt;
    const auto size = decimal(textOf(file.view(mark - sizeDigits, sizeDigits)));
    if (!size || *size < beginMark.size() || *size > mark - sizeDigits) return std::nullopt;
    const std::uint64_t begin = mark - sizeDigits - *size;
    if (textOf(file.view(begin, beginMark.size())) != beginMark) return std::nullopt;
    return Block{begin, *size};
}

// The last end marker that closes a block: the word may stand in a title or an item as well.
std::optional<Block> locate(File& file) {
    const std::uint64_t span = std::min(searchSpan, file.size());
    const std::string_view end = textOf(file.view(file.size() - span, searchSpan));
    if (end.find(endMark) == std::string_view::npos) return std::nullopt;
    const std::string tail(end);  // the view moves on while candidates are checked
    std::size_t at = tail.rfind(endMark);
    while (at != std::string::npos) {
        if (const auto block = blockBefore(file, file.size() - span + at)) return block;
        at = at == 0 ? std::string::npos : tail.rfind(endMark, at - 1);
    }
    return std::nullopt;
}

void setField(std::string_view id, std::string_view text, ID3tag& record) {
    if (text.empty()) return;
    if (id == "ETT") {
        record.LyricsExt.TrackTitle = text;
        record.SetTitle(text);
    } else if (id == "EAR") {
        record.LyricsExt.Artist = text;
        record.SetArtist(text);
    }
}

void readFields(File& file, const Block& block, ID3tag& record, const CodePage& ansi) {
    constexpr std::size_t headerSize = idSize + lengthDigits;
    const std::uint64_t end = block.begin + block.size;
    std::uint64_t at = block.begin + beginMark.size();
    while (at + headerSize <= end) {
        const std::string header(textOf(file.view(at, headerSize)));
        if (header.size() < headerSize) return;
        const auto length = decimal(std::string_view(header).substr(idSize));
        at += headerSize;
        if (!length || *length > end - at) return;
        const std::string_view id = std::string_view(header).substr(0, idSize);
        if (id == "ETT" || id == "EAR") {
            const std::string text = ansi.toUtf8(textOf(file.view(at, *length)));
            setField(id, trimBlanks(text), record);
        }
        at += *length;
    }
}

// The distance counts from behind the begin marker's first bytes, as other programs keep it.
constexpr std::int32_t endOffsetLess = 22;
}  // namespace

std::optional<TagSpan> ReadLyrics3Block(File& file, ID3tag& record, const ReadContext& context) {
    const auto block = locate(file);
    if (!block) return std::nullopt;
    record.IsLyricsPresent = true;
    record.LyricsExt.EndOffset =
        static_cast<std::int32_t>(file.size() - block->begin) - endOffsetLess;
    readFields(file, *block, record, context.ansi);
    const std::uint64_t end = block->begin + block->size + sizeDigits + endMarkSize;
    return TagSpan{block->begin, std::min(end, file.size())};
}

std::optional<std::uint64_t> lyricsBegin(const File& file, const ID3tag& record) {
    if (!record.IsLyricsPresent) return std::nullopt;
    return file.size() - static_cast<std::uint64_t>(record.LyricsExt.EndOffset + endOffsetLess);
}

}  // namespace tavlo
