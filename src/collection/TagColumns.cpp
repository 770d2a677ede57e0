#include "collection/TagColumns.h"

#include <array>

#include "tags/FieldGetters.h"

namespace tavlo {

namespace {
// clang-format off
constexpr std::array<TagColumn, 7> columns{{
    {"Artist", Text::ColumnArtist, &BasicFields::artist, &JobOptions::artist,
     gotten<&ID3tag::GetArtist>, &ID3tag::SetArtist},
    {"Title", Text::ColumnTitle, &BasicFields::title, &JobOptions::title,
     gotten<&ID3tag::GetTitle>, &ID3tag::SetTitle},
    {"Mix", Text::ColumnMix, &BasicFields::mix, &JobOptions::mix,
     gotten<&ID3tag::GetMix>, &ID3tag::SetMix},
    {"Album", Text::ColumnAlbum, &BasicFields::album, &JobOptions::album,
     gotten<&ID3tag::GetAlbum>, &ID3tag::SetAlbum},
    {"Year", Text::ColumnYear, &BasicFields::year, &JobOptions::year,
     gotten<&ID3tag::GetYear>, &ID3tag::SetYear},
    {"TrackNumber", Text::ColumnTrack, &BasicFields::number, &JobOptions::trackNumber,
     [](const ID3tag& record) { return record.GetNumberAndCount(); }, &ID3tag::SetNumber},
    {"Genre", Text::ColumnGenre, &BasicFields::genre, &JobOptions::genre,
     gotten<&ID3tag::GetGenre>, &ID3tag::SetGenre},
}};
// clang-format on
}  // namespace

std::span<const TagColumn> tagColumns() {
    return columns;
}

}  // namespace tavlo
