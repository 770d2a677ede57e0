#include "tags/SoundSearch.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/ByteCursor.h"
#include "platform/Utf8.h"
#include "tags/MPEGHeader.h"

namespace tavlo {

namespace {
using namespace std::string_view_literals;

constexpr std::uint64_t searchedBytes = 16U << 20U;
constexpr std::size_t step = 65536;

// --- MPEG ----------------------------------------------------------------------------------------

constexpr std::size_t headerSize = 4;
constexpr std::size_t largestFrame = 2881;  // layer II of MPEG-2.5 at 8000 Hz and 160 kbit/s
// Bytes that only look like a frame are found everywhere; so many in a row are not.
constexpr int framesInRow = 6;
constexpr int framesToEnd = 2;  // the same of those that end with the span
constexpr std::size_t rowSpan = framesInRow * largestFrame + headerSize;

std::optional<MPEGHeader> headerIn(std::string_view bytes) {
    MPEGHeader header;
    const bool isHeader = header.ParseHeader(bytes) && header.SampleRate != 0;
    return isHeader ? std::optional(header) : std::nullopt;
}

std::optional<MPEGHeader> headerAt(File& file, std::uint64_t at) {
    return headerIn(textOf(file.view(at, headerSize)));
}

bool isSameStream(const MPEGHeader& a, const MPEGHeader& b) {
    return a.Version == b.Version && a.Layer == b.Layer && a.SampleRate == b.SampleRate;
}

// Whether the stream begins where the span does, as it usually is.
bool beginsWithFrames(File& file, SoundSpan span) {
    constexpr std::size_t twoFrames = 2048;
    // One read for both headers where nothing has been read yet.
    if (span.begin + headerSize > File::headSize) file.view(span.begin, twoFrames);
    const auto first = headerAt(file, span.begin);
    if (!first || first->frameSize() == 0) return false;
    const std::uint64_t next = span.begin + first->frameSize();
    if (next >= span.end) return true;
    const auto second = headerAt(file, next);
    return second && isSameStream(*first, *second);
}

// Frames of a free bit rate do not tell their size, but have all the same one.
class FreeFrames {
 public:
    // Whether a frame at this place is the third at the same distance.
    bool add(std::uint64_t at, const MPEGHeader& header) {
        const std::uint64_t distance = at - at_;
        const bool isNext = header_ && isSameStream(*header_, header) && isLike(distance);
        distance_ = header_ && distance <= largest ? distance : 0;
        at_ = at;
        header_ = header;
        return isNext;
    }
    [[nodiscard]] bool endsAt(std::uint64_t end) const { return header_ && isLike(end - at_); }

 private:
    static constexpr std::uint64_t largest = 16384;

    // Padding makes a frame longer by up to 4 bytes.
    [[nodiscard]] bool isLike(std::uint64_t distance) const {
        constexpr std::uint64_t padding = 4;
        return distance_ != 0 && distance + padding >= distance_ && distance <= distance_ + padding;
    }

    std::optional<MPEGHeader> header_;
    std::uint64_t at_ = 0, distance_ = 0;
};

// Whether frames follow one another from `at` on, at least `framesInRow` or to the end.
bool isRow(std::string_view bytes, std::size_t at, const MPEGHeader& first, bool hasEnd) {
    MPEGHeader header = first;
    for (int count = 1; count < framesInRow; ++count) {
        at += header.frameSize();
        if (at + headerSize > bytes.size()) return hasEnd && count >= framesToEnd;
        const auto next = headerIn(bytes.substr(at, headerSize));
        if (!next || next->frameSize() == 0 || !isSameStream(*next, first)) return false;
        header = *next;
    }
    return true;
}

// Whether a row begins in the first `count` of the bytes, which lie at `from`.
bool hasRow(std::string_view bytes, std::size_t count, std::uint64_t from, bool hasEnd,
            FreeFrames& freeFrames) {
    for (std::size_t at = 0; (at = bytes.find('\xFF', at)) < count; ++at) {
        const auto header = headerIn(bytes.substr(at, headerSize));
        if (!header) continue;
        const bool isFree = header->frameSize() == 0;
        if (isFree ? freeFrames.add(from + at, *header) : isRow(bytes, at, *header, hasEnd)) {
            return true;
        }
    }
    return false;
}

bool holdsMpeg(File& file, SoundSpan span) {
    if (beginsWithFrames(file, span)) return true;
    const std::uint64_t end = std::min(span.end, span.begin + searchedBytes);
    FreeFrames freeFrames;
    for (std::uint64_t from = span.begin; from < end; from += step) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(step, end - from));
        const std::string_view bytes =
            textOf(file.view(from, static_cast<std::size_t>(
                                       std::min<std::uint64_t>(step + rowSpan, span.end - from))));
        if (hasRow(bytes, count, from, from + bytes.size() == span.end, freeFrames)) return true;
    }
    return end == span.end && freeFrames.endsAt(end);
}

// --- Formats with a mark -------------------------------------------------------------------------

// Block sizes and versions beside the mark: the mark alone may stand in any text.
bool isWavPack(Bytes bytes) {
    constexpr std::uint32_t newest = 0x410, oldest = 0x402, oldSystem = 3;
    ByteCursor cursor(bytes);
    cursor.take(8);  // the mark and the block's size
    const std::uint32_t version = cursor.littleEndian(2).value_or(0);
    return (version >= oldest && version <= newest) || (version >= 1 && version <= oldSystem);
}

bool isMonkey(Bytes bytes) {
    constexpr std::uint32_t oldest = 3000, newest = 4999;
    ByteCursor cursor(bytes);
    cursor.take(4);
    const std::uint32_t version = cursor.littleEndian(2).value_or(0);
    return version >= oldest && version <= newest;
}

