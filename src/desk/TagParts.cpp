#include "desk/TagParts.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "core/ByteCursor.h"
#include "core/Numbers.h"
#include "desk/PictureHead.h"
#include "platform/PlainText.h"
#include "platform/Utf8.h"
#include "tags/APEv2Items.h"
#include "tags/ID3v2.h"
#include "tags/ID3v2Frame.h"
#include "tags/Picture.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::size_t longestShown = 500;            // bytes of a part's text
constexpr std::size_t largestText = 1U << 20U;       // bytes of a part that may be text
constexpr std::uint32_t largestPacked = 16U << 20U;  // bytes of a compressed frame
constexpr std::size_t largestUnpacked = 32U << 20U;  // of all of them

std::string oneLine(std::string text) {
    while (text.ends_with('\0')) text.pop_back();
    text = joinValues(std::move(text));
    for (const char space : {'\r', '\n', '\t'}) std::replace(text.begin(), text.end(), space, ' ');
    text = withoutControls(std::move(text));
    if (text.size() <= longestShown) return text;
    return std::string(utf8Head(text, longestShown)) + "…";
}

std::string withHead(const std::string& head, const std::string& text) {
    if (head.empty()) return text;
    return text.empty() ? head : head + ": " + text;
}

// --- ID3v2 ---------------------------------------------------------------------------------------

std::optional<TextEncoding> takeEncoding(ByteCursor& cursor) {
    const auto byte = cursor.u8();
    if (!byte || *byte > static_cast<std::uint8_t>(TextEncoding::Utf8)) return std::nullopt;
    return static_cast<TextEncoding>(*byte);
}

std::string plainText(Bytes body, const CodePage& ansi) {
    ByteCursor cursor(body);
    const auto encoding = takeEncoding(cursor);
    return encoding ? decodeText(*encoding, cursor.rest(), ansi) : std::string();
}

std::string describedText(Bytes body, const CodePage& ansi) {
    ByteCursor cursor(body);
    const auto encoding = takeEncoding(cursor);
    if (!encoding) return {};
    const std::string head = decodeText(*encoding, takeTerminated(cursor, *encoding), ansi);
    return withHead(head, decodeText(*encoding, cursor.rest(), ansi));
}

std::string languageText(Bytes body, const CodePage& ansi) {
    constexpr std::size_t languageSize = 3;
    ByteCursor cursor(body);
    const auto encoding = takeEncoding(cursor);
    const auto language = cursor.take(languageSize);
    if (!encoding || !language) return {};
    std::string head = withoutControls(ansi.toUtf8(textOf(*language)));
    const std::string description = decodeText(*encoding, takeTerminated(cursor, *encoding), ansi);
    if (!description.empty()) head += ", " + description;
    return withHead(head, decodeText(*encoding, cursor.rest(), ansi));
}

std::string linkText(Bytes body, const CodePage& ansi) {
    return ansi.toUtf8(textOf(ByteCursor(body).takeUntil(0)));
}

std::string describedLink(Bytes body, const CodePage& ansi) {
    ByteCursor cursor(body);
    const auto encoding = takeEncoding(cursor);
    if (!encoding) return {};
    const std::string head = decodeText(*encoding, takeTerminated(cursor, *encoding), ansi);
    return withHead(head, linkText(cursor.rest(), ansi));
}

// At most the lowest 8 bytes count.
std::string counterText(Bytes body, const CodePage&) {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : body) number = number << 8U | byte;
    return body.empty() ? std::string() : std::to_string(number);
}

// Whose it is, the rating, and how often it was played.
std::string ratingText(Bytes body, const CodePage& ansi) {
    ByteCursor cursor(body);
    std::string owner = ansi.toUtf8(textOf(cursor.takeUntil(0)));
    const auto rating = cursor.u8();
    if (!rating) return owner;
    const std::string count = counterText(cursor.rest(), ansi);
    return withHead(owner, std::to_string(*rating) + (count.empty() ? "" : ", " + count));
}

