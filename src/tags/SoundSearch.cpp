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
// Bytes that only look like a frame are found everywhere; so many in a row are not. Tables in
// programs look like frames of a free bit rate.
constexpr int framesInRow = 10, freeFramesInRow = 16;
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

// What else no stream changes on its way: whether frames have a checksum, and mono.
bool isSameKind(const MPEGHeader& a, const MPEGHeader& b, char checksumOfA, char checksumOfB) {
    constexpr int mono = 3;
    return isSameStream(a, b) && checksumOfA == checksumOfB &&
           (a.ChannelMode == mono) == (b.ChannelMode == mono);
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
    // Whether the frame at this place ends a row of them.
    bool add(std::uint64_t at, const MPEGHeader& header, char checksum) {
        const bool isNext = header_ && isSameKind(*header_, header, checksum_, checksum);
        const std::uint64_t size = isNext ? at - at_ - padding(*header_) : 0;
        count_ = size >= smallest && size <= largest ? (size == size_ ? count_ + 1 : 2) : 1;
        size_ = size;
        at_ = at;
        header_ = header;
        checksum_ = checksum;
        return count_ >= freeFramesInRow;
    }
    [[nodiscard]] bool endsAt(std::uint64_t end) const {
        return count_ >= framesToEnd && end - at_ == size_ + padding(*header_);
    }

 private:
    static constexpr std::uint64_t smallest = 96, largest = 16384;

    static std::uint64_t padding(const MPEGHeader& header) { return header.Padding ? 1 : 0; }

    std::optional<MPEGHeader> header_;
    char checksum_ = 0;
    std::uint64_t at_ = 0, size_ = 0;
    int count_ = 0;
};

// Whether frames follow one another from `at` on, as many as it takes or to the end.
bool isRow(std::string_view bytes, std::size_t at, const MPEGHeader& first, bool hasEnd) {
    const char checksum = bytes[at + 1];
    MPEGHeader header = first;
    for (int count = 1; count < framesInRow; ++count) {
        at += header.frameSize();
        if (at + headerSize > bytes.size()) return hasEnd && count >= framesToEnd;
        const auto next = headerIn(bytes.substr(at, headerSize));
        if (!next || next->frameSize() == 0) return false;
        if (!isSameKind(*next, first, bytes[at + 1], checksum)) return false;
        header = *next;
    }
    return true;
}

// What may begin a row. Small negative numbers look like layer I, which is only looked for where a
// file begins; no frame begins with its header twice.
std::optional<MPEGHeader> searchedHeader(std::string_view bytes, std::size_t at) {
    const std::string_view word = bytes.substr(at, headerSize);
    const auto header = headerIn(word);
    const bool isFrame =
        header && header->Layer != 1 && !bytes.substr(at + headerSize).starts_with(word);
    return isFrame ? header : std::nullopt;
}

// Whether a row begins in the first `count` of the bytes, which lie at `from`.
bool hasRow(std::string_view bytes, std::size_t count, std::uint64_t from, bool hasEnd,
            FreeFrames& freeFrames) {
    for (std::size_t at = 0; (at = bytes.find('\xFF', at)) < count; ++at) {
        const auto header = searchedHeader(bytes, at);
        if (!header) continue;
        const bool isFree = header->frameSize() == 0;
        if (isFree ? freeFrames.add(from + at, *header, bytes[at + 1])
                   : isRow(bytes, at, *header, hasEnd)) {
            return true;
        }
    }
    return false;
}

bool holdsMpeg(File& file, SoundSpan span) {
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
    std::string_view magic, name;
    bool isOther = true;  // a file that begins so is nothing else, whatever is found in it
};
// The first that fits counts.
constexpr std::array<LookRow, 34> looks{{
    {0, "fLaC", "FLAC"},
    {0, "OggS", "Ogg"},
    {8, "WAVE", "RIFF/WAVE"},
    {0, "RIFF", "RIFF", false},
    {0, "FORM", "IFF"},
    {4, "ftyp", "MP4"},
    {0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11", "ASF"},
    {0, "wvpk", "WavPack", false},
    {0, "MPCK", "Musepack", false},
    {0, "MP+", "Musepack", false},
    {0, "\x1A\x45\xDF\xA3", "Matroska"},
    {0, "\xFF\xD8\xFF", "JPEG"},
    {0, "\x89PNG\r\n", "PNG"},
    {0, "GIF8", "GIF"},
    {0, "II*\0"sv, "TIFF"},
    {0, "MM\0*"sv, "TIFF"},
    {0, "%PDF-", "PDF"},
    {0, "\xD0\xCF\x11\xE0", "OLE"},
    {0, "PK\x03\x04", "ZIP"},
    {0, "Rar!\x1A", "RAR"},
    {0, "7z\xBC\xAF\x27\x1C", "7z"},
    {0, "\x1F\x8B\x08", "gzip"},
    {0, "BZh", "bzip2"},
    {0,
     "\xFD"
     "7zXZ",
     "xz"},
    {0, "\x28\xB5\x2F\xFD", "zstd"},
    {0, "SQLite format 3", "SQLite"},
    {0,
     "\x7F"
     "ELF",
     "ELF"},
    {0, "MZ", "EXE"},
    {0, "!<arch>", "ar"},
    {0, "\0\0\x01\xBA"sv, "MPEG"},
    {0, "8BPS", "PSD"},
    {0, "\xFF\xF1", "AAC", false},
    {0, "\xFF\xF9", "AAC", false},
    {0, "ID3", "ID3v2", false},
}};
constexpr std::size_t lookSpan = 32;

const LookRow* lookOf(std::string_view bytes) {
    const auto* row = std::ranges::find_if(looks, [&](const LookRow& look) {
        return bytes.size() > look.place && bytes.substr(look.place).starts_with(look.magic);
    });
    return row == looks.end() ? nullptr : row;
}

// A WAVE file may carry an MPEG stream, and old WavPack files begin with its header.
bool mayCarry(std::string_view bytes, FileTypes type) {
    constexpr std::size_t codecPlace = 20;
    const std::string_view codec = bytes.substr(std::min(codecPlace, bytes.size()), 2);
    const bool isMpeg = codec == "\x55\0"sv || codec == "\x50\0"sv;
    return bytes.starts_with("RIFF") && (type == FileType::Wv || (type == FileType::Mp3 && isMpeg));
}

// Whether all of it is something else, in which a search would find what looks like sound.
bool isOtherFile(File& file, FileTypes type, SoundSpan span) {
    const std::string_view bytes = textOf(file.view(span.begin, lookSpan));
    const LookRow* const row = lookOf(bytes);
    return row != nullptr && row->isOther && !mayCarry(bytes, type);
}

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
    const auto any = [&](bool (*holds)(File&, SoundSpan, const MarkRow&)) {
        return std::ranges::any_of(
            marks, [&](const MarkRow& row) { return row.type == type && holds(file, span, row); });
    };
    if (type == FileType::Mp3) {
        return beginsWithFrames(file, span) ||
               (!isOtherFile(file, type, span) && holdsMpeg(file, span));
    }
    return any(beginsWith) || (!isOtherFile(file, type, span) && any(holdsMark));
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
    if (const LookRow* const row = lookOf(bytes)) return std::string(row->name);
    if (bytes.starts_with("MAC ")) return std::string(soundName(FileType::Ape)) + " Audio";
    if (bytes.starts_with("#!")) return texts.get(Text::LooksScript);
    if (isPlainText(bytes)) return texts.get(Text::LooksText);
    return beginsWithFrames(file, span) ? "MP3" : std::string();
}

}  // namespace tavlo
