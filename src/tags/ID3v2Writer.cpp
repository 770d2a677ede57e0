#include "tags/ID3v2Writer.h"

#include <algorithm>

#include "tags/ByteWriting.h"
#include "tags/ID3v2Fields.h"
#include "tags/ID3v2Frame.h"
#include "tags/ID3v2Kept.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::uint64_t leastTagSize = 512;

int writtenVersion(const TagSettings& settings) {
    return settings.id3v24 ? 4 : 3;
}

// A URL is 8-bit text whatever happens; what that does not hold goes in as its UTF-8 bytes.
std::string urlBytes(std::string_view url, const CodePage& ansi) {
    auto encoded = ansi.fromUtf8(url);
    if (!encoded.lossy) return encoded.bytes;
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string escaped;
    for (const char c : url) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            escaped += c;
        } else {
            escaped += '%';
            escaped += hexDigits[byte >> 4U];
            escaped += hexDigits[byte & 15U];
        }
    }
    return escaped;
}

class FramesWriter {
 public:
    FramesWriter(const ID3tag& record, const WriteContext& context)
        : record_(record),
          context_(context),
          version_(writtenVersion(context.settings)),
          isSameVersion_(record.ID3v2Ext.MajorVersion == version_) {}

    std::string run() {
        for (std::size_t row = 0; row < fieldFrameCount; ++row) {
            const FieldFrame& frame = fieldFrames()[row];
            if (frame.kind == FrameKind::Picture) {
                addPicture();
                continue;
            }
            const std::string field = frame.get(record_, version_);
            if (!field.empty()) addField(row, field);
            noteField(row, field.empty());
        }
        const cID3v2ext& ext = record_.ID3v2Ext;
        out_ +=
            convertFrames(ext.UnknownFrames, ext.MajorVersion, version_, context_.ansi, fields_);
        if (!ext.UnreadRest.empty()) out_ += privateFrame("ID3v2", ext.UnreadRest, version_);
        return std::move(out_);
    }

 private:
    void noteField(std::size_t row, bool isEmpty) {
        const FieldFrame& frame = fieldFrames()[row];
        const bool isSingle = frame.kind == FrameKind::Text || frame.kind == FrameKind::Genre;
        if (!isSingle) return;
        if (!isEmpty) fields_.written.push_back(frame.id);
        if (isEmpty && record_.ID3v2Ext.RowsRead[row]) fields_.emptied.push_back(frame.id);
        fields_.hasDate = !record_.GetYear().empty();
    }

    void addField(std::size_t row, const std::string& field) {
        const FieldFrame& frame = fieldFrames()[row];
        const TagWording* wording = wordingOf(row, field);
        if (wording != nullptr && wording->isBody) {
            add(frame.id, wording->text);
        } else if (frame.kind == FrameKind::Url) {
            addUrl(field);
        } else {
            addText(frame, wording != nullptr ? wording->text : field);
        }
    }

    // What the tag said, where the field still is what was made of it.
    const TagWording* wordingOf(std::size_t row, std::string_view field) const {
        for (const TagWording& wording : record_.ID3v2Ext.Wordings) {
            if (wording.row != row || wording.field != field) continue;
            const bool isLatin = wording.text.starts_with('\0');
            if (isSameVersion_ || (wording.isBody && isLatin)) return &wording;
        }
        return nullptr;
    }

    void addText(const FieldFrame& frame, std::string_view text) {
        const Encoded encoded = encode(text);
        std::string body = encodingByte(encoded);
        if (frame.kind == FrameKind::Comment) {
            const std::string& language = record_.ID3v2Ext.CommentLanguage;
            body += language.empty() ? "eng" : language;
            addTerminated(body, {{}, encoded.encoding});
        }
        if (frame.kind == FrameKind::UserText) {
            const bool isWide = encoded.encoding == TextEncoding::Utf16;
            addTerminated(body,
                          {isWide ? utf16Text(encodingHistoryKey) : std::string(encodingHistoryKey),
                           encoded.encoding});
        }
        body += encoded.bytes;
        add(frame.id, body);
    }

    void addUrl(std::string_view url) {
        const Encoded description = encode(record_.ID3v2Ext.URLDescription);
        std::string body = encodingByte(description);
        addTerminated(body, description);
        body += urlBytes(url, context_.ansi);
        add("WXXX", body);
    }

    void addPicture() {
        const cAlbumArt& art = record_.AlbumArt;
        if (art.Data.empty()) return;
        const Encoded description = encode(art.Description);
        std::string body = encodingByte(description);
        body.reserve(art.Data.size() + description.bytes.size() + art.MIME.size() + 16);
        body += art.MIME.empty() ? "image/" : context_.ansi.fromUtf8(art.MIME).bytes;
        body += '\0';
        body += static_cast<char>(art.PictureType);
        addTerminated(body, description);
        body += textOf(art.Data);
        add("APIC", body);
    }

    struct Encoded {
        std::string bytes;
        TextEncoding encoding;
    };

    // A frame that the code page cannot hold is UTF-16 whatever the settings say.
    [[nodiscard]] Encoded encode(std::string_view text) const {
        if (!context_.settings.id3v2Unicode) {
            auto narrow = context_.ansi.fromUtf8(text);
            if (!narrow.lossy) return {std::move(narrow.bytes), TextEncoding::Latin1};
        }
        return {utf16Text(text), TextEncoding::Utf16};
    }

    static std::string encodingByte(const Encoded& text) {
        std::string byte;
        byte += static_cast<char>(text.encoding);
        return byte;
    }

    static void addTerminated(std::string& body, const Encoded& text) {
        if (text.bytes.empty() && text.encoding == TextEncoding::Utf16) body += utf16Text({});
        body += text.bytes;
        body.append(unitSize(text.encoding), '\0');
    }

    void add(std::string_view id, std::string_view body) {
        appendFrameHeader(out_, {std::string(id), static_cast<std::uint32_t>(body.size()), 0},
                          version_);
        out_ += body;
    }

    const ID3tag& record_;
    const WriteContext& context_;
    const int version_;
    const bool isSameVersion_;
    FieldIds fields_;
    std::string out_;
};
}  // namespace

std::string encodeID3v2Frames(const ID3tag& record, const WriteContext& context) {
    return FramesWriter(record, context).run();
}

std::uint32_t GetTagSize(const ID3tag& record, const WriteContext& context) {
    return static_cast<std::uint32_t>(encodeID3v2Frames(record, context).size());
}

std::uint64_t roomyTagSize(std::size_t framesSize) {
    const std::uint64_t needed = framesSize;
    const std::uint64_t roomy = std::max(leastTagSize, needed + (needed + 9) / 10);
    return std::max(needed, std::min(roomy, largestTagSize));
}

std::string encodeID3v2Tag(std::string_view frames, std::uint64_t bodySize,
                           const TagSettings& settings) {
    std::string tag = "ID3";
    tag.reserve(TagHeader::size + static_cast<std::size_t>(bodySize));
    tag += static_cast<char>(writtenVersion(settings));
    tag.append(2, '\0');  // minor version and flags
    appendSyncsafe(tag, static_cast<std::uint32_t>(bodySize));
    tag += frames;
    tag.resize(TagHeader::size + static_cast<std::size_t>(bodySize), '\0');
    return tag;
}

}  // namespace tavlo
