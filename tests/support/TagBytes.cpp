#include "support/TagBytes.h"

#include <zlib.h>

#include <algorithm>

namespace tavlo::test {

Bytes bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string littleEndian(std::uint64_t value, std::size_t width) {
    std::string bytes;
    for (; bytes.size() < width; value >>= 8U) bytes += static_cast<char>(value & 0xFFU);
    return bytes;
}

std::string bigEndian(std::uint64_t value, std::size_t width) {
    std::string bytes = littleEndian(value, width);
    std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

std::string syncsafe(std::uint32_t value) {
    std::string bytes;
    for (int shift = 21; shift >= 0; shift -= 7) {
        bytes += static_cast<char>(value >> static_cast<unsigned>(shift) & 0x7FU);
    }
    return bytes;
}

std::string utf16le(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) bytes += littleEndian(unit, 2);
    return bytes;
}

std::string utf16be(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) bytes += bigEndian(unit, 2);
    return bytes;
}

std::string Id3v1::block(char filler) const {
    std::string bytes = "TAG";
    const auto add = [&](std::string text, std::size_t width) {
        text.resize(width, filler);
        bytes += text;
    };
    add(title, 30);
    add(artist, 30);
    add(album, 30);
    add(year, 4);
    add(comment, 28);
    bytes += static_cast<char>(zero);
    bytes += static_cast<char>(track);
    bytes += static_cast<char>(genre);
    return bytes;
}

std::string frame(int version, std::string_view id, std::string_view body, std::uint16_t flags) {
    const auto size = static_cast<std::uint32_t>(body.size());
    std::string bytes(id);
    if (version == 2) return bytes + bigEndian(size, 3) + std::string(body);
    bytes += version == 4 ? syncsafe(size) : bigEndian(size, 4);
    return bytes + bigEndian(flags, 2) + std::string(body);
}

std::string textFrame(int version, std::string_view id, std::string_view text, int encoding) {
    return frame(version, id, static_cast<char>(encoding) + std::string(text));
}

std::string tag(int version, std::string_view body, std::uint8_t flags) {
    return "ID3" + bigEndian(static_cast<std::uint64_t>(version), 1) + '\0' + bigEndian(flags, 1) +
           syncsafe(static_cast<std::uint32_t>(body.size())) + std::string(body);
}

std::string tagFooter(std::string_view body, std::uint8_t flags) {
    return "3DI\x04"s + '\0' + bigEndian(flags, 1) +
           syncsafe(static_cast<std::uint32_t>(body.size()));
}

std::string unsynchronised(std::string_view bytes) {
    std::string out;
    for (const char c : bytes) {
        out += c;
        if (c == '\xFF') out += '\0';
    }
    return out;
}

std::string zlibPacked(std::string_view bytes) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, bytesOf(bytes).data(),
             static_cast<uLong>(bytes.size()));
    packed.resize(size);
    return packed;
}

std::string apeItem(std::string_view key, std::string_view value, std::uint32_t flags) {
    return littleEndian(value.size(), 4) + littleEndian(flags, 4) + std::string(key) + '\0' +
           std::string(value);
}

std::string ApeTag::bytes() const {
    std::string body;
    for (const std::string& item : items) body += item;
    const std::string numbers =
        littleEndian(version, 4) +
        littleEndian(body.size() + 32 + static_cast<std::size_t>(sizeLie), 4) +
        littleEndian(items.size() + static_cast<std::size_t>(countLie), 4);
    const std::string reserved(8, '\0');
    const std::uint32_t hasHeader = header ? 0x80000000U : 0;
    const std::string start =
        header ? headerMark + numbers + littleEndian(0xA0000000U, 4) + reserved : "";
    return start + body + "APETAGEX" + numbers + littleEndian(hasHeader, 4) + reserved;
}

std::string lyricsField(std::string_view id, std::string_view text) {
    std::string size = std::to_string(text.size());
    size.insert(0, 5 - size.size(), '0');
    return std::string(id) + size + std::string(text);
}

std::string lyrics3(std::string_view fields) {
    const std::string block = "LYRICSBEGIN" + std::string(fields);
    std::string size = std::to_string(block.size());
    size.insert(0, 6 - size.size(), '0');
    return block + size + "LYRICS200";
}

std::string mpegFrames(std::size_t count, std::string_view header, std::size_t size) {
    std::string one(header);
    one.resize(size, '\0');
    std::string bytes;
    for (; count > 0; --count) bytes += one;
    return bytes;
}

std::string cdFrames(std::size_t count) {
    return mpegFrames(count, cdHeader, cdFrameSize);
}

std::string XingFrame::frame() const {
    std::string data = cdHeader + std::string(32, '\0') + marker + bigEndian(flags, 4);
    if ((flags & 1U) != 0) data += bigEndian(frames, 4);
    if ((flags & 2U) != 0) data += bigEndian(bytes, 4);
    data.resize(4 + 32 + 120, '\0');
    data += encoder;
    data.resize(cdFrameSize, '\0');
    return data;
}

}  // namespace tavlo::test
