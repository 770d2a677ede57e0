#include "tags/ID3v2.h"

#include <algorithm>
#include <array>
#include <bitset>

#include "core/Numbers.h"
#include "core/TextCase.h"
#include "platform/Utf8.h"
#include "tags/ByteCursor.h"
#include "tags/FieldSetters.h"
#include "tags/ID3v2Frame.h"
#include "tags/Picture.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::string_view tagMark = "ID3";
constexpr std::uint8_t unsynchronisation = 0x80, extendedHeader = 0x40;
constexpr std::uint8_t experimental = 0x20, footerPresent = 0x10;
constexpr std::uint32_t largestUnsynchronisedBody = 64U << 20U;
constexpr std::uint32_t largestTextFrame = 1U << 20U;
constexpr std::uint32_t largestPackedFrame = 16U << 20U;
constexpr std::size_t largestUnpackedTotal = 32U << 20U;  // of one tag
constexpr std::uint32_t pictureHeadSize = 1024;  // MIME type and description of a usual picture
constexpr std::size_t yearDigits = 4;

// --- Text frames ---------------------------------------------------------------------------------

using SetText = void (*)(ID3tag&, std::string_view);

struct TextFrame {
    std::string_view id;     // versions 3 and 4
    std::string_view oldId;  // version 2; empty where that version's frame is not interpreted
    SetText set;
};

void setRecordingTime(ID3tag& record, std::string_view text) {
    record.SetYear(utf8Head(text, yearDigits));
    if (text.size() > yearDigits) record.ID3v2Ext.RecordingTime = text;
}

void setYear(ID3tag& record, std::string_view text) {
    if (record.ID3v2Ext.RecordingTime.empty()) record.SetYear(text);
}

void setDiskNumber(ID3tag& record, std::string_view text) {
    const std::size_t slash = text.find('/');
    record.DiskNumber = leadingNumber(text);
    if (slash != std::string_view::npos) record.DisksCount = leadingNumber(text.substr(slash + 1));
}

void setGenre(ID3tag& record, std::string_view text) {
    GenreText genre = parseGenreText(text);
    if (genre.number == noGenre && genre.text.empty()) return;
    record.Genre = genre.number;
    record.ID3v2Ext.Genre = std::move(genre.text);
}

constexpr std::array<TextFrame, 15> textFrames{{
    {"TIT2", "TT2", [](ID3tag& r, std::string_view text) { r.SetTitleMixV2(text); }},
    {"TPE1", "TP1", [](ID3tag& r, std::string_view text) { r.SetArtist(text); }},
    {"TALB", "TAL", [](ID3tag& r, std::string_view text) { r.SetAlbum(text); }},
    {"TRCK", "TRK", setTrack},
    {"TYER", "TYE", setYear},
    {"TDRC", "", setRecordingTime},
    {"TCON", "TCO", setGenre},
    {"TCOM", "TCM", setField<&cID3v2ext::Composer>},
    {"TOPE", "", setField<&cID3v2ext::OriginalArtist>},
    {"TCOP", "", setField<&cID3v2ext::CopyRight>},
    {"TENC", "TEN", setField<&cID3v2ext::EncodedBy>},
    {"TSSE", "", setField<&cID3v2ext::EncoderInfo>},
    {"TCMP", "",
     [](ID3tag& r, std::string_view text) { r.IsPartOfCompilation = leadingNumber(text) != 0; }},
    {"TPOS", "TPA", setDiskNumber},
    {"TBPM", "TBP", [](ID3tag& r, std::string_view text) { r.BPM = leadingNumber(text); }},
}};

const TextFrame* findTextFrame(std::string_view id, int majorVersion) {
    if (id[0] != 'T' || (id == "TDRC" && majorVersion != 4)) return nullptr;
    // Some writers of version 3 fill the names of version 2 up.
    if (majorVersion == 3 && (id[3] == '\0' || id[3] == ' ')) {
        return findTextFrame(id.substr(0, 3), 2);
    }
    const auto* row = std::find_if(textFrames.begin(), textFrames.end(), [&](const TextFrame& f) {
        return (majorVersion == 2 ? f.oldId : f.id) == id;
    });
    return row == textFrames.end() ? nullptr : row;
}

