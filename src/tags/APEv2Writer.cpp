#include <algorithm>
#include <set>

#include "core/TextCase.h"
#include "tags/APEv2.h"
#include "tags/APEv2Items.h"
#include "tags/ByteWriting.h"
#include "tags/Picture.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
std::string itemHead(std::string_view key, std::uint64_t size, std::uint32_t flags) {
    std::string head;
    appendLittleEndian(head, static_cast<std::uint32_t>(size), 4);
    appendLittleEndian(head, flags, 4);
    head += key;
    head += '\0';
    return head;
}

std::string lowered(std::string_view key) {
    std::string low(key);
    for (char& c : low) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return low;
}

// The rows of `fieldItems`, and the picture behind them.
class ItemsWriter {
 public:
    ItemsWriter(const TagChange& change, File& file, const FoundItems& found, const CodePage& ansi)
        : change_(change), record_(change.after), file_(file), found_(found), ansi_(ansi) {}

    void run(std::vector<CarriedItem> carried) {
        for (const FoundItem& item : found_.items) place(item);
        for (std::size_t row = 0; row <= pictureRow; ++row) {
            if (!isThere(keyOf(row))) addField(row);
        }
        if (cFormatExt ID3tag::*const own = formatItems(record_.FileType)) {
            for (const auto& [name, value] : (record_.*own).Items) {
                if (!isThere(name)) add(name, 0, value);
            }
        }
        for (CarriedItem& item : carried) {
            if (!isThere(item.key)) add(item.key, item.flags, std::move(item.value));
        }
        items_.addOld(found_.end, found_.restEnd);
    }

    [[nodiscard]] bool isChanged() const { return isChanged_; }
    [[nodiscard]] Pieces& items() { return items_; }

    [[nodiscard]] std::string block(std::uint32_t flags) const {
        std::string bytes(ape::tagMark);
        appendLittleEndian(bytes, ape::version2, 4);
        appendLittleEndian(bytes, static_cast<std::uint32_t>(items_.size() + ape::footerSize), 4);
        appendLittleEndian(bytes, count_, 4);
        appendLittleEndian(bytes, flags, 4);
        bytes.resize(ape::footerSize, '\0');
        return bytes;
    }

 private:
    static constexpr std::size_t pictureRow = 14;

    static std::string_view keyOf(std::size_t row) {
        return row == pictureRow ? ape::pictureKey : fieldItems()[row].key;
    }

    // Keys of one tag may not differ in case only, so that a field is told by any of them.
    static std::optional<std::size_t> rowOf(std::string_view key) {
        if (equalsNoCase(key, ape::pictureKey)) return pictureRow;
        const FieldItem* row = findFieldItemNoCase(key);
        if (row == nullptr) return std::nullopt;
        return static_cast<std::size_t>(row - fieldItems().data());
    }

    [[nodiscard]] bool isEdited(std::size_t row) const {
        if (row == pictureRow) return change_.edits(fieldSet(Field::AlbumArt));
        const FieldItem& item = fieldItems()[row];
        const bool isNobodys = item.isOwn && (record_.FileType & FileType::Ape2Only) == 0;
        return !isNobodys && change_.edits(item.fields);
    }

    void place(const FoundItem& item) {
        const auto row = rowOf(item.key);
        if (!row || !isEdited(*row)) return keep(item);
        if (!isThere(keyOf(*row))) addField(*row, &item);
        keys_.insert(lowered(item.key));
        // What the field's own item did not come to is gone, or was there twice.
        if (lastKept_ != &item) isChanged_ = true;
    }

    void keep(const FoundItem& item) {
        keys_.insert(lowered(item.key));
        ++count_;
        lastKept_ = &item;
        if (!found_.isOld || isBinary(item)) return items_.addOld(item.begin, item.end);
        const std::string value =
            ansi_.toUtf8(textOf(file_.view(item.value, size(item.value, item.end))));
        items_.add(itemHead(item.key, value.size(), 0) + value);
    }

    [[nodiscard]] bool isBinary(const FoundItem& item) const {
        ByteCursor flags(file_.view(item.begin + 4, 4));
        return equalsNoCase(item.key, ape::pictureKey) ||
               (flags.littleEndian(4).value_or(0) & ape::binaryItem) != 0;
    }

    // An edited field that says what its item says keeps it.
    void addField(std::size_t row, const FoundItem* old = nullptr) {
        if (row == pictureRow) return addPicture();
        const std::string text = fieldItems()[row].get(record_);
        if (text.empty()) return;
        if (old != nullptr && old->key == keyOf(row) && says(*old, text)) return keep(*old);
        add(keyOf(row), 0, text);
    }

    bool says(const FoundItem& item, std::string_view text) {
        const Bytes value = file_.view(item.value, size(item.value, item.end));
        return trimBlanks(joinValues(utf8OrAnsi(textOf(value), ansi_))) == text;
    }

    void addPicture() {
        const cAlbumArt& art = record_.AlbumArt;
        Pieces value(pictureItemName(art) + '\0');
        if (!art.Data.empty()) {
            value.add(std::string(textOf(art.Data)));
        } else if (art.At != 0) {
            value.addOld(art.At, art.At + art.Size);
        } else {
            return;
        }
        add(ape::pictureKey, ape::binaryItem, std::move(value));
    }

    [[nodiscard]] bool isThere(std::string_view key) const { return keys_.contains(lowered(key)); }

    void add(std::string_view key, std::uint32_t flags, Pieces value) {
        items_.add(itemHead(key, value.size(), flags));
        items_.add(std::move(value));
        keys_.insert(lowered(key));
        ++count_;
        isChanged_ = true;
    }

    static std::size_t size(std::uint64_t begin, std::uint64_t end) {
        return static_cast<std::size_t>(end - begin);
    }

    const TagChange& change_;
    const ID3tag& record_;
    File& file_;
    const FoundItems& found_;
    const CodePage& ansi_;
    Pieces items_;
    std::uint32_t count_ = 0;
    std::set<std::string> keys_;  // in lower case
    const FoundItem* lastKept_ = nullptr;
    bool isChanged_ = false;
};
}  // namespace

NewAPETag encodeAPETag(const TagChange& change, File& file, const FoundItems& found,
                       std::vector<CarriedItem> carried, const CodePage& ansi) {
    ItemsWriter writer(change, file, found, ansi);
    writer.run(std::move(carried));
    NewAPETag tag{Pieces(writer.block(ape::hasHeader | ape::isHeader)),
                  writer.isChanged() || found.isOld};
    const std::string footer = writer.block(ape::hasHeader);
    tag.pieces.add(std::move(writer.items()));
    tag.pieces.add(footer);
    return tag;
}

}  // namespace tavlo
