#include <algorithm>
#include <vector>

#include "core/TextCase.h"
#include "tags/APEv2.h"
#include "tags/APEv2Items.h"
#include "tags/ByteWriting.h"
#include "tags/Picture.h"

namespace tavlo {

namespace {
class ItemsWriter {
 public:
    explicit ItemsWriter(const ID3tag& record) : record_(record) {}

    void run() {
        for (std::size_t row = 0; row < fieldItems().size(); ++row) addField(row);
        if (cFormatExt ID3tag::*const own = formatItems(record_.FileType)) {
            for (const auto& [name, value] : (record_.*own).Items) {
                if (!isAmong(keys_, name)) add({0, name, value});
            }
        }
        addPicture();
        addKept();
    }

    [[nodiscard]] const std::string& items() const { return items_; }
    [[nodiscard]] std::uint32_t count() const { return static_cast<std::uint32_t>(keys_.size()); }

 private:
    void addField(std::size_t row) {
        const std::string field = fieldItems()[row].get(record_);
        if (field.empty()) return;
        std::string_view text = field;
        for (const TagWording& wording : record_.ItemWordings) {
            if (wording.row == row && wording.field == field) text = wording.text;
        }
        add({0, fieldItems()[row].key, text});
    }

    void addPicture() {
        const cAlbumArt& art = record_.AlbumArt;
        if (art.Data.empty()) return;
        std::string value = pictureItemName(art);
        value += '\0';
        value += textOf(art.Data);
        add({ape::binaryItem, ape::pictureKey, value});
    }

    // Two keys of one tag may not differ in case only.
    void addKept() {
        const std::vector<std::string> written = keys_;
        ByteCursor cursor(bytesOfText(record_.UnknownItems));
        while (const auto item = takeItem(cursor)) {
            if (!isAmong(written, item->key)) add(*item);
        }
    }

    static bool isAmong(const std::vector<std::string>& keys, std::string_view wanted) {
        return std::any_of(keys.begin(), keys.end(),
                           [&](const std::string& key) { return equalsNoCase(key, wanted); });
    }

    void add(const APEItem& item) {
        appendItem(items_, item);
        keys_.emplace_back(item.key);
    }

    const ID3tag& record_;
    std::string items_;
    std::vector<std::string> keys_;
};

std::string block(const ItemsWriter& writer, std::uint32_t flags) {
    std::string bytes(ape::tagMark);
    appendLittleEndian(bytes, ape::version2, 4);
    appendLittleEndian(bytes, static_cast<std::uint32_t>(writer.items().size() + ape::footerSize),
                       4);
    appendLittleEndian(bytes, writer.count(), 4);
    appendLittleEndian(bytes, flags, 4);
    bytes.resize(ape::footerSize, '\0');
    return bytes;
}
}  // namespace

std::string encodeAPETag(const ID3tag& record) {
    ItemsWriter writer(record);
    writer.run();
    return block(writer, ape::hasHeader | ape::isHeader) + writer.items() +
           block(writer, ape::hasHeader);
}

}  // namespace tavlo
