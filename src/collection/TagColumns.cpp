#include "collection/TagColumns.h"

#include <algorithm>
#include <array>

#include "core/DecodedText.h"
#include "core/OptionTable.h"
#include "core/TextCase.h"
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

using OptionText = std::optional<std::string> JobOptions::*;

std::string_view wordOf(OptionText place) {
    const auto* row = std::ranges::find_if(optionTable, [&](const OptionRow& option) {
        const auto* text = std::get_if<TakeText>(&option.action);
        return text != nullptr && text->target == place;
    });
    return row == optionTable.end() ? std::string_view() : row->names.front();
}

// Tags keep numbers without leading zeros, genres in the spelling of their list, and no blanks at
// the ends.
bool isSameValue(std::string_view shown, std::string_view wanted) {
    const auto isLoose = [](char c) { return c == ' ' || c == '0'; };
    std::string left(shown);
    std::string right(wanted);
    std::erase_if(left, isLoose);
    std::erase_if(right, isLoose);
    return equalsNoCase(left, right);
}
}  // namespace

std::optional<JobOptions> decodedOptions(Services& services) {
    const CodePage ansi(services.ansiCodePage);
    JobOptions options = services.options;
    std::vector<OptionText> places{&JobOptions::nameTemplate};
    for (const TagColumn& column : columns) places.push_back(column.option);
    bool areTexts = true;
    for (const OptionText place : places) {
        auto& value = options.*place;
        if (!value) continue;
        auto text = decodedText(*value, ansi);
        if (text) {
            value = std::move(text);
        } else {
            areTexts = false;
            services.errors.report(Text::OptionNotDecoded, wordOf(place));
        }
    }
    if (areTexts) return options;
    services.errors.report(Text::NothingDone);
    return std::nullopt;
}

bool staysOld(std::string_view before, std::string_view wanted, std::string_view shown) {
    const bool isOld = isSameValue(wanted, "") || shown == before;
    return isOld && !isSameValue(shown, wanted);
}

std::span<const TagColumn> tagColumns() {
    return columns;
}

}  // namespace tavlo
