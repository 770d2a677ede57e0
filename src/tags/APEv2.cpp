#include "tags/APEv2.h"

#include <algorithm>
#include <array>

#include "core/ByteCursor.h"
#include "tags/APEv2Items.h"
#include "tags/Lyrics3.h"
#include "tags/Picture.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
using namespace ape;

constexpr std::size_t searchSpan = 256;
constexpr std::uint32_t largestText = 1U << 20U;
constexpr std::uint32_t pictureHeadSize = 512;  // its file name

struct Footer {
    std::uint32_t version = 0;
    std::uint32_t size = 0;  // items and footer
    std::uint32_t count = 0;
    std::uint32_t flags = 0;
};

std::optional<Footer> parseFooter(Bytes bytes) {
    ByteCursor cursor(bytes);
    if (bytes.size() < footerSize || !cursor.takeIf(tagMark)) return std::nullopt;
    Footer footer;
    footer.version = *cursor.littleEndian(4);
    footer.size = *cursor.littleEndian(4);
    footer.count = *cursor.littleEndian(4);
    footer.flags = *cursor.littleEndian(4);
    const bool known = footer.version == version1 || footer.version == version2;
    if (!known || footer.size < footerSize) return std::nullopt;
    if (footer.version == version1) footer.flags = 0;
    return footer;
}

struct Tag {
    Footer footer;
    std::uint64_t begin = 0;  // of the header, or of the items where there is none
    std::uint64_t items = 0, itemsEnd = 0;
};

std::optional<Tag> tagAt(File& file, std::uint64_t place) {
    const auto footer = parseFooter(file.view(place, footerSize));
    if (!footer || (footer->flags & isHeader) != 0) return std::nullopt;
    if (footer->size - footerSize > place) return std::nullopt;
    Tag tag{*footer, 0, place + footerSize - footer->size, place};
    tag.begin = tag.items;
    if ((footer->flags & hasHeader) != 0) {
        if (tag.items < footerSize) return std::nullopt;
        tag.begin -= footerSize;
        if (textOf(file.view(tag.begin, tagMark.size())) != tagMark) return std::nullopt;
    }
    return tag;
}

// At the file's end; a Lyrics3 block, if there is one, may stand behind the tag.
std::optional<Tag> locate(File& file, std::optional<std::uint64_t> lyricsBegin, bool& isBroken) {
    const std::uint64_t from = file.size() - std::min<std::uint64_t>(file.size(), searchSpan);
    const std::string_view end = textOf(file.view(from, searchSpan));
    // Searching forwards is quicker where there is none.
    if (end.find(tagMark) != std::string_view::npos) {
        if (auto tag = tagAt(file, from + end.rfind(tagMark))) return tag;
        isBroken = true;
    }
    if (!lyricsBegin || *lyricsBegin < footerSize) return std::nullopt;
    return tagAt(file, *lyricsBegin - footerSize);
}

class ItemWalk {
 public:
    ItemWalk(File& file, const Tag& tag, ID3tag& record, const ReadContext& context,
             FoundItems* found)
        : file_(file), tag_(tag), record_(record), context_(context), found_(found) {}

    void run() {
        // One read brings the items of a usual tag in.
        constexpr std::uint64_t usualItems = File::windowSize;
        file_.view(tag_.items, static_cast<std::size_t>(std::min<std::uint64_t>(
                                   tag_.itemsEnd - tag_.items, usualItems)));
        std::uint64_t at = tag_.items;
        for (std::uint32_t i = 0; i < tag_.footer.count; ++i) {
            const auto item = itemAt(at);
            if (!item) break;
            const std::uint64_t end = item->value + item->size;
            const bool isRead = interpret(*item);
            if (!isRead) keep(at, *item);
            if (found_ != nullptr)
                found_->items.push_back({item->key, at, item->value, end, isRead});
            at = end;
        }
        keepRest(at);
        if (found_ != nullptr) {
            found_->end = at;
            found_->restEnd = tag_.itemsEnd;
            found_->isOld = tag_.footer.version == version1;
            found_->isBroken =
                found_->items.size() < tag_.footer.count && found_->end < found_->restEnd;
        }
    }

 private:
    struct Item {
        std::string key;
        std::uint64_t value = 0;  // offset
        std::uint32_t size = 0;
    };

