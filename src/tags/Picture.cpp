#include "tags/Picture.h"

#include <algorithm>
#include <array>

#include "core/ByteCursor.h"
#include "core/TextCase.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
struct PictureKind {
    FileTypes type;
    std::string_view ending;  // of a file name, and the format word of ID3v2.2
    std::string_view mime;
};

// The first row of a type is the MIME type that is written for it.
constexpr std::array<PictureKind, 5> pictureKinds{{
    {FileType::Jpeg, "jpg", "image/jpeg"},
    {FileType::Jpeg, "jpeg", "image/jpg"},
    {FileType::Png, "png", "image/png"},
    {FileType::Bmp, "bmp", "image/bmp"},
    {FileType::None, "gif", "image/gif"},
}};

// Of a file name, or of the format word alone.
std::string_view mimeOfEnding(std::string_view name) {
    for (const PictureKind& kind : pictureKinds) {
        const std::size_t size = kind.ending.size();
        if (name.size() >= size && equalsNoCase(name.substr(name.size() - size), kind.ending)) {
            return kind.mime;
        }
    }
    return {};
}

std::optional<std::string> takeMime(ByteCursor& cursor, int majorVersion, const CodePage& ansi) {
    if (majorVersion == 2) {
        const auto format = cursor.take(3);
        const std::string_view mime = format ? mimeOfEnding(textOf(*format)) : std::string_view();
        return mime.empty() ? std::nullopt : std::optional<std::string>(mime);
    }
    constexpr std::string_view wanted = "image/";
    std::string mime = utf8OrAnsi(textOf(cursor.takeUntil(0)), ansi);
    if (!equalsNoCase(std::string_view(mime).substr(0, wanted.size()), wanted)) return std::nullopt;
    return mime;
}
}  // namespace

std::optional<ParsedPicture> parsePictureFrame(Bytes head, std::size_t contentSize,
                                               int majorVersion, const CodePage& ansi) {
    ByteCursor cursor(head);
    const auto encodingByte = cursor.u8();
    if (!encodingByte || *encodingByte > static_cast<std::uint8_t>(TextEncoding::Utf8)) {
        return std::nullopt;
    }
    const auto encoding = static_cast<TextEncoding>(*encodingByte);
    ParsedPicture picture;
    auto mime = takeMime(cursor, majorVersion, ansi);
    const auto type = cursor.u8();
    if (!mime || !type) return std::nullopt;
    picture.art.MIME = std::move(*mime);
    picture.art.PictureType = *type;
    picture.art.Description = decodeText(encoding, takeTerminated(cursor, encoding), ansi);
    picture.dataOffset = head.size() - cursor.left();
    picture.art.Size = contentSize - picture.dataOffset;
    return picture.art.Size == 0 ? std::nullopt : std::optional(std::move(picture));
}

std::optional<ParsedPicture> parsePictureItem(Bytes head, std::size_t contentSize,
                                              const CodePage& ansi) {
    ByteCursor cursor(head);
    ParsedPicture picture;
    const std::string_view name = textOf(cursor.takeUntil(0));
    picture.art.Description = utf8OrAnsi(name, ansi);
    picture.art.MIME = mimeOfEnding(name);
    picture.art.PictureType = frontCover;
    picture.dataOffset = head.size() - cursor.left();
    picture.art.Size = contentSize - picture.dataOffset;
    return picture.art.Size == 0 ? std::nullopt : std::optional(std::move(picture));
}

std::string pictureItemName(const cAlbumArt& art) {
    const auto* kind =
        std::find_if(pictureKinds.begin(), pictureKinds.end(),
                     [&](const PictureKind& row) { return equalsNoCase(row.mime, art.MIME); });
    if (kind == pictureKinds.end()) return art.Description;
    if (pictureType(mimeOfEnding(art.Description)) == kind->type) return art.Description;
    // The first row of a type has the ending that every program knows.
    const auto* usual =
        std::find_if(pictureKinds.begin(), pictureKinds.end(),
                     [&](const PictureKind& row) { return row.type == kind->type; });
    return "Cover Art (front)." + std::string(usual->ending);
}

FileTypes pictureType(std::string_view mime) {
    for (const PictureKind& kind : pictureKinds) {
        if (equalsNoCase(kind.mime, mime)) return kind.type;
    }
    return FileType::None;
}

}  // namespace tavlo
