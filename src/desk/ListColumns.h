#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "core/Texts.h"
#include "desk/FileRow.h"

namespace tavlo {

/// The columns of the main list, in the order that they have at first.
enum class ListColumn : std::uint8_t {
    FileName,
    Artist,
    Title,
    Mix,
    Album,
    Year,
    Track,
    Genre,
    Time,
    Bitrate,
    SampleRate,
    Type,
    Size,
    Tags,
    Comment,
    Encoder,
    Folder,
};
inline constexpr std::size_t listColumnCount = 17;

struct ListColumnRow {
    ListColumn column;
    Text caption;
    int width;  ///< in pixels at 96 a inch
    bool alignsRight;
    bool isShown;                 ///< at first
    std::optional<RowText> text;  ///< where it is one of the row's texts as it stands
};

inline constexpr std::array<ListColumnRow, listColumnCount> listColumns{{
    {ListColumn::FileName, Text::ColumnFile, 220, false, true, RowText::Name},
    {ListColumn::Artist, Text::ColumnArtist, 140, false, true, RowText::Artist},
    {ListColumn::Title, Text::ColumnTitle, 170, false, true, RowText::Title},
    {ListColumn::Mix, Text::ColumnMix, 90, false, false, RowText::Mix},
    {ListColumn::Album, Text::ColumnAlbum, 140, false, true, RowText::Album},
    {ListColumn::Year, Text::ColumnYear, 50, false, true, RowText::Year},
    {ListColumn::Track, Text::ColumnTrack, 50, true, true, RowText::Track},
    {ListColumn::Genre, Text::ColumnGenre, 90, false, true, RowText::Genre},
    {ListColumn::Time, Text::ColumnLength, 60, true, true, {}},
    {ListColumn::Bitrate, Text::ColumnBitrate, 60, true, true, {}},
    {ListColumn::SampleRate, Text::ColumnSampleRate, 70, true, false, {}},
    {ListColumn::Type, Text::ColumnType, 60, false, false, {}},
    {ListColumn::Size, Text::ColumnSize, 80, true, false, {}},
    {ListColumn::Tags, Text::ColumnTags, 70, false, false, {}},
    {ListColumn::Comment, Text::ColumnComment, 120, false, false, RowText::Comment},
    {ListColumn::Encoder, Text::ColumnEncoder, 100, false, false, RowText::Encoder},
    {ListColumn::Folder, Text::ColumnFolder, 200, false, false, RowText::Folder},
}};

constexpr const ListColumnRow& listColumnRow(ListColumn column) {
    return listColumns[static_cast<std::size_t>(column)];
}

/// What a cell shows.
std::string cellText(const FileRow& row, ListColumn column);

/// Appends bytes whose plain order is the column's: texts without case, digits in them as numbers,
/// numbers by their value.
void appendSortKey(std::string& key, const FileRow& row, ListColumn column);

}  // namespace tavlo
