#include "tags/FieldEdits.h"

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
    Mark (*mark)(const ID3tag&);
    void (*take)(ID3tag&, const ID3tag&);
};

template <auto getter, auto setter>
constexpr EditableField field{
    [](const ID3tag& r) { return markOf((r.*getter)()); },
    [](ID3tag& to, const ID3tag& from) { (to.*setter)((from.*getter)()); }};

template <auto member>
constexpr EditableField longField{
    [](const ID3tag& r) { return markOf(trimBlanks(r.ID3v2Ext.*member)); },
    [](ID3tag& to, const ID3tag& from) { to.ID3v2Ext.*member = from.ID3v2Ext.*member; }};

template <auto member>
constexpr EditableField number{[](const ID3tag& r) { return static_cast<Mark>(r.*member); },
                               [](ID3tag& to, const ID3tag& from) { to.*member = from.*member; }};

constexpr EditableField genre{
    [](const ID3tag& r) { return markOf(r.GetGenre()) ^ static_cast<Mark>(noGenre - r.Genre); },
    [](ID3tag& to, const ID3tag& from) {
        to.ID3v2Ext.Genre = from.GetGenre();
        to.Genre = from.Genre;
    }};

constexpr EditableField comment{[](const ID3tag& r) { return markOf(r.GetComment()); },
                                [](ID3tag& to, const ID3tag& from) {
                                    to.SetComment(from.GetComment());
                                    to.ID3v2Ext.CommentLanguage.clear();
                                }};

constexpr EditableField albumArt{[](const ID3tag& r) {
                                     const cAlbumArt& art = r.AlbumArt;
                                     if (art.Size == 0 && art.Data.empty()) return Mark{0};
                                     return markOf(art.MIME) * 3 + markOf(art.Description) * 5 +
                                            art.PictureType + markOf(textOf(art.Data)) +
                                            static_cast<Mark>(art.Size);
                                 },
                                 [](ID3tag& to, const ID3tag& from) {
                                     to.AlbumArt = from.AlbumArt;
                                     to.AlbumArtType = from.AlbumArtType;
                                 }};

constexpr std::array<EditableField, editableFieldCount> editableFields{{
    field<&ID3tag::GetArtist, &ID3tag::SetArtist>,
    field<&ID3tag::GetTitle, &ID3tag::SetTitle>,
    field<&ID3tag::GetMix, &ID3tag::SetMix>,
    field<&ID3tag::GetAlbum, &ID3tag::SetAlbum>,
    field<&ID3tag::GetYear, &ID3tag::SetYear>,
    field<&ID3tag::GetNumber, &ID3tag::SetNumber>,
    comment,
    genre,
    longField<&cID3v2ext::Composer>,
    longField<&cID3v2ext::OriginalArtist>,
    longField<&cID3v2ext::CopyRight>,
    longField<&cID3v2ext::EncodedBy>,
    longField<&cID3v2ext::URL>,
    longField<&cID3v2ext::EncoderInfo>,
    longField<&cID3v2ext::EncodingHistory>,
    number<&ID3tag::TracksCount>,
    number<&ID3tag::DiskNumber>,
    number<&ID3tag::DisksCount>,
    number<&ID3tag::BPM>,
    number<&ID3tag::IsPartOfCompilation>,
    albumArt,
}};
}  // namespace

void markAsRead(ID3tag& record) {
    for (std::size_t i = 0; i < editableFieldCount; ++i) {
        record.MarksAsRead[i] = editableFields[i].mark(record);
    }
}

void takeEdits(ID3tag& target, const ID3tag& edited) {
    for (std::size_t i = 0; i < editableFieldCount; ++i) {
        const EditableField& row = editableFields[i];
        if (row.mark(edited) != edited.MarksAsRead[i]) row.take(target, edited);
    }
    if (cFormatExt ID3tag::*const own = formatItems(edited.FileType)) target.*own = edited.*own;
}

std::vector<std::string> tagsMissing(const ID3tag& source, const ID3tag& result) {
    // In the order of `editableFields`; those without a name belong to the encoder.
    constexpr std::array<std::string_view, editableFieldCount> names{
        "Artist",      "Title",      "Mix",        "Album",    "Year",
        "TrackNumber", "Comment",    "Genre",      "Composer", "OriginalArtist",
        "CopyRight",   "EncodedBy",  "URL",        "",         "",
        "TracksCount", "DiskNumber", "DisksCount", "BPM",      "IsPartOfCompilation",
        "AlbumArt"};
    std::vector<std::string> missing;
    for (std::size_t i = 0; i < editableFieldCount; ++i) {
        const Mark mark = editableFields[i].mark(source);
        const bool isThere = mark == 0 || mark == editableFields[i].mark(result);
        if (!isThere && !names[i].empty()) missing.emplace_back(names[i]);
    }
    const bool hasOthers = !source.ID3v2Ext.UnknownFrames.empty() ||
                           !source.ID3v2Ext.UnreadRest.empty() || source.ID3v2Ext.bDamaged ||
                           !source.UnknownItems.empty() || source.IsLyricsPresent;
    if (hasOthers) missing.emplace_back("Others");
    return missing;
}

}  // namespace tavlo
