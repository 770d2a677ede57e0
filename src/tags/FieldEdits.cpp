#include "tags/FieldEdits.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/ByteCursor.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
using Mark = std::uint32_t;

// 0 stands for nothing at all.
Mark markOf(std::string_view text) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U;
    std::uint64_t state = text.size();
    while (!text.empty()) {
        std::uint64_t word = 0;
        const std::size_t taken = std::min(text.size(), sizeof word);
        std::memcpy(&word, text.data(), taken);
        state = (state ^ word) * factor;
        state ^= state >> 29U;
        text.remove_prefix(taken);
    }
    return static_cast<Mark>(state) ^ static_cast<Mark>(state >> 32U);
}

struct EditableField {
    Field field;
    std::string_view name;  // in the list's JSON; empty where it belongs to the encoder
    Mark (*mark)(const ID3tag&);
    void (*take)(ID3tag&, const ID3tag&);
};

template <auto getter, auto setter>
constexpr EditableField field(Field id, std::string_view name) {
    return {id, name, [](const ID3tag& r) { return markOf((r.*getter)()); },
            [](ID3tag& to, const ID3tag& from) { (to.*setter)((from.*getter)()); }};
}

template <auto member>
constexpr EditableField longField(Field id, std::string_view name) {
    return {id, name, [](const ID3tag& r) { return markOf(trimBlanks(r.ID3v2Ext.*member)); },
            [](ID3tag& to, const ID3tag& from) { to.ID3v2Ext.*member = from.ID3v2Ext.*member; }};
}

template <auto member>
constexpr EditableField number(Field id, std::string_view name) {
    return {id, name, [](const ID3tag& r) { return static_cast<Mark>(r.*member); },
            [](ID3tag& to, const ID3tag& from) { to.*member = from.*member; }};
}

Mark markOfGenre(const ID3tag& r) {
    return markOf(r.GetGenre()) ^ static_cast<Mark>(noGenre - r.Genre);
}

void takeGenre(ID3tag& to, const ID3tag& from) {
    to.ID3v2Ext.Genre = from.GetGenre();
    to.Genre = from.Genre;
}

Mark markOfArt(const ID3tag& r) {
    const cAlbumArt& art = r.AlbumArt;
    if (art.Size == 0 && art.Data.empty()) return Mark{0};
    return markOf(art.MIME) * 3 + markOf(art.Description) * 5 + art.PictureType +
           markOf(textOf(art.Data)) + static_cast<Mark>(art.Size);
}

void takeArt(ID3tag& to, const ID3tag& from) {
    to.AlbumArt = from.AlbumArt;
    to.AlbumArt.At = 0;
    to.AlbumArtType = from.AlbumArtType;
}

constexpr std::array<EditableField, editableFieldCount> editableFields{{
    field<&ID3tag::GetArtist, &ID3tag::SetArtist>(Field::Artist, "Artist"),
    field<&ID3tag::GetTitle, &ID3tag::SetTitle>(Field::Title, "Title"),
    field<&ID3tag::GetMix, &ID3tag::SetMix>(Field::Mix, "Mix"),
    field<&ID3tag::GetAlbum, &ID3tag::SetAlbum>(Field::Album, "Album"),
    field<&ID3tag::GetYear, &ID3tag::SetYear>(Field::Year, "Year"),
    field<&ID3tag::GetNumber, &ID3tag::SetNumber>(Field::Number, "TrackNumber"),
    field<&ID3tag::GetComment, &ID3tag::SetComment>(Field::Comment, "Comment"),
    {Field::Genre, "Genre", markOfGenre, takeGenre},
    longField<&cID3v2ext::Composer>(Field::Composer, "Composer"),
    longField<&cID3v2ext::OriginalArtist>(Field::OriginalArtist, "OriginalArtist"),
    longField<&cID3v2ext::CopyRight>(Field::CopyRight, "CopyRight"),
    longField<&cID3v2ext::EncodedBy>(Field::EncodedBy, "EncodedBy"),
    longField<&cID3v2ext::URL>(Field::URL, "URL"),
    longField<&cID3v2ext::EncoderInfo>(Field::EncoderInfo, ""),
    longField<&cID3v2ext::EncodingHistory>(Field::EncodingHistory, ""),
    number<&ID3tag::TracksCount>(Field::TracksCount, "TracksCount"),
    number<&ID3tag::DiskNumber>(Field::DiskNumber, "DiskNumber"),
    number<&ID3tag::DisksCount>(Field::DisksCount, "DisksCount"),
    number<&ID3tag::BPM>(Field::BPM, "BPM"),
    number<&ID3tag::IsPartOfCompilation>(Field::Compilation, "IsPartOfCompilation"),
    {Field::AlbumArt, "AlbumArt", markOfArt, takeArt},
}};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < editableFieldCount; ++i) {
        if (static_cast<std::size_t>(editableFields[i].field) != i) return false;
    }
    return true;
}
static_assert(isInOrder());
}  // namespace

void markAsRead(ID3tag& record) {
    for (std::size_t i = 0; i < editableFieldCount; ++i) {
        record.MarksAsRead[i] = editableFields[i].mark(record);
    }
}

void markAllEdited(ID3tag& record) {
    const auto art = static_cast<std::size_t>(Field::AlbumArt);
    const Mark picture = record.MarksAsRead[art];
    record.MarksAsRead = {};
    record.MarksAsRead[art] = picture;
}

FieldSet takeEdits(ID3tag& target, const ID3tag& edited) {
    FieldSet taken = 0;
    for (std::size_t i = 0; i < editableFieldCount; ++i) {
        const EditableField& row = editableFields[i];
        if (row.mark(edited) == edited.MarksAsRead[i]) continue;
        row.take(target, edited);
        taken |= fieldSet(row.field);
    }
    if (cFormatExt ID3tag::*const own = formatItems(edited.FileType)) target.*own = edited.*own;
    return taken;
}

bool sameFields(const ID3tag& a, const ID3tag& b, FieldSet fields) {
    return std::ranges::all_of(editableFields, [&](const EditableField& row) {
        return (fields & fieldSet(row.field)) == 0 || row.mark(a) == row.mark(b);
    });
}

std::vector<std::string> tagsMissing(const ID3tag& source, const ID3tag& result) {
    std::vector<std::string> missing;
    for (const EditableField& row : editableFields) {
        const Mark mark = row.mark(source);
        const bool isThere = mark == 0 || mark == row.mark(result);
        if (!isThere && !row.name.empty()) missing.emplace_back(row.name);
    }
    const bool hasOthers = !source.ID3v2Ext.UnknownFrames.empty() || source.ID3v2Ext.bUnreadRest ||
                           source.ID3v2Ext.bDamaged || !source.UnknownItems.empty() ||
                           source.IsLyricsPresent;
    if (hasOthers) missing.emplace_back("Others");
    return missing;
}

}  // namespace tavlo
