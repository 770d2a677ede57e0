#include "desk/PictureHead.h"

#include <algorithm>
#include <array>

#include "core/ByteCursor.h"

namespace tavlo {

namespace {
struct Size {
    std::uint32_t width = 0, height = 0;
};

using ReadSize = std::optional<Size> (*)(ByteCursor);

// The header is the first chunk (PNG, 11.2.2).
std::optional<Size> pngSize(ByteCursor cursor) {
    constexpr std::size_t beforeChunk = 12;
    if (!cursor.take(beforeChunk) || !cursor.takeIf("IHDR")) return std::nullopt;
    const auto width = cursor.bigEndian(4);
    const auto height = cursor.bigEndian(4);
    return height ? std::optional(Size{*width, *height}) : std::nullopt;
}

std::optional<Size> gifSize(ByteCursor cursor) {
    constexpr std::size_t markSize = 6;
    cursor.take(markSize);
    const auto width = cursor.littleEndian(2);
    const auto height = cursor.littleEndian(2);
    return height ? std::optional(Size{*width, *height}) : std::nullopt;
}

// A height below zero says that the rows begin at the top.
std::optional<Size> bmpSize(ByteCursor cursor) {
    constexpr std::size_t fileHeader = 14;
    constexpr std::uint32_t oldHeader = 12;
    constexpr std::uint32_t signBit = 0x80000000;
    cursor.take(fileHeader);
    const auto header = cursor.littleEndian(4);
    const std::size_t width = header == oldHeader ? 2 : 4;
    const auto across = cursor.littleEndian(width);
    const auto down = cursor.littleEndian(width);
    if (!down) return std::nullopt;
    return Size{*across, (*down & signBit) != 0 ? 0 - *down : *down};
}

// Whether a marker begins a frame, which has the size (ITU-T T.81, table B.1).
bool beginsFrame(std::uint8_t marker) {
    constexpr std::uint8_t first = 0xC0;
    constexpr std::uint8_t last = 0xCF;
    constexpr std::array<std::uint8_t, 3> others{0xC4, 0xC8, 0xCC};
    return marker >= first && marker <= last &&
           std::find(others.begin(), others.end(), marker) == others.end();
}

std::optional<Size> jpegSize(ByteCursor cursor) {
    constexpr std::uint8_t fill = 0xFF;
    constexpr std::uint32_t lengthSize = 2;
    cursor.take(2);
    while (cursor.u8() == fill) {
        auto marker = cursor.u8();
        while (marker == fill) marker = cursor.u8();
        const auto length = cursor.bigEndian(lengthSize);
        if (!marker || !length || *length < lengthSize) return std::nullopt;
        if (beginsFrame(*marker)) {
            cursor.u8();  // bits of a sample
            const auto height = cursor.bigEndian(2);
            const auto width = cursor.bigEndian(2);
            return width ? std::optional(Size{*width, *height}) : std::nullopt;
        }
        if (!cursor.take(*length - lengthSize)) return std::nullopt;
    }
    return std::nullopt;
}

struct Format {
    std::string_view mark, name, ending;
    ReadSize size;
};
constexpr std::array<Format, 4> formats{{{"\x89PNG\r\n\x1A\n", "PNG", "png", pngSize},
                                         {"\xFF\xD8\xFF", "JPEG", "jpg", jpegSize},
                                         {"GIF8", "GIF", "gif", gifSize},
                                         {"BM", "BMP", "bmp", bmpSize}}};
}  // namespace

std::optional<PictureHead> readPictureHead(Bytes bytes) {
    const auto* format = std::find_if(formats.begin(), formats.end(), [&](const Format& row) {
        return textOf(bytes).starts_with(row.mark);
    });
    if (format == formats.end()) return std::nullopt;
    const auto size = format->size(ByteCursor(bytes));
    if (!size) return std::nullopt;
    return PictureHead{format->name, format->ending, size->width, size->height};
}

}  // namespace tavlo
