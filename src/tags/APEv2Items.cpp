#include "tags/APEv2Items.h"

#include <algorithm>
#include <array>

#include "core/TextCase.h"
#include "platform/PlainText.h"
#include "tags/ByteWriting.h"
#include "tags/FieldGetters.h"
#include "tags/FieldSetters.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
template <std::string cID3v2ext::*field>
std::string longText(const ID3tag& record) {
    return std::string(trimBlanks(record.ID3v2Ext.*field));
}

std::string trackText(const ID3tag& record) {
    return record.IsMP3File() ? record.GetNumberAndCount() : record.GetNumber();
}

// Musepack and its kind have no other tag for the counts. "3/12" tells one already.
template <int ID3tag::*count>
std::string countText(const ID3tag& record) {
    const bool isOwn = (record.FileType & FileType::Ape2Only) != 0 && record.*count > 0;
    const bool isTold =
        count == &ID3tag::TracksCount && record.ID3v2Ext.TrackNumber.find('/') != std::string::npos;
    return isOwn && !isTold ? std::to_string(record.*count) : std::string();
}

template <int ID3tag::*count>
void setCount(ID3tag& record, std::string_view text) {
    record.*count = leadingNumber(text);
}

// clang-format off
constexpr std::array<FieldItem, 14> rows{{
    {"Track", fieldSet(Field::Number, Field::TracksCount), false,
     setTrack, trackText},
    {"Artist", fieldSet(Field::Artist), false,
     [](ID3tag& r, std::string_view text) { r.SetArtist(text); },
     gotten<&ID3tag::GetArtist>},
    {"Title", fieldSet(Field::Title, Field::Mix), false,
     [](ID3tag& r, std::string_view text) { r.SetTitleMix(text); },
     gotten<&ID3tag::GetTitleMix>},
    {"Album", fieldSet(Field::Album), false,
     [](ID3tag& r, std::string_view text) { r.SetAlbum(text); },
     gotten<&ID3tag::GetAlbum>},
    {"Year", fieldSet(Field::Year), false,
     [](ID3tag& r, std::string_view text) { r.SetYear(text); }, gotten<&ID3tag::GetYear>},
    {"Genre", fieldSet(Field::Genre), false,
     [](ID3tag& r, std::string_view text) { r.SetGenre(text); },
     gotten<&ID3tag::GetGenre>},
    {"Comment", fieldSet(Field::Comment), false,
     [](ID3tag& r, std::string_view text) { r.SetComment(text); },
     gotten<&ID3tag::GetComment>},
    {"Composer", fieldSet(Field::Composer), false,
     setField<&cID3v2ext::Composer>, longText<&cID3v2ext::Composer>},
    {"Copyright", fieldSet(Field::CopyRight), false,
     setField<&cID3v2ext::CopyRight>, longText<&cID3v2ext::CopyRight>},
    {"Encoded by", fieldSet(Field::EncodedBy), false,
     setField<&cID3v2ext::EncodedBy>, longText<&cID3v2ext::EncodedBy>},
    {"ENCODER_INFO", fieldSet(Field::EncodingHistory), false,
     setField<&cID3v2ext::EncodingHistory>,
     longText<&cID3v2ext::EncodingHistory>},
    {"TracksCount", fieldSet(Field::TracksCount, Field::Number), true,
     setCount<&ID3tag::TracksCount>, countText<&ID3tag::TracksCount>},
    {"DiskNumber", fieldSet(Field::DiskNumber), true,
     setCount<&ID3tag::DiskNumber>, countText<&ID3tag::DiskNumber>},
    {"DisksCount", fieldSet(Field::DisksCount), true,
     setCount<&ID3tag::DisksCount>, countText<&ID3tag::DisksCount>},
}};
// clang-format on
}  // namespace

std::span<const FieldItem> fieldItems() {
    return rows;
}

const FieldItem* findFieldItem(std::string_view key) {
    const auto* row = std::find_if(rows.begin(), rows.end(),
                                   [&](const FieldItem& item) { return item.key == key; });
    return row == rows.end() ? nullptr : row;
}

const FieldItem* findFieldItemNoCase(std::string_view key) {
    const auto* row = std::find_if(rows.begin(), rows.end(), [&](const FieldItem& item) {
        return equalsNoCase(item.key, key);
    });
    return row == rows.end() ? nullptr : row;
}

std::optional<APEItem> takeItem(ByteCursor& cursor) {
    const auto size = cursor.littleEndian(4);
    const auto flags = cursor.littleEndian(4);
    if (!size || !flags) return std::nullopt;
    const std::string_view key = textOf(cursor.takeUntil(0));
    const auto value = cursor.take(*size);
    if (!value) return std::nullopt;
    return APEItem{*flags, key, textOf(*value)};
}

void appendItem(std::string& out, const APEItem& item) {
    appendLittleEndian(out, static_cast<std::uint32_t>(item.value.size()), 4);
    appendLittleEndian(out, item.flags, 4);
    out += item.key;
    out += '\0';
    out += item.value;
}

}  // namespace tavlo
