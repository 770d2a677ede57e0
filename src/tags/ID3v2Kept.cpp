#include "tags/ID3v2Kept.h"

#include <algorithm>
#include <array>
#include <optional>

#include "tags/ByteCursor.h"
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

std::string_view successorOf(std::string_view oldId) {
    const auto* row = std::find_if(successors.begin(), successors.end(),
                                   [&](const Successor& s) { return s.oldId == oldId; });
    return row == successors.end() ? std::string_view() : row->id;
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

// Version 3 knows 8-bit text and UTF-16 with a mark only.
void recodeText(Frame& frame, const CodePage& ansi) {
    const bool isComment = frame.header.id == "COMM" || frame.header.id == "USLT";
    const std::size_t skipped = isComment ? 4 : 1;
    if ((!isComment && frame.header.id[0] != 'T') || frame.body.size() < skipped) return;
    const auto encoding = static_cast<TextEncoding>(frame.body[0]);
    if (encoding != TextEncoding::Utf16BigEndian && encoding != TextEncoding::Utf8) return;
    const Bytes text = bytesOfText(frame.body).subspan(skipped);
    const std::string decoded = decodeText(encoding, text, ansi);
    if (encoding == TextEncoding::Utf8 && decoded != textOf(text)) return;
    frame.body.resize(skipped);
    frame.body[0] = static_cast<char>(TextEncoding::Utf16);
    frame.body += utf16Text(decoded);
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
    if ((header.flags & old.unsynchronised) != 0) {
        const auto plain = undoUnsynchronisation(cursor.rest());
        frame.body += textOf(plain);
    } else {
        frame.body += textOf(cursor.rest());
    }
    if (frame.body.size() > 0 && isPlainFrame(frame.header, 3)) recodeText(frame, ansi);
    return frame;
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
}  // namespace

std::string convertFrames(std::string_view frames, int from, int to, const CodePage& ansi) {
    if (from == to) return std::string(frames);
    std::string out;
    const std::size_t headerSize = frameHeaderSize(from);
    while (const auto header = parseFrameHeader(bytesOfText(frames), from)) {
        const std::size_t size = std::min(headerSize + header->bodySize, frames.size());
        const std::string_view whole = frames.substr(0, size);
        frames.remove_prefix(size);
        if (const auto frame = converted(*header, whole.substr(headerSize), from, to, ansi)) {
            appendFrame(out, *frame, to);
        } else {
            out += privateFrame("ID3v2." + std::to_string(from), whole, to);
        }
    }
    return out;
}

std::string privateFrame(std::string_view owner, std::string_view bytes, int majorVersion) {
    Frame frame{{"PRIV", 0, 0}, std::string(owner) + '\0'};
    frame.body += bytes;
    std::string out;
    appendFrame(out, frame, majorVersion);
    return out;
}

}  // namespace tavlo