struct FrameForm {
    std::string_view id, oldId;
    std::string (*text)(Bytes, const CodePage&);
};
constexpr std::array<FrameForm, 9> frameForms{{{"TXXX", "TXX", describedText},
                                               {"WXXX", "WXX", describedLink},
                                               {"COMM", "COM", languageText},
                                               {"USLT", "ULT", languageText},
                                               {"USER", "", languageText},
                                               {"UFID", "UFI", linkText},
                                               {"PRIV", "", linkText},
                                               {"PCNT", "CNT", counterText},
                                               {"POPM", "POP", ratingText}}};

std::string frameText(const std::string& id, Bytes body, const CodePage& ansi) {
    const auto* form = std::find_if(frameForms.begin(), frameForms.end(), [&](const FrameForm& f) {
        return f.id == id || f.oldId == id;
    });
    if (form != frameForms.end()) return form->text(body, ansi);
    if (id.starts_with('T')) return plainText(body, ansi);
    return id.starts_with('W') ? linkText(body, ansi) : std::string();
}

// The content of a frame; nothing where it is encrypted, broken or too large to be unpacked.
std::optional<std::vector<std::uint8_t>> contentOf(const FrameHeader& header, int version,
                                                   Bytes body) {
    if (isPlainFrame(header, version)) return std::vector(body.begin(), body.end());
    if (header.bodySize > largestPacked) return std::nullopt;
    return decodeFrameBody(header, version, body);
}

cAlbumArt withBytes(const ParsedPicture& picture, Bytes content) {
    cAlbumArt art = picture.art;
    const Bytes data = content.subspan(std::min(picture.dataOffset, content.size()));
    art.Data.assign(data.begin(), data.end());
    return art;
}

// Gathers the parts of one file.
class Gathering {
 public:
    Gathering(File& file, const CodePage& ansi) : file_(file), ansi_(ansi) {}

    void add(const TagLayer& layer) {
        switch (layer.kind) {
            case TagKind::ID3v2:
                return addFrames(layer.record.ID3v2Ext.MajorVersion);
            case TagKind::APEv2:
                return addItems(layer);
            case TagKind::Lyrics3:
                return addLyrics(layer.span);
            case TagKind::ID3v1:
                return;
        }
    }

    TagParts found;

 private:
    void addFrames(int version) {
        ListID3v2Frames(file_, ansi_, [&](const FrameHeader& header, Bytes body) {
            addFrame(header, version, body);
        });
    }

    void addFrame(const FrameHeader& header, int version, Bytes body) {
        // Some writers of version 3 fill the names of version 2 up.
        std::string id = header.id;
        while (id.ends_with('\0') || id.ends_with(' ')) id.pop_back();
        TagPart part{TagKind::ID3v2, withoutControls(ansi_.toUtf8(id)), header.bodySize, {}};
        const bool isPicture = id == "APIC" || id == "PIC";
        if (isPicture || body.size() <= largestText) {
            const auto content = unpacked(header, version, body);
            if (content && isPicture) {
                const int form = id == "PIC" ? 2 : version;
                const auto picture = parsePictureFrame(*content, content->size(), form, ansi_);
                if (picture) part.text = addPicture(part.tag, *picture, *content);
            } else if (content) {
                const Bytes text(*content);
                part.text =
                    oneLine(frameText(id, text.first(std::min(text.size(), largestText)), ansi_));
            }
        }
        found.parts.push_back(std::move(part));
    }

    // What frames may come to when they are unpacked is bounded for the whole tag.
    std::optional<std::vector<std::uint8_t>> unpacked(const FrameHeader& header, int version,
                                                      Bytes body) {
        const bool isPacked = !isPlainFrame(header, version);
        if (isPacked && unpacked_ > largestUnpacked) return std::nullopt;
        auto content = contentOf(header, version, body);
        if (content && isPacked) unpacked_ += content->size();
        return content;
    }

    std::string addPicture(TagKind tag, const ParsedPicture& picture, Bytes content) {
        cAlbumArt art = withBytes(picture, content);
        std::string text = withHead(art.Description, describePicture(art));
        found.pictures.push_back({tag, std::move(art)});
        return oneLine(std::move(text));
    }

