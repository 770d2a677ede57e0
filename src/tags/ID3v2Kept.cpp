#include "tags/ID3v2Kept.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/ByteCursor.h"
#include "platform/Utf8.h"
#include "tags/ByteWriting.h"
#include "tags/ID3v2Frame.h"
#include "tags/Picture.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
struct Successor {
    std::string_view oldId, id;
};

// ID3v2.2.0, section 4, and what players have added; PIC has a form of its own.
constexpr auto successors = std::to_array<Successor>({
    {"BUF", "RBUF"}, {"CNT", "PCNT"}, {"COM", "COMM"}, {"CRA", "AENC"}, {"EQU", "EQUA"},
    {"ETC", "ETCO"}, {"GEO", "GEOB"}, {"GP1", "GRP1"}, {"IPL", "IPLS"}, {"MCI", "MCDI"},
    {"MLL", "MLLT"}, {"MVI", "MVIN"}, {"MVN", "MVNM"}, {"PCS", "PCST"}, {"POP", "POPM"},
    {"REV", "RVRB"}, {"RVA", "RVAD"}, {"SLT", "SYLT"}, {"STC", "SYTC"}, {"TAL", "TALB"},
    {"TBP", "TBPM"}, {"TCM", "TCOM"}, {"TCO", "TCON"}, {"TCP", "TCMP"}, {"TCR", "TCOP"},
    {"TCT", "TCAT"}, {"TDA", "TDAT"}, {"TDS", "TDES"}, {"TDY", "TDLY"}, {"TEN", "TENC"},
    {"TFT", "TFLT"}, {"TID", "TGID"}, {"TIM", "TIME"}, {"TKE", "TKEY"}, {"TKW", "TKWD"},
    {"TLA", "TLAN"}, {"TLE", "TLEN"}, {"TMT", "TMED"}, {"TOA", "TOPE"}, {"TOF", "TOFN"},
    {"TOL", "TOLY"}, {"TOR", "TORY"}, {"TOT", "TOAL"}, {"TP1", "TPE1"}, {"TP2", "TPE2"},
    {"TP3", "TPE3"}, {"TP4", "TPE4"}, {"TPA", "TPOS"}, {"TPB", "TPUB"}, {"TRC", "TSRC"},
    {"TRD", "TRDA"}, {"TRK", "TRCK"}, {"TS2", "TSO2"}, {"TSA", "TSOA"}, {"TSC", "TSOC"},
    {"TSI", "TSIZ"}, {"TSP", "TSOP"}, {"TSS", "TSSE"}, {"TST", "TSOT"}, {"TT1", "TIT1"},
    {"TT2", "TIT2"}, {"TT3", "TIT3"}, {"TXT", "TEXT"}, {"TXX", "TXXX"}, {"TYE", "TYER"},
    {"UFI", "UFID"}, {"ULT", "USLT"}, {"WAF", "WOAF"}, {"WAR", "WOAR"}, {"WAS", "WOAS"},
    {"WCM", "WCOM"}, {"WCP", "WCOP"}, {"WFD", "WFED"}, {"WPB", "WPUB"}, {"WXX", "WXXX"},
});

struct Frame {
    FrameHeader header;
    std::string body;
};

void appendFrame(std::string& out, const Frame& frame, int majorVersion) {
    FrameHeader header = frame.header;
    header.bodySize = static_cast<std::uint32_t>(frame.body.size());
    appendFrameHeader(out, header, majorVersion);
    out += frame.body;
}

// PIC names the format by three letters where APIC has a MIME type.
std::optional<std::string> pictureBody(Bytes body, const CodePage& ansi) {
    constexpr std::size_t oldHeadSize = 4;
    const auto picture = parsePictureFrame(body, body.size(), 2, ansi);
    if (!picture) return std::nullopt;
    std::string converted(1, static_cast<char>(body[0]));
    converted += picture->art.MIME + '\0';
    converted += textOf(body.subspan(oldHeadSize));
    return converted;
}

std::optional<Frame> fromVersion2(std::string_view oldId, std::string_view body,
                                  const CodePage& ansi) {
    if (oldId == "PIC") {
        auto converted = pictureBody(bytesOfText(body), ansi);
        if (!converted) return std::nullopt;
        return Frame{{"APIC", 0, 0}, std::move(*converted)};
    }
    const std::string_view id = successorOf(oldId);
    if (id.empty()) return std::nullopt;
    return Frame{{std::string(id), 0, 0}, std::string(body)};
}

// The bytes that a frame's flags put in front of its content.
struct Prefix {
    std::optional<std::uint32_t> length;
    std::optional<std::uint8_t> method, group;
};

