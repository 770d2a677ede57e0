#include "tags/ID3v1.h"

#include <algorithm>

#include "core/ByteCursor.h"
#include "platform/Utf8.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::string_view blockMark = "TAG";
constexpr std::uint64_t blockSize = 128;
constexpr std::size_t displacedSpan = 160;  // the file's end in which a block may begin
constexpr std::uint64_t leastBehindMark = 120;
constexpr std::size_t apeFooterSize = 32;  // an item in front of it may say "TAG" as well
constexpr std::size_t textSize = 30, yearSize = 4, commentSize = 30, shortCommentSize = 28;

std::string_view fileEnd(File& file, std::size_t count) {
    const std::uint64_t most = std::min<std::uint64_t>(count, file.size());
    return textOf(file.view(file.size() - most, static_cast<std::size_t>(most)));
}

// Where the block begins.
std::optional<std::uint64_t> locate(File& file) {
    if (file.size() < blockSize) return std::nullopt;
    const std::string_view last = fileEnd(file, blockSize);
    const bool isFooter = last.substr(blockSize - apeFooterSize).starts_with("APETAGEX");
    if (last.starts_with(blockMark) && !isFooter) return file.size() - blockSize;
    const std::string_view end = fileEnd(file, displacedSpan);
    if (end.find("APETAG") != std::string_view::npos) return std::nullopt;
    const std::size_t at = end.find(blockMark);
    if (at == std::string_view::npos) return std::nullopt;
    const std::uint64_t block = file.size() - end.size() + at;
    if (block + blockMark.size() + leastBehindMark >= file.size()) return std::nullopt;
    return block;
}

// The last 30 bytes of text hold a comment, or a shorter one, a zero and the track number.
void readComment(Bytes field, ID3tag& record, const CodePage& ansi) {
    const std::uint8_t separator = field[shortCommentSize];
    const std::uint8_t track = field[shortCommentSize + 1];
    const bool hasTrack = separator == 0 || track == 0;
    const std::string comment =
        fixedWidthText(hasTrack ? field.first(shortCommentSize + 1) : field, ansi);
    if (!comment.empty()) record.SetComment(comment);
    if (hasTrack) record.SetNumberL(track);
}

void readFields(Bytes block, ID3tag& record, const CodePage& ansi) {
    ByteCursor cursor(block);
    const auto text = [&](std::size_t size) { return fixedWidthText(*cursor.take(size), ansi); };
    record.SetTitle(text(textSize));
    record.SetArtist(text(textSize));
    record.SetAlbum(text(textSize));
    record.SetYear(text(yearSize));
    readComment(*cursor.take(commentSize), record, ansi);
    record.SetGenreID(cursor.u8().value_or(noGenre));
}

// As many characters from the front as have room in `width` bytes.
std::string wholeCharacters(std::string_view text, std::size_t width, const CodePage& ansi) {
    std::string bytes;
    while (!text.empty()) {
        const std::size_t length = firstCodePoint(text).length;
        const std::string next = ansi.fromUtf8(text.substr(0, length)).bytes;
        if (bytes.size() + next.size() > width) break;
        bytes += next;
        text.remove_prefix(length);
    }
    return bytes;
}

// The fields of a block in their order; a field that was not edited keeps its bytes.
class BlockWriter {
 public:
    BlockWriter(const TagChange& change, std::string_view old, const CodePage& ansi)
        : change_(change), old_(old), ansi_(ansi), block_(blockMark) {}

    std::string run() {
        const ID3tag& record = change_.after;
        add(fieldSet(Field::Title), record.Title.empty() ? record.GetTitleMixV2() : record.Title,
            textSize);
        add(fieldSet(Field::Artist), record.Artist, textSize);
        add(fieldSet(Field::Album), record.Album, textSize);
        add(fieldSet(Field::Year), record.Year, yearSize);
        addComment();
        if (isKept(fieldSet(Field::Genre))) {
            block_ += old_.back();
        } else {
            block_ += static_cast<char>(record.Genre);
        }
        return std::move(block_);
    }

 private:
    [[nodiscard]] bool isKept(FieldSet fields) const {
        return !old_.empty() && !change_.edits(fields);
    }

    void add(FieldSet fields, std::string_view text, std::size_t width) {
        if (isKept(fields)) {
            block_ += old_.substr(block_.size(), width);
        } else {
            block_ += FixedWidthText(text, width, ansi_);
        }
    }

    // The comment gives way to a track number that is edited, and the other way round.
    void addComment() {
        constexpr FieldSet comment = fieldSet(Field::Comment);
        constexpr FieldSet track = fieldSet(Field::Number);
        const std::size_t begin = block_.size();
        if (isKept(comment | track)) {
            block_ += old_.substr(begin, commentSize);
            return;
        }
        add(comment, change_.after.Comment, shortCommentSize);
        block_ += '\0';
        const bool hasTrack = !old_.empty() && old_[begin + shortCommentSize] == '\0';
        block_ += isKept(track) && hasTrack ? old_[begin + shortCommentSize + 1]
                                            : static_cast<char>(change_.after.TrackNumber & 0xFFU);
    }

    const TagChange& change_;
    const std::string_view old_;
    const CodePage& ansi_;
    std::string block_;
};
}  // namespace

std::optional<TagSpan> ReadID3v1Tag(File& file, ID3tag& record, const ReadContext& context) {
    const auto block = locate(file);
    if (!block) return std::nullopt;
    // A displaced block may lack its last bytes: genre and track number then count as none.
    constexpr std::size_t fieldsSize = blockSize - blockMark.size();
    std::array<std::uint8_t, fieldsSize> fields{};
    fields.back() = noGenre;
    const Bytes found = file.view(*block + blockMark.size(), fieldsSize);
    std::copy(found.begin(), found.end(), fields.begin());
    record.IsID3v1Present = true;
    readFields(fields, record, context.ansi);
    return TagSpan{*block, std::min(file.size(), *block + blockSize)};
}

std::string FixedWidthText(std::string_view text, std::size_t width, const CodePage& ansi) {
    text = trimBlanks(text);
    std::string bytes = ansi.fromUtf8(text).bytes;
    if (bytes.size() > width) bytes = wholeCharacters(text, width, ansi);
    bytes.resize(width, '\0');
    return bytes;
}

std::string encodeID3v1Block(const TagChange& change, std::string_view old, const CodePage& ansi) {
    std::string whole(old);
    if (!whole.empty() && whole.size() < blockSize) {
        whole.resize(blockSize, '\0');
        whole.back() = static_cast<char>(noGenre);
    }
    return BlockWriter(change, whole, ansi).run();
}

}  // namespace tavlo
