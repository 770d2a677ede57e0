#include "tags/ID3v2.h"

#include <algorithm>
#include <array>

#include "core/ByteCursor.h"
#include "tags/ID3v2Fields.h"
#include "tags/ID3v2Frame.h"
#include "tags/MPEGHeader.h"
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

std::string withoutLastNuls(std::string text) {
    while (text.ends_with('\0')) text.pop_back();
    return text;
}

// Version 4 allows several values; before it, whatever follows the first NUL is no text.
std::string_view usedText(std::string_view text, int majorVersion) {
    return majorVersion < 4 ? text.substr(0, text.find('\0')) : text;
}

std::optional<TextEncoding> takeEncoding(ByteCursor& cursor) {
    const auto byte = cursor.u8();
    if (!byte || *byte > static_cast<std::uint8_t>(TextEncoding::Utf8)) return std::nullopt;
    return static_cast<TextEncoding>(*byte);
}

// --- The walk ------------------------------------------------------------------------------------

class FrameWalk {
 public:
    // `source` holds the tag's body, `file` the sound behind it from `soundBegin` on.
    FrameWalk(File& source, File& file, std::uint64_t soundBegin, ID3tag& record,
              const ReadContext& context, const FrameTaker& take, FoundFrames* found)
        : source_(source),
          file_(file),
          soundBegin_(soundBegin),
          record_(record),
          context_(context),
          take_(take),
          found_(found) {}

    void run(std::uint64_t at, std::uint64_t end) {
        end_ = end;
        at = behindExtendedHeader(at);
        const std::uint64_t first = at;
        while (const auto header = headerAt(at)) {
            const std::uint64_t body = at + headerSize_;
            if (header->bodySize > end_ - body || isSync(header->id)) break;
            // Sound or rubbish may look like a header.
            if (!isText(header->id) && !leadsOn(body + header->bodySize)) break;
            if (take_) take_(*header, source_.view(body, header->bodySize));
            const bool isRead = interpret(*header, body);
            if (!isRead) keep(*header, body);
            if (found_ != nullptr) note(*header, at, isRead);
            at = body + header->bodySize;
        }
        if (context_.depth >= ReadDepth::Places) lookBehind(at);
        isLost_ = record_.ID3v2Ext.bUnreadRest && (at == first || !isFollowedBySound());
        finish();
    }

    // Where sound begins inside of what the tag claims.
    [[nodiscard]] std::optional<std::uint64_t> soundAt() const { return soundAt_; }
    // Whether there are bytes that are no frame and that cannot be put back: where no frame was
    // found at all, or where sound does not begin behind the tag, they may be anything, sound
    // included.
    [[nodiscard]] bool isLost() const { return isLost_; }

 private:
    // Writers do not agree on what an extended header's size counts, and some set the flag and go
    // on with a frame; so the frames begin where the first one is found.
    std::uint64_t behindExtendedHeader(std::uint64_t at) {
        constexpr std::uint64_t mostSearched = 256;
        if (!record_.ID3v2Ext.bExtendedHeader || version_ < 3) return at;
        const Bytes size = source_.view(at, 4);
        const std::uint64_t plain = ByteCursor(size).bigEndian(4).value_or(0);
        const std::uint64_t syncsafe = ByteCursor(size).syncsafe().value_or(0);
        const bool isOld = version_ == 3;
        const std::uint64_t told = std::min(at + (isOld ? 4 + plain : syncsafe), end_);
        for (const std::uint64_t begin :
             {told, at, at + plain, at + 4 + syncsafe, at + 4 + plain}) {
            if (beginsWalk(begin)) return begin;
        }
        for (std::uint64_t begin = at; begin < std::min(at + mostSearched, end_); ++begin) {
            if (beginsWalk(begin)) return begin;
        }
        return told;
    }

    bool beginsWalk(std::uint64_t at) {
        const auto header = beginsFrame(at) ? headerAt(at) : std::nullopt;
        return header && leadsOn(at + headerSize_ + header->bodySize);
    }

    std::optional<FrameHeader> headerAt(std::uint64_t at) {
        if (at >= end_ || end_ - at < headerSize_) return std::nullopt;
        auto header = parseFrameHeader(source_.view(at, headerSize_), version_);
        hasOddSize_ = header && version_ == 4 && correctSize(*header, at);
        return header;
    }