std::optional<Prefix> takePrefix(ByteCursor& cursor, std::uint16_t flags, int majorVersion) {
    const FrameFlags& bits = frameFlags(majorVersion);
    Prefix prefix;
    const auto has = [&](std::uint16_t bit) { return (flags & bit) != 0; };
    const bool old = majorVersion == 3;
    if (old && has(bits.compressed) && !(prefix.length = cursor.bigEndian(4))) return std::nullopt;
    if (old && has(bits.encrypted) && !(prefix.method = cursor.u8())) return std::nullopt;
    if (has(bits.grouped) && !(prefix.group = cursor.u8())) return std::nullopt;
    if (!old && has(bits.encrypted) && !(prefix.method = cursor.u8())) return std::nullopt;
    if (!old && has(bits.hasLength) && !(prefix.length = cursor.syncsafe())) return std::nullopt;
    return prefix;
}

void appendByte(std::string& out, std::optional<std::uint8_t> byte) {
    if (byte) out += static_cast<char>(*byte);
}

std::optional<Frame> fromVersion3(const FrameHeader& header, std::string_view body) {
    constexpr std::uint32_t longestLength = 1U << 28U;
    const FrameFlags &old = frameFlags(3), &bits = frameFlags(4);
    ByteCursor cursor(bytesOfText(body));
    const auto prefix = takePrefix(cursor, header.flags, 3);
    if (!prefix || prefix->length.value_or(0) >= longestLength) return std::nullopt;
    Frame frame{{header.id, 0, static_cast<std::uint16_t>((header.flags & old.status) >> 1U)}, {}};
    appendByte(frame.body, prefix->group);
    appendByte(frame.body, prefix->method);
    if (prefix->length) appendSyncsafe(frame.body, *prefix->length);
    if (prefix->group) frame.header.flags |= bits.grouped;
    if (prefix->method) frame.header.flags |= bits.encrypted;
    if (prefix->length) frame.header.flags |= bits.compressed | bits.hasLength;
    frame.body += textOf(cursor.rest());
    return frame;
}

// Where a frame's text stands behind its encoding byte, a letter a part: L language, b byte, d
// date, n 8-bit text and NUL, s text and its end, t text to the end, y timed texts, r bytes to the
// end.
struct TextLayout {
    std::string_view id, parts;
};
constexpr auto textLayouts = std::to_array<TextLayout>({
    {"COMM", "Lt"},
    {"USLT", "Lt"},
    {"USER", "Lt"},
    {"WXXX", "sr"},
    {"APIC", "nbsr"},
    {"GEOB", "nssr"},
    {"OWNE", "ndt"},
    {"SYLT", "Lbbsy"},
});

std::string_view textLayout(std::string_view id) {
    if (id[0] == 'T') return "t";
    const auto* row = std::find_if(textLayouts.begin(), textLayouts.end(),
                                   [&](const TextLayout& layout) { return layout.id == id; });
    return row == textLayouts.end() ? std::string_view() : row->parts;
}

// Version 3 knows 8-bit text and UTF-16 with a mark only.
class Recoder {
 public:
    Recoder(TextEncoding encoding, Bytes body, const CodePage& ansi)
        : encoding_(encoding), cursor_(body), ansi_(ansi) {}

    std::string run(std::string_view parts) {
        out_ = static_cast<char>(TextEncoding::Utf16);
        for (const char part : parts) recodePart(part);
        return out_ + std::string(textOf(cursor_.rest()));
    }

 private:
    void recodePart(char part) {
        constexpr std::size_t languageSize = 3, dateSize = 8, stampSize = 4;
        switch (part) {
            case 'L':
                return copy(languageSize);
            case 'b':
                return copy(1);
            case 'd':
                return copy(dateSize);
            case 'n':
                out_ += textOf(cursor_.takeUntil(0));
                out_ += '\0';
                return;
            case 's':
                out_ += recoded(takeTerminated(cursor_, encoding_)) + std::string(2, '\0');
                return;
            case 't':
                out_ += recoded(*cursor_.take(cursor_.left()));
                return;
            case 'y':
                while (cursor_.left() > 0) {
                    recodePart('s');
                    copy(stampSize);
                }
                return;
            default:
                return;
        }
    }

    void copy(std::size_t count) { out_ += textOf(*cursor_.take(std::min(count, cursor_.left()))); }

    [[nodiscard]] std::string recoded(Bytes text) const {
        return utf16Text(decodeText(encoding_, text, ansi_));
    }

    TextEncoding encoding_;
    ByteCursor cursor_;
    const CodePage& ansi_;
    std::string out_;
};

// Bytes that are no UTF-8 stay as they are: a guess would lose them.
std::string contentForVersion3(std::string_view id, Bytes content, const CodePage& ansi) {
    const std::string_view parts = textLayout(id);
    const auto encoding = content.empty() ? TextEncoding::Latin1 : TextEncoding{content[0]};
    const bool isForeign =
        encoding == TextEncoding::Utf16BigEndian ||
        (encoding == TextEncoding::Utf8 && (id[0] != 'T' || isValidUtf8(textOf(content))));
    if (parts.empty() || !isForeign) return std::string(textOf(content));
    return Recoder(encoding, content.subspan(1), ansi).run(parts);
}