    std::optional<Item> itemAt(std::uint64_t at) {
        const std::uint64_t left = tag_.itemsEnd - at;
        const auto most =
            static_cast<std::size_t>(std::min<std::uint64_t>(left, itemHeadSize + longestKey + 1));
        const Bytes head = file_.view(at, most);
        ByteCursor cursor(head);
        const auto size = cursor.littleEndian(4);
        if (!size || !cursor.take(4)) return std::nullopt;
        const std::size_t keyRoom = cursor.left();
        const std::string_view key = textOf(cursor.takeUntil(0));
        if (key.empty() || key.size() == keyRoom) return std::nullopt;
        const std::uint64_t value = at + head.size() - cursor.left();
        if (*size > tag_.itemsEnd - value) return std::nullopt;
        return Item{std::string(key), value, *size};
    }

    bool interpret(const Item& item) {
        if (item.key == pictureKey) return readPicture(item);
        const FieldItem* row = findFieldItem(item.key);
        if (row == nullptr || item.size > largestText) return false;
        const std::string whole = decoded(textOf(file_.view(item.value, item.size)));
        const std::string text = joinValues(whole);
        if (trimBlanks(text).empty()) return true;
        row->set(record_, trimBlanks(text));
        return !row->get(record_).empty();  // another kind of file does not write it
    }

    [[nodiscard]] std::string decoded(std::string_view bytes) const {
        return tag_.footer.version == version1 ? context_.ansi.toUtf8(bytes)
                                               : utf8OrAnsi(bytes, context_.ansi);
    }

    bool readPicture(const Item& item) {
        const bool full = context_.depth == ReadDepth::Full;
        Bytes head =
            file_.view(item.value, full ? item.size : std::min(item.size, pictureHeadSize));
        auto picture = parsePictureItem(head, item.size, context_.ansi);
        if (head.size() < item.size && (!picture || picture->dataOffset == head.size())) {
            head = file_.view(item.value, item.size);  // the file name goes on
            picture = parsePictureItem(head, item.size, context_.ansi);
        }
        if (!picture) return false;
        if (full) {
            const Bytes data = head.subspan(picture->dataOffset);
            picture->art.Data.assign(data.begin(), data.end());
        }
        picture->art.At = item.value + picture->dataOffset;
        record_.AlbumArtType = pictureType(picture->art.MIME);
        record_.AlbumArt = std::move(picture->art);
        return true;
    }

    void keep(std::uint64_t at, const Item& item) {
        if (context_.depth != ReadDepth::Full) return;
        const std::uint64_t length = item.value + item.size - at;
        const std::string_view raw = textOf(file_.view(at, static_cast<std::size_t>(length)));
        if (tag_.footer.version == version1) {
            const std::string value = decoded(raw.substr(raw.size() - item.size));
            appendItem(record_.UnknownItems, {0, item.key, value});
        } else {
            record_.UnknownItems += raw;
        }
    }

    // What stands behind the last item that could be read.
    void keepRest(std::uint64_t at) {
        if (context_.depth != ReadDepth::Full || at >= tag_.itemsEnd) return;
        const auto rest = file_.view(at, static_cast<std::size_t>(tag_.itemsEnd - at));
        appendItem(record_.UnknownItems, {binaryItem, "Unread items", textOf(rest)});
    }

    File& file_;
    const Tag& tag_;
    ID3tag& record_;
    const ReadContext& context_;
    FoundItems* const found_;
};

std::optional<TagSpan> readTag(File& file, ID3tag& record, const ReadContext& context,
                               FoundItems* found) {
    bool isBroken = false;
    const auto tag = locate(file, lyricsBegin(file, record), isBroken);
    if (!tag && found != nullptr) found->isBroken = isBroken;
    if (!tag) return std::nullopt;
    record.IsAPE2Present = true;
    ItemWalk(file, *tag, record, context, found).run();
    return TagSpan{tag->begin, tag->itemsEnd + footerSize};
}

}  // namespace

std::optional<TagSpan> ReadAPETag(File& file, ID3tag& record, const ReadContext& context) {
    return readTag(file, record, context, nullptr);
}

std::optional<TagSpan> ReadAPETag(File& file, ID3tag& record, const ReadContext& context,
                                  FoundItems& found) {
    return readTag(file, record, context, &found);
}

}  // namespace tavlo