    // Some writers of version 4 keep the plain sizes of version 3. The size is syncsafe unless
    // only the plain one leads to another frame, to padding or to the end.
    bool correctSize(FrameHeader& header, std::uint64_t at) {
        ByteCursor cursor(source_.view(at + 4, 4));
        const std::uint32_t plain = cursor.bigEndian(4).value_or(0);
        if (plain < 0x80 || plain == header.bodySize) return false;
        const std::uint64_t body = at + headerSize_;
        if (leadsOn(body + header.bodySize) || !leadsOn(body + plain)) return false;
        header.bodySize = plain;
        return true;
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
        const FieldFrame* frame = findFieldFrame(header.id, version_);
        if (frame == nullptr) return false;
        if (frame->kind == FrameKind::Picture) return interpretPicture(header, at);
        // A list does not show it.
        const bool isSkipped =
            frame->kind == FrameKind::UserText && context_.depth < ReadDepth::Places;
        if (isSkipped) return false;
        if (header.bodySize > largestTextFrame) return false;
        const auto body = bodyOf(header, at, header.bodySize);
        if (!body || body->size() > largestTextFrame) return false;
        ByteCursor cursor(*body);
        const auto encoding = takeEncoding(cursor);
        if (!encoding) return false;
        const auto row = static_cast<std::size_t>(frame - fieldFrames().data());
        if (record_.ID3v2Ext.RowsRead[row]) return false;
        if (frame->kind == FrameKind::Comment && !takeCommentHead(cursor, *encoding)) return false;
        if (frame->kind == FrameKind::UserText && !takeHistoryHead(cursor, *encoding)) return false;
        if (frame->kind == FrameKind::Url) return readUrl(cursor, *encoding);
        return readText(row, cursor, *encoding);
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

    bool readText(std::size_t row, ByteCursor& cursor, TextEncoding encoding) {
        const FieldFrame& frame = fieldFrames()[row];
        const std::string whole =
            withoutLastNuls(decodeText(encoding, *cursor.take(cursor.left()), context_.ansi));
        std::string value(usedText(whole, version_));
        if (frame.kind != FrameKind::Genre) value = joinValues(std::move(value));
        const std::string_view trimmed = trimBlanks(value);
        if (trimmed.empty()) return trimBlanks(whole).empty();
        record_.ID3v2Ext.RowsRead.set(row);
        frame.set(record_, trimmed);
        return true;
    }

    // Takes language and description; a comment that has a description is another one.
    bool takeCommentHead(ByteCursor& cursor, TextEncoding encoding) {
        constexpr std::size_t languageSize = 3;
        const auto language = cursor.take(languageSize);
        if (!language) return false;
        const Bytes description = takeTerminated(cursor, encoding);
        return decodeText(encoding, description, context_.ansi).empty();
    }

    // Takes the description; a user's text with any other is not ours.
    bool takeHistoryHead(ByteCursor& cursor, TextEncoding encoding) {
        const Bytes description = takeTerminated(cursor, encoding);
        return decodeText(encoding, description, context_.ansi) == encodingHistoryKey;
    }

    bool readUrl(ByteCursor& cursor, TextEncoding encoding) {
        if (!record_.ID3v2Ext.URL.empty()) return false;
        const Bytes description = takeTerminated(cursor, encoding);
        if (context_.depth >= ReadDepth::Places) {
            record_.ID3v2Ext.URLDescription = decodeText(encoding, description, context_.ansi);
        }
        const std::string url = context_.ansi.toUtf8(textOf(cursor.takeUntil(0)));
        record_.ID3v2Ext.URL = trimBlanks(url);
        return true;
    }

    // The front cover wins, else the first picture. The bytes of one that is packed are loaded for
    // a writer too, for nothing in the file is the same.
    bool interpretPicture(const FrameHeader& header, std::uint64_t at) {
        const bool isHere = isPlainFrame(header, version_) && !record_.ID3v2Ext.isUnsynchronised();
        const bool full =
            context_.depth == ReadDepth::Full || (context_.depth == ReadDepth::Places && !isHere);
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
        if (isHere) picture->art.At = at + picture->dataOffset;
        chosenPicture_ = kept_.size();
        if (found_ != nullptr) chosenFrame_ = found_->frames.size();
        record_.AlbumArtType = pictureType(picture->art.MIME);
        record_.AlbumArt = std::move(picture->art);
        return true;
    }

    void keep(const FrameHeader& header, std::uint64_t at) {
        if (context_.depth != ReadDepth::Full) return;
        std::string& kept = kept_.emplace_back();
        appendFrameHeader(kept, header, version_);
        kept += textOf(source_.view(at, header.bodySize));
    }

    void note(const FrameHeader& header, std::uint64_t at, bool isRead) {
        const bool isPicture =
            isRead && findFieldFrame(header.id, version_)->kind == FrameKind::Picture;
        found_->frames.push_back({header, at, isRead && !isPicture, hasOddSize_});
    }

    // Odd names are made of letters all the same.
    static bool isText(std::string_view id) {
        return std::ranges::all_of(id, [](char c) { return c == '\0' || (c >= ' ' && c <= '~'); });
    }

    // A frame of sound never begins like a frame of the tag.
    static bool isSync(std::string_view bytes) {
        return bytes.size() > 1 && bytes[0] == '\xFF' && (bytes[1] & 0xE0) == 0xE0;
    }

    bool isFollowedBySound() {
        constexpr std::array<std::string_view, 6> marks{"MP+",  "MPCK", "wvpk",
                                                        "MAC ", "fLaC", "OggS"};
        const std::string_view next = textOf(file_.view(soundBegin_, 4));
        MPEGHeader header;
        return header.ParseHeader(next) || std::ranges::any_of(marks, [&](std::string_view mark) {
                   return next.starts_with(mark);
               });
    }

    // What stands behind the last whole frame and its padding. Where it is sound, the tag's size is
    // wrong and the tag ends there.
    void lookBehind(std::uint64_t at) {
        constexpr std::uint64_t block = 1U << 16U;
        for (std::uint64_t from = at; from < end_; from += block) {
            const auto most = static_cast<std::size_t>(std::min(block, end_ - from));
            const std::size_t first = textOf(source_.view(from, most)).find_first_not_of('\0');
            if (first == std::string_view::npos) continue;
            const bool isSound = isSync(textOf(source_.view(from + first, 2)));
            if (isSound) soundAt_ = from + first;
            record_.ID3v2Ext.bUnreadRest = !isSound;
            break;
        }
        if (found_ == nullptr) return;
        found_->end = at;
        found_->restEnd = record_.ID3v2Ext.bUnreadRest ? end_ : at;
    }

    void finish() {
        if (chosenFrame_) found_->frames[*chosenFrame_].isRead = true;
        for (std::size_t i = 0; i < kept_.size(); ++i) {
            if (i + 1 != chosenPicture_) record_.ID3v2Ext.UnknownFrames += kept_[i];
        }
    }

    File& source_;
    File& file_;
    const std::uint64_t soundBegin_;
    ID3tag& record_;
    const ReadContext& context_;
    const FrameTaker& take_;
    FoundFrames* const found_;
    const int version_ = record_.ID3v2Ext.MajorVersion;
    const std::size_t headerSize_ = frameHeaderSize(version_);
    std::uint64_t end_ = 0;
    std::vector<std::uint8_t> decoded_;
    std::size_t unpacked_ = 0;
    bool hasPicture_ = false;
    std::optional<std::uint64_t> soundAt_;
    bool isLost_ = false, hasOddSize_ = false;
    std::optional<std::size_t> chosenFrame_;  // in `found_`
    std::vector<std::string> kept_;           // raw frames in file order
    std::size_t chosenPicture_ = 0;           // 1-based place in kept_; 0 = none
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

std::optional<TagSpan> readTag(File& file, ID3tag& record, const ReadContext& context,
                               const FrameTaker& take, FoundFrames* found) {
    if (textOf(file.view(0, tagMark.size())) != tagMark) return std::nullopt;
    record.IsID3v2Present = true;
    cID3v2ext& ext = record.ID3v2Ext;
    const auto header = parseTagHeader(file.view(0, TagHeader::size));
    ext.bDamaged = true;  // until everything is seen to be whole
    if (!header) return TagSpan{0, file.size()};
    setHeader(ext, *header);
    TagSpan span{0, ID3v2TagEnd(file)};
    if (!isReadable(ext)) return span;
    const std::uint64_t end = std::min<std::uint64_t>(TagHeader::size + header->bodySize, span.end);
    // Version 4 marks every unsynchronised frame by itself; before it the body is one piece.
    bool isLost = false;
    if (ext.isUnsynchronised()) {
        if (header->bodySize > largestUnsynchronisedBody) return span;
        auto body = undoUnsynchronisation(
            file.view(TagHeader::size, static_cast<std::size_t>(end) - TagHeader::size));
        File plain;
        plain.openMemory(body);
        FrameWalk walk(plain, file, span.end, record, context, take, found);
        walk.run(0, body.size());
        isLost = walk.isLost() || walk.soundAt();
        if (found != nullptr) {
            found->plain = std::move(body);
            found->isPlain = true;
        }
    } else {
        FrameWalk walk(file, file, span.end, record, context, take, found);
        walk.run(TagHeader::size, end);
        span.end = walk.soundAt().value_or(span.end);
        isLost = walk.isLost();
    }
    ext.bDamaged = isLost || TagHeader::size + std::uint64_t{header->bodySize} > file.size();
    return span;
}
}  // namespace

std::optional<TagSpan> ReadID3v2Tag(File& file, ID3tag& record, const ReadContext& context) {
    return readTag(file, record, context, {}, nullptr);
}

std::optional<TagSpan> ReadID3v2Tag(File& file, ID3tag& record, const ReadContext& context,
                                    FoundFrames& found) {
    return readTag(file, record, context, {}, &found);
}

void ListID3v2Frames(File& file, const CodePage& ansi, const FrameTaker& take) {
    ID3tag record;
    readTag(file, record, {ansi, ReadDepth::Tags}, take, nullptr);
}

// The footer counts only where it really is: what else stands there is sound.
std::uint64_t ID3v2TagEnd(File& file, std::uint64_t begin) {
    constexpr std::string_view footerMark = "3DI";
    const auto header = parseTagHeader(file.view(begin, TagHeader::size));
    if (!header) return begin;
    const std::uint64_t end = begin + TagHeader::size + header->bodySize;
    const bool hasFooter = (header->flags & footerPresent) != 0 &&
                           textOf(file.view(end, footerMark.size())) == footerMark;
    return std::min(hasFooter ? end + TagHeader::size : end, file.size());
}

}  // namespace tavlo
