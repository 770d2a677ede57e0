#include "tags/ID3v2Frame.h"

#include <algorithm>

#include "core/ByteCursor.h"
#include "tags/ByteWriting.h"
#include "tags/Inflate.h"

namespace tavlo {

namespace {
constexpr FrameFlags version3Flags{0x20, 0x80, 0x40, 0, 0, 0xE000};
constexpr FrameFlags version4Flags{0x40, 0x08, 0x04, 0x02, 0x01, 0x7000};

bool isIdCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// Takes the prefix off that the flags announce and returns the length of the plain content.
std::optional<std::uint32_t> takePrefix(ByteCursor& cursor, const FrameHeader& header,
                                        int majorVersion) {
    const FrameFlags& flags = frameFlags(majorVersion);
    std::optional<std::uint32_t> length;
    if (majorVersion == 3 && (header.flags & flags.compressed) != 0) length = cursor.bigEndian(4);
    if ((header.flags & flags.grouped) != 0) cursor.u8();
    if ((header.flags & flags.hasLength) != 0) length = cursor.syncsafe();
    return length;
}
}  // namespace

std::optional<TagHeader> parseTagHeader(Bytes bytes) {
    ByteCursor cursor(bytes);
    if (bytes.size() < TagHeader::size || !cursor.takeIf("ID3")) return std::nullopt;
    TagHeader header;
    header.majorVersion = *cursor.u8();
    header.minorVersion = *cursor.u8();
    header.flags = *cursor.u8();
    header.bodySize = *cursor.syncsafe();
    return header;
}

std::size_t frameHeaderSize(int majorVersion) {
    return majorVersion == 2 ? 6 : 10;
}

std::optional<FrameHeader> parseFrameHeader(Bytes bytes, int majorVersion) {
    ByteCursor cursor(bytes);
    if (bytes.size() < frameHeaderSize(majorVersion)) return std::nullopt;
    const std::size_t idSize = majorVersion == 2 ? 3 : 4;
    FrameHeader header;
    header.id = textOf(*cursor.take(idSize));
    if (header.id[0] == '\0') return std::nullopt;
    header.bodySize = majorVersion == 4 ? *cursor.syncsafe() : *cursor.bigEndian(idSize);
    if (majorVersion != 2) header.flags = static_cast<std::uint16_t>(*cursor.bigEndian(2));
    return header;
}

void appendFrameHeader(std::string& out, const FrameHeader& header, int majorVersion) {
    out += header.id;
    if (majorVersion == 4) {
        appendSyncsafe(out, header.bodySize);
    } else {
        appendBigEndian(out, header.bodySize, majorVersion == 2 ? 3 : 4);
    }
    if (majorVersion != 2) appendBigEndian(out, header.flags, 2);
}

bool hasRegularId(const FrameHeader& header) {
    return std::all_of(header.id.begin(), header.id.end(), isIdCharacter);
}

const FrameFlags& frameFlags(int majorVersion) {
    return majorVersion == 4 ? version4Flags : version3Flags;
}

bool isPlainFrame(const FrameHeader& header, int majorVersion) {
    const FrameFlags& flags = frameFlags(majorVersion);
    return (header.flags & (flags.grouped | flags.compressed | flags.encrypted |
                            flags.unsynchronised | flags.hasLength)) == 0;
}

std::optional<std::vector<std::uint8_t>> decodeFrameBody(const FrameHeader& header,
                                                         int majorVersion, Bytes body) {
    const FrameFlags& flags = frameFlags(majorVersion);
    if ((header.flags & flags.encrypted) != 0) return std::nullopt;
    ByteCursor cursor(body);
    const auto length = takePrefix(cursor, header, majorVersion);
    std::vector<std::uint8_t> content =
        (header.flags & flags.unsynchronised) != 0
            ? undoUnsynchronisation(cursor.rest())
            : std::vector<std::uint8_t>(cursor.rest().begin(), cursor.rest().end());
    if ((header.flags & flags.compressed) == 0) return content;
    return length ? inflateBytes(content, *length) : std::nullopt;
}

std::vector<std::uint8_t> undoUnsynchronisation(Bytes bytes) {
    std::vector<std::uint8_t> plain;
    plain.reserve(bytes.size());
    std::uint8_t before = 0;
    for (const std::uint8_t byte : bytes) {
        if (before != 0xFF || byte != 0) plain.push_back(byte);
        before = byte;
    }
    return plain;
}

}  // namespace tavlo
