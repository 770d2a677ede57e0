#include "desk/ListColumns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <vector>

#include "support/ListRows.h"

namespace tavlo::test {
namespace {

using Change = std::function<void(FileRow&)>;

TEST(ListColumns, CellsShowWhatAPersonReads) {
    const struct {
        ListColumn column;
        Change change;
        std::string shown;
    } cases[] = {
        {ListColumn::Time, [](FileRow&) {}, ""},
        {ListColumn::Time, [](FileRow& r) { r.hasStream = true; }, "0:00"},
        {ListColumn::Time, [](FileRow& r) { r.hasStream = true, r.seconds = 3665; }, "61:05"},
        {ListColumn::Bitrate, [](FileRow& r) { r.isVbr = true; }, ""},
        {ListColumn::Bitrate, [](FileRow& r) { r.bitrate = 128; }, "128"},
        {ListColumn::Bitrate, [](FileRow& r) { r.isVbr = true, r.bitrate = 192; }, "~192"},
        {ListColumn::SampleRate, [](FileRow&) {}, ""},
        {ListColumn::SampleRate, [](FileRow& r) { r.sampleRate = 44100; }, "44100"},
        {ListColumn::Size, [](FileRow&) {}, "0"},
        {ListColumn::Size, [](FileRow& r) { r.size = 1; }, "1"},
        {ListColumn::Size, [](FileRow& r) { r.size = 1024 * 999; }, "999"},
        {ListColumn::Size, [](FileRow& r) { r.size = 1024 * 1000; }, "1\u00A0000"},
        {ListColumn::Size, [](FileRow& r) { r.size = 1024ULL * 1234567; }, "1\u00A0234\u00A0567"},
        {ListColumn::Type, [](FileRow&) {}, ""},
        {ListColumn::Type, [](FileRow& r) { r.type = FileType::Flac; }, "FLAC"},
        {ListColumn::Tags, [](FileRow&) {}, ""},
        {ListColumn::Tags, [](FileRow& r) { r.hasID3v1 = true; }, "v1"},
        {ListColumn::Tags,
         [](FileRow& r) { r.hasID3v1 = r.hasID3v2 = r.hasAPEv2 = r.hasLyrics = true; },
         "v2 APE Lyrics v1"},
    };
    for (const auto& c : cases) {
        FileRow row;
        c.change(row);
        EXPECT_EQ(cellText(row, c.column), c.shown) << static_cast<int>(c.column);
    }
}

// Rows that differ in one column, from the first to the last.
std::vector<FileRow> ascending(ListColumn column) {
    std::vector<FileRow> rows;
    const auto add = [&](const Change& change) { change(rows.emplace_back()); };
    if (const auto text = listColumnRow(column).text) {
        // Letters in the order of their code points: that of ё comes behind я.
        for (const char* value : {"", "2", "7/12", "10", "alpha 2", "Alpha 10", "beta", "Gamma",
                                  "жук", "Яма", "ёж", "\xFF"}) {
            add([&](FileRow& row) { row.texts[static_cast<std::size_t>(*text)] = value; });
        }
        return rows;
    }
    for (const std::int32_t number : {0, 2, 10, 255, 256, 70000, 0x7FFFFFFF}) {
        const std::map<ListColumn, Change> numbers{
            {ListColumn::Time, [&](FileRow& row) { row.seconds = number; }},
            {ListColumn::Bitrate, [&](FileRow& row) { row.bitrate = number; }},
            {ListColumn::SampleRate, [&](FileRow& row) { row.sampleRate = number; }},
            {ListColumn::Size,
             [&](FileRow& row) { row.size = static_cast<std::uint64_t>(number) << 9U; }}};
        if (numbers.contains(column)) add(numbers.at(column));
    }
    if (!rows.empty()) return rows;
    if (column == ListColumn::Type) {
        for (const FileTypes type : {FileType::None, FileType::Ape, FileType::Flac, FileType::Mp3})
            add([&](FileRow& row) { row.type = type; });
        return rows;
    }
    add([](FileRow&) {});
    add([](FileRow& row) { row.hasAPEv2 = true; });
    add([](FileRow& row) { row.hasID3v1 = true; });
    add([](FileRow& row) { row.hasID3v2 = true; });
    add([](FileRow& row) { row.hasID3v1 = row.hasID3v2 = true; });
    return rows;
}

// Each row three times, all of them mixed; the row's number in `ascending` goes by its id.
struct Mixed {
    explicit Mixed(const std::vector<FileRow>& rows) {
        for (std::size_t i = 0; i < rows.size() * 3; ++i) {
            ranks.push_back(i * 11 % rows.size());
            mixed.push_back(rows[ranks.back()]);
        }
    }
    [[nodiscard]] std::vector<RowId> expected(bool descending) const {
        std::vector<RowId> ids;
        for (RowId id = 0; id < ranks.size(); ++id) ids.push_back(id);
        std::ranges::stable_sort(ids, [&](RowId a, RowId b) {
            return descending ? ranks[b] < ranks[a] : ranks[a] < ranks[b];
        });
        return ids;
    }

    std::vector<std::size_t> ranks;
    std::vector<FileRow> mixed;
};

TEST(ListColumns, EverySortingIsStableAndByValue) {
    for (const ListColumnRow& column : listColumns) {
        const Mixed rows(ascending(column.column));
        FileTable table;
        table.append(rows.mixed, std::make_shared<TextStore>());
        for (const bool descending : {false, true, false}) {
            table.unsort();
            table.sortBy(column.column, descending);
            const std::vector<RowId> found(table.shown().begin(), table.shown().end());
            EXPECT_EQ(found, rows.expected(descending))
                << static_cast<int>(column.column) << (descending ? " descending" : "");
        }
    }
}

TEST(ListColumns, SortingByASecondColumnKeepsTheFirstOne) {
    ListRows list;
    for (const char* name : {"1", "2", "3", "4"}) list.add(name);
    for (const std::size_t i : {0U, 1U, 2U, 3U}) {
        list.set(list.rows[i], RowText::Artist, i % 2 == 0 ? "b" : "A");
        list.rows[i].seconds = i < 2 ? 100 : 20;
    }
    FileTable table;
    list.appendTo(table);
    table.sortBy(ListColumn::Artist, false);
    EXPECT_EQ(shownNames(table), "2 4 1 3");
    table.sortBy(ListColumn::Time, true);
    EXPECT_EQ(shownNames(table), "2 1 4 3");
    table.sortBy(ListColumn::FileName, true);
    EXPECT_EQ(shownNames(table), "4 3 2 1");
    table.unsort();
    EXPECT_EQ(shownNames(table), "1 2 3 4");
}

}  // namespace
}  // namespace tavlo::test