bool isMusepack7(Bytes bytes) {
    constexpr std::uint8_t versionBits = 0x0F, version = 7;
    return bytes.size() > 3 && (bytes[3] & versionBits) == version;
}

bool isMusepack8(Bytes bytes) {
    const auto isCapital = [](std::uint8_t byte) { return byte >= 'A' && byte <= 'Z'; };
    return bytes.size() > 5 && isCapital(bytes[4]) && isCapital(bytes[5]);
}

struct MarkRow {
    FileTypes type;
    std::string_view mark;
    bool (*fits)(Bytes);  // the bytes from the mark on
};
constexpr std::array<MarkRow, 5> marks{{{FileType::Wv, "wvpk", isWavPack},
                                        {FileType::Ape, "MAC ", isMonkey},
                                        {FileType::Ape, "MACF", isMonkey},
                                        {FileType::Mpc, "MPCK", isMusepack8},
                                        {FileType::Mpc, "MP+", isMusepack7}}};
constexpr std::size_t markSpan = 16;  // bytes that are looked at from a mark on

bool hasMark(Bytes bytes, const MarkRow& row) {
    const std::string_view text = textOf(bytes);
    for (std::size_t at = 0; (at = text.find(row.mark, at)) != std::string_view::npos; ++at) {
        if (row.fits(bytes.subspan(at))) return true;
    }
    return false;
}

bool beginsWith(File& file, SoundSpan span, const MarkRow& row) {
    const Bytes bytes = file.view(span.begin, markSpan);
    return textOf(bytes).starts_with(row.mark) && row.fits(bytes);
}

bool holdsMark(File& file, SoundSpan span, const MarkRow& row) {
    const std::uint64_t end = std::min(span.end, span.begin + searchedBytes);
    for (std::uint64_t from = span.begin; from < end; from += step) {
        const auto count = std::min<std::uint64_t>(step + markSpan, end - from);
        if (hasMark(file.view(from, static_cast<std::size_t>(count)), row)) return true;
    }
    return false;
}

// --- What it may be instead ----------------------------------------------------------------------

struct LookRow {
    std::size_t place;
    std::string_view magic;
    std::string_view name;
};
// The first that fits counts.
constexpr std::array<LookRow, 24> looks{{
    {0, "fLaC", "FLAC"},
    {0, "OggS", "Ogg"},
    {8, "WAVE", "RIFF/WAVE"},
    {0, "RIFF", "RIFF"},
    {0, "FORM", "IFF"},
    {4, "ftyp", "MP4"},
    {0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11", "ASF"},
    {0, "wvpk", "WavPack"},
    {0, "MPCK", "Musepack"},
    {0, "MP+", "Musepack"},
    {0, "\x1A\x45\xDF\xA3", "Matroska"},
    {0, "\xFF\xD8\xFF", "JPEG"},
    {0, "\x89PNG\r\n", "PNG"},
    {0, "GIF8", "GIF"},
    {0, "%PDF-", "PDF"},
    {0, "PK\x03\x04", "ZIP"},
    {0, "Rar!\x1A", "RAR"},
    {0, "7z\xBC\xAF\x27\x1C", "7z"},
    {0, "\x1F\x8B\x08", "gzip"},
    {0, "SQLite format 3", "SQLite"},
    {0,
     "\x7F"
     "ELF",
     "ELF"},
    {0, "\xFF\xF1", "AAC"},
    {0, "\xFF\xF9", "AAC"},
    {0, "ID3", "ID3v2"},
}};

bool isTextByte(char c) {
    return static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n' || c == '\r' ||
           c == '\f' || c == '\x1B';
}

bool isPlainText(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return true;
    return std::ranges::all_of(bytes, isTextByte);
}
}  // namespace

bool holdsSound(File& file, FileTypes type, SoundSpan span) {
    if (span.begin >= span.end) return false;
    if (type == FileType::Mp3) return holdsMpeg(file, span);
    const auto isOfType = [&](const MarkRow& row) { return row.type == type; };
    return std::ranges::any_of(
               marks,
               [&](const MarkRow& row) { return isOfType(row) && beginsWith(file, span, row); }) ||
           std::ranges::any_of(marks, [&](const MarkRow& row) {
               return isOfType(row) && holdsMark(file, span, row);
           });
}

std::string_view soundName(FileTypes type) {
    struct Row {
        FileTypes type;
        std::string_view name;
    };
    constexpr std::array<Row, 4> names{{{FileType::Mp3, "MPEG"},
                                        {FileType::Mpc, "Musepack"},
                                        {FileType::Wv, "WavPack"},
                                        {FileType::Ape, "Monkey's"}}};
    const auto* row = std::ranges::find(names, type, &Row::type);
    return row == names.end() ? std::string_view() : row->name;
}

std::string looksLike(File& file, SoundSpan span, const Texts& texts) {
    constexpr std::uint64_t lookedAt = 512;
    if (span.begin >= span.end) return texts.get(Text::LooksEmpty);
    const std::string_view bytes = textOf(
        file.view(span.begin, static_cast<std::size_t>(std::min(lookedAt, span.end - span.begin))));
    const auto* row = std::ranges::find_if(looks, [&](const LookRow& look) {
        return bytes.size() > look.place && bytes.substr(look.place).starts_with(look.magic);
    });
    if (row != looks.end()) return std::string(row->name);
    if (bytes.starts_with("MAC ")) return std::string(soundName(FileType::Ape)) + " Audio";
    if (bytes.starts_with("#!")) return texts.get(Text::LooksScript);
    if (isPlainText(bytes)) return texts.get(Text::LooksText);
    return beginsWithFrames(file, span) ? "MP3" : std::string();
}

}  // namespace tavlo
