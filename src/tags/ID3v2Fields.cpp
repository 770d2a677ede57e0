#include "tags/ID3v2Fields.h"

#include <algorithm>
#include <array>

#include "platform/Utf8.h"
#include "tags/FieldSetters.h"
#include "tags/GenreText.h"
#include "tags/TagText.h"

namespace tavlo {

namespace {
constexpr std::size_t yearDigits = 4;

template <std::string cID3v2ext::*field>
std::string longText(const ID3tag& record, int) {
    return std::string(trimBlanks(record.ID3v2Ext.*field));
}

template <auto getter>
std::string gotten(const ID3tag& record, int) {
    return std::string((record.*getter)());
}

std::string numberText(int number) {
    return number > 0 ? std::to_string(number) : std::string();
}

void setRecordingTime(ID3tag& record, std::string_view text) {
    record.SetYear(utf8Head(text, yearDigits));
    if (text.size() > yearDigits) record.ID3v2Ext.RecordingTime = text;
}

void setYear(ID3tag& record, std::string_view text) {
    if (record.ID3v2Ext.RecordingTime.empty()) record.SetYear(text);
}

std::string yearText(const ID3tag& record, int majorVersion) {
    return majorVersion == 4 ? std::string() : std::string(record.GetYear());
}

// Version 3 has no frame for a month alone, so that the longer text stands there as well.
std::string recordingTimeText(const ID3tag& record, int majorVersion) {
    const std::string& whole = record.ID3v2Ext.RecordingTime;
    const std::string_view year = record.GetYear();
    if (!whole.empty() && utf8Head(whole, yearDigits) == year) return whole;
    return majorVersion == 4 ? std::string(year) : std::string();
}

void setDiskNumber(ID3tag& record, std::string_view text) {
    const std::size_t slash = text.find('/');
    record.DiskNumber = leadingNumber(text);
    if (slash != std::string_view::npos) record.DisksCount = leadingNumber(text.substr(slash + 1));
}

void setGenre(ID3tag& record, std::string_view text) {
    GenreText genre = parseGenreText(text);
    if (genre.number == noGenre && genre.text.empty()) return;
    record.Genre = genre.number;
    record.ID3v2Ext.Genre = std::move(genre.text);
}

// clang-format off
constexpr std::array<FieldFrame, fieldFrameCount> rows{{
    {"TIT2", "TT2", FrameKind::Text, fieldSet(Field::Title, Field::Mix),
     [](ID3tag& r, std::string_view text) { r.SetTitleMixV2(text); },
     gotten<&ID3tag::GetTitleMixV2>},
    {"TPE1", "TP1", FrameKind::Text, fieldSet(Field::Artist),
     [](ID3tag& r, std::string_view text) { r.SetArtist(text); }, gotten<&ID3tag::GetArtist>},
    {"TALB", "TAL", FrameKind::Text, fieldSet(Field::Album),
     [](ID3tag& r, std::string_view text) { r.SetAlbum(text); }, gotten<&ID3tag::GetAlbum>},
    {"COMM", "COM", FrameKind::Comment, fieldSet(Field::Comment),
     [](ID3tag& r, std::string_view text) { r.SetComment(text); }, gotten<&ID3tag::GetComment>},
    {"TCOM", "TCM", FrameKind::Text, fieldSet(Field::Composer),
     setField<&cID3v2ext::Composer>, longText<&cID3v2ext::Composer>},
    {"TCON", "TCO", FrameKind::Genre, fieldSet(Field::Genre),
     setGenre,
     [](const ID3tag& r, int) { return formatGenreText(r.Genre, r.GetGenre()); }},
    {"TOPE", "", FrameKind::Text, fieldSet(Field::OriginalArtist),
     setField<&cID3v2ext::OriginalArtist>, longText<&cID3v2ext::OriginalArtist>},
    {"TCOP", "", FrameKind::Text, fieldSet(Field::CopyRight),
     setField<&cID3v2ext::CopyRight>, longText<&cID3v2ext::CopyRight>},
    {"TENC", "TEN", FrameKind::Text, fieldSet(Field::EncodedBy),
     setField<&cID3v2ext::EncodedBy>, longText<&cID3v2ext::EncodedBy>},
    {"TRCK", "TRK", FrameKind::Text, fieldSet(Field::Number, Field::TracksCount),
     setTrack,
     [](const ID3tag& r, int) { return r.GetNumberAndCount(); }},
    {"TYER", "TYE", FrameKind::Text, fieldSet(Field::Year),
     setYear, yearText},
    {"TDRC", "", FrameKind::Text, fieldSet(Field::Year),
     setRecordingTime, recordingTimeText},
    {"WXXX", "", FrameKind::Url, fieldSet(Field::URL),
     setField<&cID3v2ext::URL>, longText<&cID3v2ext::URL>},
    {"TSSE", "", FrameKind::Text, fieldSet(Field::EncoderInfo),
     setField<&cID3v2ext::EncoderInfo>, longText<&cID3v2ext::EncoderInfo>},
    {"TXXX", "TXX", FrameKind::UserText, fieldSet(Field::EncodingHistory),
     setField<&cID3v2ext::EncodingHistory>, longText<&cID3v2ext::EncodingHistory>},
    {"TCMP", "", FrameKind::Text, fieldSet(Field::Compilation),
     [](ID3tag& r, std::string_view text) { r.IsPartOfCompilation = leadingNumber(text) != 0; },
     [](const ID3tag& r, int) { return std::string(r.IsPartOfCompilation ? "1" : ""); }},
    {"TPOS", "TPA", FrameKind::Text, fieldSet(Field::DiskNumber, Field::DisksCount),
     setDiskNumber,
     [](const ID3tag& r, int) { return withCount(numberText(r.DiskNumber), r.DisksCount); }},
    {"TBPM", "TBP", FrameKind::Text, fieldSet(Field::BPM),
     [](ID3tag& r, std::string_view text) { r.BPM = leadingNumber(text); },
     [](const ID3tag& r, int) { return numberText(r.BPM); }},
    {"APIC", "PIC", FrameKind::Picture, fieldSet(Field::AlbumArt),
     nullptr, nullptr},
}};
// clang-format on
}  // namespace

std::span<const FieldFrame, fieldFrameCount> fieldFrames() {
    return rows;
}

const FieldFrame* findFieldFrame(std::string_view id, int majorVersion) {
    // Some writers of version 3 fill the names of version 2 up.
    if (majorVersion == 3 && (id[3] == '\0' || id[3] == ' ')) {
        return findFieldFrame(id.substr(0, 3), 2);
    }
    const auto* row = std::find_if(rows.begin(), rows.end(), [&](const FieldFrame& f) {
        return (majorVersion == 2 ? f.oldId : f.id) == id;
    });
    return row == rows.end() ? nullptr : row;
}

}  // namespace tavlo