// Version 4 allows several values; before it, whatever follows the first NUL is no text.
std::string usedText(std::string text, int majorVersion) {
    if (majorVersion < 4) text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

std::optional<TextEncoding> takeEncoding(ByteCursor& cursor) {
    const auto byte = cursor.u8();
    if (!byte || *byte > static_cast<std::uint8_t>(TextEncoding::Utf8)) return std::nullopt;
    return static_cast<TextEncoding>(*byte);
}

// --- The walk ------------------------------------------------------------------------------------

class FrameWalk {
 public:
    FrameWalk(File& source, ID3tag& record, const ReadContext& context)
        : source_(source), record_(record), context_(context) {}

    void run(std::uint64_t at, std::uint64_t end) {
        end_ = end;
        at = behindExtendedHeader(at);
        while (const auto header = headerAt(at)) {
            at += headerSize_;
            if (header->bodySize > end_ - at) break;
            if (!interpret(*header, at)) keep(*header, at);
            at += header->bodySize;
        }
        finish();
    }

 private:
    std::uint64_t behindExtendedHeader(std::uint64_t at) {
        if (!record_.ID3v2Ext.bExtendedHeader || version_ < 3) return at;
        ByteCursor cursor(source_.view(at, 4));
        if (version_ == 4) return at + cursor.syncsafe().value_or(0);
        // Some writers set the flag and go on with a frame.
        if (beginsFrame(at)) return at;
        return at + 4 + cursor.bigEndian(4).value_or(0);
    }

    std::optional<FrameHeader> headerAt(std::uint64_t at) {
        if (at >= end_ || end_ - at < headerSize_) return std::nullopt;
        auto header = parseFrameHeader(source_.view(at, headerSize_), version_);
        if (header && version_ == 4) correctSize(*header, at);
        return header;
    }

    // Some writers of version 4 keep the plain sizes of version 3. The size is syncsafe unless
    // only the plain one leads to another frame, to padding or to the end.
    void correctSize(FrameHeader& header, std::uint64_t at) {
        ByteCursor cursor(source_.view(at + 4, 4));
        const std::uint32_t plain = cursor.bigEndian(4).value_or(0);
        if (plain < 0x80 || plain == header.bodySize) return;
        const std::uint64_t body = at + headerSize_;
        if (!leadsOn(body + header.bodySize) && leadsOn(body + plain)) header.bodySize = plain;
    }

    bool leadsOn(std::uint64_t at) {
        if (at == end_) return true;
        if (at > end_) return false;
        const Bytes next = source_.view(at, headerSize_);
        return (!next.empty() && next[0] == 0) || beginsFrame(at);
    }

    bool beginsFrame(std::uint64_t at) {
        const auto header = parseFrameHeader(source_.view(at, headerSize_), version_);
        return header && hasRegularId(*header);
    }

    bool interpret(const FrameHeader& header, std::uint64_t at) {
        const bool old = version_ == 2;
        if (header.id == (old ? "PIC" : "APIC")) return interpretPicture(header, at);
        const TextFrame* textFrame = findTextFrame(header.id, version_);
        const bool isComment = header.id == (old ? "COM" : "COMM");
        const bool isUrl = !old && header.id == "WXXX";
        if (textFrame == nullptr && !isComment && !isUrl) return false;
        if (header.bodySize > largestTextFrame) return false;
        const auto body = bodyOf(header, at, header.bodySize);
        if (!body) return false;
        ByteCursor cursor(*body);
        const auto encoding = takeEncoding(cursor);
        if (!encoding) return false;
        if (isComment) return readComment(cursor, *encoding);
        if (isUrl) return readUrl(cursor, *encoding);
        return readText(*textFrame, cursor, *encoding);
    }

    // The first `most` bytes of the frame's content. The bytes hold until the next call.
    std::optional<Bytes> bodyOf(const FrameHeader& header, std::uint64_t at, std::size_t most) {
        if (isPlainFrame(header, version_)) {
            const Bytes body = source_.view(at, most);
            return body.size() == most ? std::optional(body) : std::nullopt;
        }
        if (header.bodySize > largestPackedFrame || unpacked_ > largestUnpackedTotal) {
            return std::nullopt;
        }
        auto content = decodeFrameBody(header, version_, source_.view(at, header.bodySize));
        if (!content) return std::nullopt;
        decoded_ = std::move(*content);
        unpacked_ += decoded_.size();
        return Bytes(decoded_);
    }

    std::string takeText(ByteCursor& cursor, TextEncoding encoding) const {
        return usedText(decodeText(encoding, *cursor.take(cursor.left()), context_.ansi), version_);
    }

    bool readText(const TextFrame& frame, ByteCursor& cursor, TextEncoding encoding) {
        const auto row = static_cast<std::size_t>(&frame - textFrames.data());
        if (seen_[row]) return false;
        std::string value = takeText(cursor, encoding);
        if (frame.set != setGenre) value = joinValues(std::move(value));  // a genre joins its own
        const std::string_view trimmed = trimBlanks(value);
        if (trimmed.empty()) return true;
        seen_.set(row);
        frame.set(record_, trimmed);
        return true;
    }

    bool readComment(ByteCursor& cursor, TextEncoding encoding) {
        constexpr std::size_t languageSize = 3;
        if (hasComment_ || !cursor.take(languageSize)) return false;
        const Bytes description = takeTerminated(cursor, encoding);
        if (!decodeText(encoding, description, context_.ansi).empty()) return false;
        const std::string value = joinValues(takeText(cursor, encoding));
        if (trimBlanks(value).empty()) return true;
        hasComment_ = true;
        record_.SetComment(value);
        return true;
    }

    bool readUrl(ByteCursor& cursor, TextEncoding encoding) {
        if (!record_.ID3v2Ext.URL.empty()) return false;
        takeTerminated(cursor, encoding);
        const std::string url = context_.ansi.toUtf8(textOf(cursor.takeUntil(0)));
        record_.ID3v2Ext.URL = trimBlanks(url);
        return true;
    }

    // The front cover wins, else the first picture; every other one is kept as it is.
    bool interpretPicture(const FrameHeader& header, std::uint64_t at) {
        const bool full = context_.depth == ReadDepth::Full;
        std::optional<Bytes> body;
        std::optional<ParsedPicture> picture;
        for (const std::size_t most : {full ? header.bodySize : pictureHeadSize, header.bodySize}) {
            body = bodyOf(header, at, std::min<std::size_t>(most, header.bodySize));
            if (!body) return false;
            const std::size_t size =
                isPlainFrame(header, version_) ? header.bodySize : body->size();
            picture = parsePictureFrame(*body, size, version_, context_.ansi);
            // A head in which the description does not end says nothing yet.
            if (body->size() == size || (picture && picture->dataOffset < body->size())) break;
        }
        if (!picture) return false;
        const bool better = !hasPicture_ || (picture->art.PictureType == frontCover &&
                                             record_.AlbumArt.PictureType != frontCover);
        if (better && full) {
            const auto data = body->subspan(picture->dataOffset);
            picture->art.Data.assign(data.begin(), data.end());
        }
        keep(header, at);  // from here on the body's bytes are gone
        if (!better) return true;
        hasPicture_ = true;
        chosenPicture_ = kept_.size();
        record_.AlbumArtType = pictureType(picture->art.MIME);
        record_.AlbumArt = std::move(picture->art);
        return true;
    }

    void keep(const FrameHeader& header, std::uint64_t at) {
        if (context_.depth != ReadDepth::Full) return;
        kept_.emplace_back(textOf(source_.view(at - headerSize_, headerSize_ + header.bodySize)));
    }

    void finish() {
        for (std::size_t i = 0; i < kept_.size(); ++i) {
            if (i + 1 != chosenPicture_) record_.ID3v2Ext.UnknownFrames += kept_[i];
        }
    }

    File& source_;
    ID3tag& record_;
    const ReadContext& context_;
    const int version_ = record_.ID3v2Ext.MajorVersion;
    const std::size_t headerSize_ = frameHeaderSize(version_);
    std::uint64_t end_ = 0;
    std::vector<std::uint8_t> decoded_;
    std::size_t unpacked_ = 0;
    std::bitset<textFrames.size()> seen_;
    bool hasComment_ = false, hasPicture_ = false;
    std::vector<std::string> kept_;  // raw frames in file order
    std::size_t chosenPicture_ = 0;  // 1-based place in kept_; 0 = none
};

void setHeader(cID3v2ext& ext, const TagHeader& header) {
    ext.MajorVersion = header.majorVersion;
    ext.MinorVersion = header.minorVersion;
    ext.bUnsynchronisation = (header.flags & unsynchronisation) != 0;
    ext.bExtendedHeader = (header.flags & extendedHeader) != 0;
    ext.bExperimentalIndicator = (header.flags & experimental) != 0;
    ext.bFooterPresent = (header.flags & footerPresent) != 0;
    ext.TagSize = header.bodySize;
}

// Version 2 has the extended header's flag for a compression that was never defined.
bool isReadable(const cID3v2ext& ext) {
    return ext.MajorVersion == 3 || ext.MajorVersion == 4 ||
           (ext.MajorVersion == 2 && !ext.bExtendedHeader);
}

struct GenreReference {
    std::uint8_t number;
    std::string_view name;
};

// Takes "(17)", "(RX)" or "(CR)" off the front.
std::optional<GenreReference> takeReference(std::string_view& text) {
    const std::size_t end = text.find(')');
    if (!text.starts_with('(') || end == std::string_view::npos) return std::nullopt;
    const std::string_view inner = text.substr(1, end - 1);
    const std::string_view whole = text.substr(0, end + 1);
    const auto number = parseInteger(inner);
    const bool known = number && *number >= 0 && *number <= noGenre;
    if (!known && inner != "RX" && inner != "CR") return std::nullopt;
    text.remove_prefix(whole.size());
    if (!known) return GenreReference{noGenre, inner == "RX" ? "Remix" : "Cover"};
    return GenreReference{static_cast<std::uint8_t>(*number), genreName(*number)};
}

void appendValue(std::string& list, std::string_view value) {
    if (value.empty()) return;
    if (!list.empty()) list += "; ";
    list += value;
}

// A text behind a single reference refines it and stands for it.
GenreText parseOneGenre(std::string_view text) {
    text = trimBlanks(text);
    std::string_view rest = text;
    if (const auto bare = parseInteger(text); bare && *bare >= 0 && *bare <= noGenre) {
        return {static_cast<std::uint8_t>(*bare), std::string(genreName(*bare))};
    }
    const auto first = takeReference(rest);
    if (!first) return {genreNumber(text), std::string(text)};
    GenreText genre{first->number, std::string(first->name)};
    std::string_view last = first->name;
    while (const auto next = takeReference(rest)) {
        appendValue(genre.text, next->name);
        last = next->name;
    }
    rest = trimBlanks(rest);
    if (rest.empty() || equalsNoCase(rest, last)) return genre;
    if (last.data() == first->name.data()) genre.text.clear();
    appendValue(genre.text, rest);
    return genre;
}
}  // namespace

