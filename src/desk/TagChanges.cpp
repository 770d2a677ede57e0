#include "desk/TagChanges.h"

#include <algorithm>
#include <optional>

#include "core/Numbers.h"
#include "platform/PlainText.h"
#include "tags/Picture.h"

namespace tavlo {

namespace {
template <RowText which>
std::string textOfRow(const FileRow& row) {
    return std::string(row.text(which));
}

template <auto setter>
void setBy(ID3tag& record, std::string_view text) {
    (record.*setter)(text);
}

template <std::string cID3v2ext::*member>
void setLong(ID3tag& record, std::string_view text) {
    record.ID3v2Ext.*member = trimBlanks(text);
}

std::string numberText(int number) {
    return number == 0 ? std::string() : std::to_string(number);
}

std::string diskOf(const FileRow& row) {
    if (row.disksCount == 0) return numberText(row.diskNumber);
    return std::to_string(row.diskNumber) + "/" + std::to_string(row.disksCount);
}

// An empty text is no number at all; nothing for what is none.
std::optional<int> numberIn(std::string_view text) {
    text = trimBlanks(text);
    if (text.empty()) return 0;
    const auto number = parseInteger(text);
    return number && *number >= 0 ? number : std::nullopt;
}

void setDisk(ID3tag& record, std::string_view text) {
    const std::size_t slash = text.find('/');
    const auto number = numberIn(text.substr(0, slash));
    const auto count =
        slash == std::string_view::npos ? std::optional(0) : numberIn(text.substr(slash + 1));
    if (!number || !count) return;
    record.DiskNumber = *number;
    record.DisksCount = *count;
}

void setBpm(ID3tag& record, std::string_view text) {
    if (const auto number = numberIn(text)) record.BPM = *number;
}

// A count that is not given any more goes as well.
void setTrack(ID3tag& record, std::string_view text) {
    record.TracksCount = 0;
    record.SetNumber(text);
}

constexpr std::array<TagFieldRow, tagFieldCount> fields{{
    {TagField::Artist, Text::ColumnArtist, textOfRow<RowText::Artist>, setBy<&ID3tag::SetArtist>},
    {TagField::Title, Text::ColumnTitle, textOfRow<RowText::Title>, setBy<&ID3tag::SetTitle>},
    {TagField::Mix, Text::ColumnMix, textOfRow<RowText::Mix>, setBy<&ID3tag::SetMix>},
    {TagField::Album, Text::ColumnAlbum, textOfRow<RowText::Album>, setBy<&ID3tag::SetAlbum>},
    {TagField::Year, Text::ColumnYear, textOfRow<RowText::Year>, setBy<&ID3tag::SetYear>},
    {TagField::Track, Text::ColumnTrack, textOfRow<RowText::Track>, setTrack},
    {TagField::Disk, Text::FieldDisk, diskOf, setDisk},
    {TagField::Genre, Text::ColumnGenre, textOfRow<RowText::Genre>, setBy<&ID3tag::SetGenre>},
    {TagField::Comment, Text::ColumnComment, textOfRow<RowText::Comment>,
     setBy<&ID3tag::SetComment>},
    {TagField::Composer, Text::ColumnComposer, textOfRow<RowText::Composer>,
     setLong<&cID3v2ext::Composer>},
    {TagField::OriginalArtist, Text::FieldOriginalArtist, textOfRow<RowText::OriginalArtist>,
     setLong<&cID3v2ext::OriginalArtist>},
    {TagField::CopyRight, Text::FieldCopyright, textOfRow<RowText::CopyRight>,
     setLong<&cID3v2ext::CopyRight>},
    {TagField::Url, Text::FieldUrl, textOfRow<RowText::Url>, setLong<&cID3v2ext::URL>},
    {TagField::EncodedBy, Text::FieldEncodedBy, textOfRow<RowText::EncodedBy>,
     setLong<&cID3v2ext::EncodedBy>},
    {TagField::Bpm, Text::FieldBpm, [](const FileRow& row) { return numberText(row.bpm); }, setBpm},
    {TagField::Compilation, Text::FieldCompilation,
     [](const FileRow& row) { return std::string(row.isCompilation ? "1" : ""); },
     [](ID3tag& record, std::string_view text) { record.IsPartOfCompilation = text == "1"; }},
}};
static_assert(fields.back().field == TagField::Compilation);
}  // namespace

std::span<const TagFieldRow, tagFieldCount> tagFields() {
    return fields;
}

void TagChanges::add(const TagChanges& later) {
    for (const auto& [field, text] : later.texts) texts[field] = text;
    if (later.picture) picture = later.picture;
}

void TagChanges::applyTo(ID3tag& record) const {
    for (const auto& [field, text] : texts) tagFieldRow(field).set(record, text);
    if (texts.contains(TagField::Title) && !texts.contains(TagField::Mix)) record.SplitTitle();
    if (!picture) return;
    record.AlbumArt = *picture;
    record.AlbumArtType = pictureType(picture->MIME);
}

void PendingEdits::add(std::span<const RowId> rows, const TagChanges& changes) {
    if (changes.isEmpty()) return;
    std::map<std::shared_ptr<const TagChanges>, std::shared_ptr<const TagChanges>> merged;
    for (const RowId row : rows) {
        std::shared_ptr<const TagChanges>& kept = changes_[row];
        std::shared_ptr<const TagChanges>& sum = merged[kept];
        if (!sum) {
            TagChanges both = kept ? *kept : TagChanges{};
            both.add(changes);
            sum = std::make_shared<const TagChanges>(std::move(both));
        }
        kept = sum;
    }
}

void PendingEdits::drop(std::span<const RowId> rows) {
    for (const RowId row : rows) changes_.erase(row);
}

std::shared_ptr<const TagChanges> PendingEdits::of(RowId row) const {
    const auto found = changes_.find(row);
    return found == changes_.end() ? nullptr : found->second;
}

std::vector<RowId> PendingEdits::rows() const {
    std::vector<RowId> rows;
    rows.reserve(changes_.size());
    for (const auto& [row, changes] : changes_) rows.push_back(row);
    std::ranges::sort(rows);
    return rows;
}

std::string PendingEdits::value(const FileTable& table, RowId row, TagField field) const {
    if (const auto changes = of(row)) {
        const auto text = changes->texts.find(field);
        if (text != changes->texts.end()) return text->second;
    }
    return tagFieldRow(field).get(table.row(row));
}

CommonValue PendingEdits::common(const FileTable& table, std::span<const RowId> rows,
                                 TagField field) const {
    if (rows.empty()) return {};
    CommonValue common{value(table, rows.front(), field), false};
    for (const RowId row : rows.subspan(1)) {
        if (value(table, row, field) == common.text) continue;
        common.differs = true;
        break;
    }
    return common;
}

}  // namespace tavlo