    void addItems(const TagLayer& layer) {
        const auto size = static_cast<std::size_t>(layer.span.end - layer.span.begin);
        const Bytes whole = file_.view(layer.span.begin, size);
        if (whole.size() < ape::footerSize) return;
        ByteCursor footer(whole.last(ape::footerSize));
        footer.take(ape::tagMark.size());
        const bool isOld = footer.littleEndian(4) == ape::version1;
        footer.littleEndian(4);  // the size
        const std::uint32_t count = footer.littleEndian(4).value_or(0);
        const Bytes inside = whole.first(whole.size() - ape::footerSize);
        ByteCursor cursor(inside);
        if (textOf(inside).starts_with(ape::tagMark)) cursor.take(ape::footerSize);
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto item = takeItem(cursor);
            if (!item) return;
            addItem(*item, isOld);
        }
    }

    void addItem(const APEItem& item, bool isOld) {
        TagPart part{TagKind::APEv2, oneLine(utf8OrAnsi(item.key, ansi_)), item.value.size(), {}};
        constexpr std::string_view pictureKeys = "Cover Art (";
        if (sameAscii(item.key.substr(0, pictureKeys.size()), pictureKeys)) {
            const Bytes value = bytesOfText(item.value);
            const auto picture = parsePictureItem(value, value.size(), ansi_);
            if (picture) part.text = addPicture(part.tag, *picture, value);
        } else if ((item.flags & ape::binaryItem) == 0 || isOld) {
            const std::string_view value = item.value.substr(0, largestText);
            part.text = oneLine(isOld ? ansi_.toUtf8(value) : utf8OrAnsi(value, ansi_));
        }
        found.parts.push_back(std::move(part));
    }

    // Fields of three letters and five digits, until the block's own size.
    void addLyrics(const TagSpan& span) {
        constexpr std::size_t beginMark = 11;
        constexpr std::size_t endSize = 15;
        constexpr std::size_t idSize = 3;
        constexpr std::size_t digits = 5;
        const auto size = static_cast<std::size_t>(span.end - span.begin);
        const Bytes whole = file_.view(span.begin, size);
        if (whole.size() < beginMark + endSize) return;
        ByteCursor cursor(whole.first(whole.size() - endSize).subspan(beginMark));
        while (cursor.left() >= idSize + digits) {
            const std::string id(textOf(*cursor.take(idSize)));
            const auto length = parseInteger(textOf(*cursor.take(digits)));
            const auto text = length && *length >= 0
                                  ? cursor.take(static_cast<std::size_t>(*length))
                                  : std::nullopt;
            if (!text) return;
            found.parts.push_back({TagKind::Lyrics3, withoutControls(ansi_.toUtf8(id)),
                                   text->size(), oneLine(ansi_.toUtf8(textOf(*text)))});
        }
    }

    File& file_;
    const CodePage& ansi_;
    std::size_t unpacked_ = 0;
};
}  // namespace

TagParts readParts(File& file, const std::vector<TagLayer>& layers, const CodePage& ansi) {
    Gathering gathering(file, ansi);
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) gathering.add(*layer);
    return std::move(gathering.found);
}

std::string describePicture(const cAlbumArt& art) {
    const auto head = readPictureHead(art.Data);
    if (!head) return art.MIME;
    return std::string(head->name) + ", " + std::to_string(head->width) + " × " +
           std::to_string(head->height);
}

Text pictureTypeText(std::uint8_t type) {
    constexpr std::array types{
        Text::PictureOther,       Text::PictureIcon,       Text::PictureOtherIcon,
        Text::PictureFrontCover,  Text::PictureBackCover,  Text::PictureLeaflet,
        Text::PictureMedia,       Text::PictureLeadArtist, Text::PictureArtist,
        Text::PictureConductor,   Text::PictureBand,       Text::PictureComposer,
        Text::PictureLyricist,    Text::PicturePlace,      Text::PictureRecording,
        Text::PicturePerformance, Text::PictureVideo,      Text::PictureFish,
        Text::PictureDrawing,     Text::PictureArtistMark, Text::PicturePublisherMark};
    return type < types.size() ? types[type] : Text::PictureOther;
}

}  // namespace tavlo