GenreText parseGenreText(std::string_view text) {
    GenreText all;
    for (bool first = true; !text.empty(); first = false) {
        const std::size_t end = std::min(text.find('\0'), text.size());
        const GenreText one = parseOneGenre(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (first) all.number = one.number;
        appendValue(all.text, one.text);
    }
    return all;
}

bool ReadID3v2Tag(File& file, ID3tag& record, const ReadContext& context) {
    if (textOf(file.view(0, tagMark.size())) != tagMark) return false;
    record.IsID3v2Present = true;
    const auto header = parseTagHeader(file.view(0, TagHeader::size));
    if (!header) return true;
    setHeader(record.ID3v2Ext, *header);
    if (!isReadable(record.ID3v2Ext)) return true;
    const std::uint64_t end =
        std::min<std::uint64_t>(TagHeader::size + header->bodySize, file.size());
    // Version 4 marks every unsynchronised frame by itself; before it the body is one piece.
    if (record.ID3v2Ext.bUnsynchronisation && header->majorVersion < 4) {
        if (header->bodySize > largestUnsynchronisedBody) return true;
        const auto body = undoUnsynchronisation(
            file.view(TagHeader::size, static_cast<std::size_t>(end) - TagHeader::size));
        File plain;
        plain.openMemory(body);
        FrameWalk(plain, record, context).run(0, body.size());
    } else {
        FrameWalk(file, record, context).run(TagHeader::size, end);
    }
    return true;
}

}  // namespace tavlo
