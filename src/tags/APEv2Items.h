#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/ByteCursor.h"
#include "tags/ID3tag.h"

namespace tavlo {

/// The marks and sizes of an APEv2 tag (APE tags, version 2: header, footer and items).
namespace ape {
inline constexpr std::string_view tagMark = "APETAGEX";
inline constexpr std::size_t footerSize = 32, itemHeadSize = 8, longestKey = 255;
inline constexpr std::uint32_t version1 = 1000, version2 = 2000;
inline constexpr std::uint32_t hasHeader = 0x80000000, isHeader = 0x20000000;
inline constexpr std::uint32_t binaryItem = 2;
inline constexpr std::string_view pictureKey = "Cover Art (front)";
}  // namespace ape

/// A text item that the program understands, and the field that it feeds and is written from.
struct FieldItem {
    std::string_view key;
    FieldSet fields;  ///< that it tells
    bool isOwn;       ///< only in files that have no other tag
    void (*set)(ID3tag&, std::string_view);
    std::string (*get)(const ID3tag&);  ///< an empty text writes no item
};

/// In the order in which they are written.
std::span<const FieldItem> fieldItems();
/// The row of a key, compared exactly; null where the item is not interpreted.
const FieldItem* findFieldItem(std::string_view key);
/// The key that differs from this one at most in case, which no two keys of a tag may; null where
/// none does.
const FieldItem* findFieldItemNoCase(std::string_view key);

struct APEItem {
    std::uint32_t flags = 0;
    std::string_view key, value;
};
/// Takes one item off; nothing where it is broken.
std::optional<APEItem> takeItem(ByteCursor& cursor);
void appendItem(std::string& out, const APEItem& item);

}  // namespace tavlo
