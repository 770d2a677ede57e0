#include "tags/ID3v2Writer.h"

#include <algorithm>
#include <array>
#include <bitset>

#include "tags/ByteWriting.h"
#include "tags/ID3v2Fields.h"
#include "tags/ID3v2Frame.h"
#include "tags/ID3v2Kept.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::uint64_t leastTagSize = 512;

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

// Takes bytes of the tag that is being rewritten.
class OldTag {
 public:
    OldTag(File& file, const FoundFrames& found) : file_(file), found_(found) {
        if (found.isPlain) plain_.openMemory(found.plain);
    }

    // The bytes hold until the next call.
    [[nodiscard]] std::string_view view(std::uint64_t begin, std::uint64_t end) {
        File& source = found_.isPlain ? plain_ : file_;
        return textOf(source.view(begin, static_cast<std::size_t>(end - begin)));
    }
    void addTo(Pieces& pieces, std::uint64_t begin, std::uint64_t end) {
        if (found_.isPlain) {
            pieces.add(std::string(view(begin, end)));
        } else {
            pieces.addOld(begin, end);
        }
    }

 private:
    File& file_;
    const FoundFrames& found_;
    File plain_;
};

class FramesWriter {
 public:
    FramesWriter(const TagChange& change, File& file, const FoundFrames& found,
                 const WriteContext& context)
        : change_(change),
          record_(change.after),
          found_(found),
          old_(file, found),
          context_(context),
          from_(change.before.ID3v2Ext.MajorVersion),
          to_(writtenVersion(context.settings)),
          out_{{}, from_ != to_, false} {
        for (const FoundFrame& frame : found_.frames) {
            if (from_ == 2 && firstUrl_ == nullptr && frame.header.id == "WXX") firstUrl_ = &frame;
            if (const auto row = rowOf(frame)) ++counts_[*row];
        }
        if (to_ == 4 && (from_ == 2 || from_ == 3)) joinDate();
    }

    NewFrames run() {
        for (const FoundFrame& frame : found_.frames) place(frame);
        for (std::size_t row = 0; row < fieldFrameCount; ++row) {
            if (!isPlaced_[row] && isMissing(row)) addField(row);
        }
        addRest();
        return std::move(out_);
    }

 private:
    // The row whose field a frame tells, alone or as one of several.
    [[nodiscard]] std::optional<std::size_t> rowOf(const FoundFrame& frame) const {
        const FieldFrame* row = findFieldFrame(frame.header.id, from_);
        // Frames of version 2 that feed no field do so under their new names.
        const std::string_view successor = from_ == 2 ? successorOf(frame.header.id) : "";
        if (row == nullptr && !successor.empty()) row = findFieldFrame(successor, 3);
        if (row == nullptr) return std::nullopt;
        const bool isSingle = row->kind == FrameKind::Text || row->kind == FrameKind::Genre;
        if (!isSingle && !frame.isRead && &frame != firstUrl_) return std::nullopt;
        return static_cast<std::size_t>(row - fieldFrames().data());
    }

    [[nodiscard]] std::string_view nameOf(const FoundFrame& frame) const {
        return from_ == 2 ? successorOf(frame.header.id) : std::string_view(frame.header.id);
    }

    // Before version 4 day and month, and the time, stand in frames of their own.
    void joinDate() {
        const std::string_view year = record_.GetYear();
        const std::string day = fourDigits("TDAT"), time = fourDigits("TIME");
        if (year.size() != 4 || day.empty() || change_.edits(fieldSet(Field::Year))) return;
        date_ = std::string(year) + "-" + day.substr(2) + "-" + day.substr(0, 2);
        if (!time.empty()) date_ += "T" + time.substr(0, 2) + ":" + time.substr(2);
    }

    std::string fourDigits(std::string_view name) {
        for (const FoundFrame& frame : found_.frames) {
            if (nameOf(frame) != name || !isPlainFrame(frame.header, from_)) continue;
            const std::uint64_t body = frame.begin + frameHeaderSize(from_);
            const std::string_view bytes = old_.view(body, body + frame.header.bodySize);
            if (bytes.empty() || bytes[0] > static_cast<char>(TextEncoding::Utf8)) continue;
            std::string text = decodeText(TextEncoding{static_cast<std::uint8_t>(bytes[0])},
                                          bytesOfText(bytes.substr(1)), context_.ansi);
            while (text.ends_with('\0')) text.pop_back();
            const bool isDigits =
                std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
            if (text.size() == 4 && isDigits) return text;
        }
        return {};
    }

    [[nodiscard]] bool isInDate(const FoundFrame& frame) const {
        const std::string_view name = nameOf(frame);
        const bool hasTime = date_.find('T') != std::string::npos;
        return !date_.empty() && (name == "TDAT" || (name == "TIME" && hasTime));
    }

    void place(const FoundFrame& frame) {
        if (isInDate(frame)) return;
        const auto row = rowOf(frame);
        if (row && isReplaced(*row, frame)) {
            if (!isPlaced_[*row]) addField(*row);
            isPlaced_.set(*row);
            out_.isChanged = true;
        } else if (!row || !isToldElsewhere(*row, frame)) {
            if (row) isPlaced_.set(*row);
            keep(frame);
        }
    }