std::optional<Frame> fromVersion4(const FrameHeader& header, std::string_view body,
                                  const CodePage& ansi) {
    const FrameFlags &old = frameFlags(4), &bits = frameFlags(3);
    const bool isCompressed = (header.flags & old.compressed) != 0;
    ByteCursor cursor(bytesOfText(body));
    const auto prefix = takePrefix(cursor, header.flags, 4);
    if (!prefix || (isCompressed && !prefix->length)) return std::nullopt;
    Frame frame{{header.id, 0, static_cast<std::uint16_t>((header.flags & old.status) << 1U)}, {}};
    if (isCompressed) appendBigEndian(frame.body, *prefix->length, 4);
    appendByte(frame.body, prefix->method);
    appendByte(frame.body, prefix->group);
    if (isCompressed) frame.header.flags |= bits.compressed;
    if (prefix->method) frame.header.flags |= bits.encrypted;
    if (prefix->group) frame.header.flags |= bits.grouped;
    const Bytes content = cursor.rest();
    std::vector<std::uint8_t> plain(content.begin(), content.end());
    if ((header.flags & old.unsynchronised) != 0) plain = undoUnsynchronisation(content);
    const bool isReadable = !isCompressed && !prefix->method;
    frame.body +=
        isReadable ? contentForVersion3(header.id, plain, ansi) : std::string(textOf(plain));
    return frame;
}

// Chapters (ID3v2 chapter frame addendum) hold frames of their own behind a head; 0 for any other
// frame.
std::size_t nestedFramesAt(const Frame& frame) {
    constexpr std::size_t chapterTimes = 16;
    ByteCursor cursor(bytesOfText(frame.body));
    if (frame.header.id == "CHAP") {
        cursor.takeUntil(0);
        if (!cursor.take(chapterTimes)) return 0;
    } else if (frame.header.id == "CTOC") {
        cursor.takeUntil(0);
        cursor.u8();
        for (int left = cursor.u8().value_or(0); left > 0; --left) cursor.takeUntil(0);
    } else {
        return 0;
    }
    return frame.body.size() - cursor.left();
}

std::string convertOne(const FrameHeader& header, std::string_view body, int from, int to,
                       const CodePage& ansi, bool withNested);

// Frames in their place that cannot be walked through to the end stay as they are.
void convertNested(Frame& frame, int from, int to, const CodePage& ansi) {
    const std::size_t at = nestedFramesAt(frame);
    if (at == 0 || from == 2 || from == to || !isPlainFrame(frame.header, to)) return;
    std::string_view rest = std::string_view(frame.body).substr(at);
    std::string inside;
    while (const auto header = parseFrameHeader(bytesOfText(rest), from)) {
        rest.remove_prefix(frameHeaderSize(from));
        if (header->bodySize > rest.size()) return;
        const std::string_view body = rest.substr(0, header->bodySize);
        inside += convertOne(*header, body, from, to, ansi, false);  // no deeper
        rest.remove_prefix(body.size());
    }
    if (!rest.empty()) return;
    frame.body.resize(at);
    frame.body += inside;
}

std::optional<Frame> converted(const FrameHeader& header, std::string_view body, int from, int to,
                               const CodePage& ansi) {
    if (from == 2) return fromVersion2(header.id, body, ansi);
    if (from == to) return Frame{header, std::string(body)};
    if (from == 4) return fromVersion4(header, body, ansi);
    if (header.id[3] == '\0' || header.id[3] == ' ') {
        return header.flags == 0 ? fromVersion2(header.id.substr(0, 3), body, ansi) : std::nullopt;
    }
    return fromVersion3(header, body);
}

std::string convertOne(const FrameHeader& header, std::string_view body, int from, int to,
                       const CodePage& ansi, bool withNested) {
    std::string out;
    auto frame = converted(header, body, from, to, ansi);
    if (!frame) {
        appendFrameHeader(out, header, from);
        return privateFrame("ID3v2." + std::to_string(from), out.append(body), to);
    }
    if (withNested) convertNested(*frame, from, to, ansi);
    appendFrame(out, *frame, to);
    return out;
}
}  // namespace

std::string convertFrame(const FrameHeader& header, std::string_view body, int from, int to,
                         const CodePage& ansi) {
    return convertOne(header, body, from, to, ansi, true);
}

std::string_view successorOf(std::string_view oldId) {
    const auto* row = std::find_if(successors.begin(), successors.end(),
                                   [&](const Successor& s) { return s.oldId == oldId; });
    return row == successors.end() ? std::string_view() : row->id;
}

std::string privateFrame(std::string_view owner, std::string_view bytes, int majorVersion) {
    Frame frame{{"PRIV", 0, 0}, std::string(owner) + '\0'};
    frame.body += bytes;
    std::string out;
    appendFrame(out, frame, majorVersion);
    return out;
}

}  // namespace tavlo