    // A frame that alone tells its field, and tells what it is to be, may stay.
    [[nodiscard]] bool isReplaced(std::size_t row, const FoundFrame& frame) const {
        const FieldSet fields = fieldFrames()[row].fields;
        if (!change_.edits(fields)) return false;
        return counts_[row] > 1 || !frame.isRead || !change_.isSame(fields);
    }

    // Versions 3 and 4 tell the year in different frames.
    [[nodiscard]] bool isToldElsewhere(std::size_t row, const FoundFrame& frame) const {
        const FieldFrame& field = fieldFrames()[row];
        return from_ != to_ && frame.isRead && field.fields == fieldSet(Field::Year) &&
               field.get(record_, to_).empty();
    }

    [[nodiscard]] bool isMissing(std::size_t row) const {
        const FieldFrame& field = fieldFrames()[row];
        const bool isDate = field.fields == fieldSet(Field::Year);
        return !isDate || from_ != to_ || change_.edits(field.fields) || !hasDate();
    }
    [[nodiscard]] bool hasDate() const {
        for (std::size_t row = 0; row < fieldFrameCount; ++row) {
            if (isPlaced_[row] && fieldFrames()[row].fields == fieldSet(Field::Year)) return true;
        }
        return false;
    }

    void keep(const FoundFrame& frame) {
        const std::uint64_t body = frame.begin + frameHeaderSize(from_);
        const std::uint64_t end = body + frame.header.bodySize;
        if (from_ != to_) {
            out_.pieces.add(
                convertFrame(frame.header, old_.view(body, end), from_, to_, context_.ansi));
        } else if (frame.hasOddSize) {
            // Beside sizes in the usual form it would be misread.
            std::string header;
            appendFrameHeader(header, frame.header, to_);
            out_.pieces.add(std::move(header));
            old_.addTo(out_.pieces, body, end);
        } else {
            old_.addTo(out_.pieces, frame.begin, end);
        }
    }

    // What could not be taken apart stays what it is only where the tag ends with it, and in a tag
    // of its own version.
    void addRest() {
        if (found_.restEnd <= found_.end) return;
        if (from_ == to_) {
            old_.addTo(out_.pieces, found_.end, found_.restEnd);
            out_.isExact = true;
        } else {
            out_.pieces.add(privateFrame("ID3v2", old_.view(found_.end, found_.restEnd), to_));
        }
    }

    void addField(std::size_t row) {
        const FieldFrame& frame = fieldFrames()[row];
        if (frame.kind == FrameKind::Picture) return addPicture();
        const bool isDate = frame.id == "TDRC" && !date_.empty();
        const std::string field = isDate ? date_ : frame.get(record_, to_);
        if (field.empty()) return;
        if (frame.kind == FrameKind::Url) return addUrl(field);
        addText(frame, field);
    }

    void addText(const FieldFrame& frame, std::string_view text) {
        const Encoded encoded = encode(text);
        std::string body = encodingByte(encoded);
        if (frame.kind == FrameKind::Comment) {
            body += "eng";
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
        const std::uint64_t size = art.Data.empty() ? art.Size : art.Data.size();
        if (art.Data.empty() && art.At == 0) return;
        const Encoded description = encode(art.Description);
        std::string body = encodingByte(description);
        body += art.MIME.empty() ? "image/" : context_.ansi.fromUtf8(art.MIME).bytes;
        body += '\0';
        body += static_cast<char>(art.PictureType);
        addTerminated(body, description);
        std::string head;
        appendFrameHeader(head, {"APIC", static_cast<std::uint32_t>(body.size() + size), 0}, to_);
        out_.pieces.add(head + body);
        if (art.Data.empty()) {
            out_.pieces.addOld(art.At, art.At + size);
        } else {
            out_.pieces.add(std::string(textOf(art.Data)));
        }
        out_.isChanged = true;
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
        std::string frame;
        appendFrameHeader(frame, {std::string(id), static_cast<std::uint32_t>(body.size()), 0},
                          to_);
        frame += body;
        out_.pieces.add(std::move(frame));
        out_.isChanged = true;
    }

    const TagChange& change_;
    const ID3tag& record_;
    const FoundFrames& found_;
    OldTag old_;
    const WriteContext& context_;
    const int from_, to_;
    NewFrames out_;
    std::array<std::size_t, fieldFrameCount> counts_{};  // of frames that tell a row's field
    std::bitset<fieldFrameCount> isPlaced_;
    const FoundFrame* firstUrl_ = nullptr;  // of version 2: read under its new name
    std::string date_;                      // of the parts that version 4 keeps in one
};
}  // namespace

NewFrames encodeID3v2Frames(const TagChange& change, File& file, const FoundFrames& found,
                            const WriteContext& context) {
    return FramesWriter(change, file, found, context).run();
}

int writtenVersion(const TagSettings& settings) {
    return settings.id3v24 ? 4 : 3;
}

std::uint64_t roomyTagSize(std::uint64_t framesSize) {
    const std::uint64_t roomy = std::max(leastTagSize, framesSize + (framesSize + 9) / 10);
    return std::max(framesSize, std::min(roomy, largestTagSize));
}

std::string encodeID3v2Header(std::uint64_t bodySize, const TagSettings& settings) {
    std::string header = "ID3";
    header += static_cast<char>(writtenVersion(settings));
    header.append(2, '\0');  // minor version and flags
    appendSyncsafe(header, static_cast<std::uint32_t>(bodySize));
    return header;
}

}  // namespace tavlo
