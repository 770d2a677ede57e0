#include "collection/ListTable.h"

#include <algorithm>
#include <array>

#include "platform/PlainText.h"
#include "platform/Utf8.h"

namespace tavlo {

namespace {
constexpr std::size_t leastWidth = 14;  // a column is not made narrower to fit
constexpr std::string_view columnGap = "  ";
constexpr std::string_view cutMark = "…";

std::string numberOrNothing(int number) {
    return number == 0 ? std::string() : std::to_string(number);
}

std::string tagsOf(const ID3tag& record) {
    struct Kind {
        bool present;
        std::string_view name;
    };
    const std::array<Kind, 4> kinds{{{record.IsID3v2Present, "v2"},
                                     {record.IsAPE2Present, "APE"},
                                     {record.IsLyricsPresent, "Lyrics"},
                                     {record.IsID3v1Present, "v1"}}};
    std::string tags;
    for (const Kind& kind : kinds) {
        if (!kind.present) continue;
        if (!tags.empty()) tags += ' ';
        tags += kind.name;
    }
    return tags;
}

struct Column {
    Text caption;
    bool alignsRight;
    std::string (*value)(const ListRow&);
};

constexpr std::array<Column, 11> columns{{
    {Text::ColumnFile, false, [](const ListRow& row) { return row.subPath; }},
    {Text::ColumnArtist, false,
     [](const ListRow& row) { return std::string(row.record.GetArtist()); }},
    {Text::ColumnTitle, false, [](const ListRow& row) { return row.record.GetTitleMixV2(); }},
    {Text::ColumnAlbum, false,
     [](const ListRow& row) { return std::string(row.record.GetAlbum()); }},
    {Text::ColumnYear, false, [](const ListRow& row) { return std::string(row.record.GetYear()); }},
    {Text::ColumnTrack, true, [](const ListRow& row) { return row.record.GetNumber(); }},
    {Text::ColumnGenre, false,
     [](const ListRow& row) { return std::string(row.record.GetGenre()); }},
    {Text::ColumnLength, true,
     [](const ListRow& row) {
         return row.record.Seconds == 0 && row.record.Layer == 0 ? std::string()
                                                                 : row.record.Time();
     }},
    {Text::ColumnBitrate, true,
     [](const ListRow& row) { return numberOrNothing(row.record.Bitrate); }},
    {Text::ColumnSampleRate, true,
     [](const ListRow& row) { return numberOrNothing(row.record.SampleRate); }},
    {Text::ColumnTags, false, [](const ListRow& row) { return tagsOf(row.record); }},
}};

struct WidthRange {
    char32_t first, last;
    std::size_t width;
};
constexpr std::array<WidthRange, 10> unusualWidths{{
    {0x0300, 0x036F, 0},  // combining marks
    {0x200B, 0x200F, 0},
    {0x1100, 0x115F, 2},  // East Asian letters
    {0x2E80, 0xA4CF, 2},
    {0xAC00, 0xD7A3, 2},
    {0xF900, 0xFAFF, 2},
    {0xFE30, 0xFE6F, 2},
    {0xFF00, 0xFF60, 2},
    {0x1F300, 0x1FAFF, 2},
    {0x20000, 0x3FFFD, 2},
}};

std::size_t widthOf(char32_t point) {
    for (const WidthRange& range : unusualWidths) {
        if (point >= range.first && point <= range.last) return range.width;
    }
    return 1;
}

// What a terminal can show: no control characters (C1 included), bytes that are no text as U+FFFD.
std::string displayText(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const CodePoint next = firstCodePoint(text);
        const bool control = next.value < 0x20 || (next.value >= 0x7F && next.value < 0xA0);
        appendUtf8(shown, control ? U' ' : next.value);
        text.remove_prefix(next.length);
    }
    return shown;
}

// The text in exactly `width` places.
std::string fitted(std::string_view text, std::size_t width, bool alignsRight) {
    const std::size_t wanted = displayWidth(text);
    if (wanted <= width) {
        const std::string blanks(width - wanted, ' ');
        return alignsRight ? blanks + std::string(text) : std::string(text) + blanks;
    }
    std::string cut;
    std::size_t used = 1;  // the mark's place
    while (!text.empty()) {
        const CodePoint next = firstCodePoint(text);
        if (used + widthOf(next.value) > width) break;
        used += widthOf(next.value);
        cut.append(text.substr(0, next.length));
        text.remove_prefix(next.length);
    }
    return cut.append(cutMark).append(width - used, ' ');
}

using Widths = std::array<std::size_t, columns.size()>;

// The columns in which a narrow terminal is saved places first.
constexpr std::array<Text, 6> dispensable{Text::ColumnSampleRate, Text::ColumnTags,
                                          Text::ColumnGenre,      Text::ColumnBitrate,
                                          Text::ColumnYear,       Text::ColumnAlbum};

std::size_t lineWidth(const Widths& widths) {
    std::size_t total = 0;
    for (const std::size_t width : widths) {
        if (width > 0) total += width + columnGap.size();
    }
    return total - columnGap.size();
}

// Leaves columns out (width 0) until those that stay could be made narrow enough.
void leaveOut(Widths& widths, std::size_t terminalColumns) {
    for (const Text caption : dispensable) {
        Widths least = widths;
        for (std::size_t& width : least) width = std::min(width, leastWidth);
        if (lineWidth(least) <= terminalColumns) return;
        const auto* column = std::find_if(columns.begin(), columns.end(),
                                          [&](const Column& c) { return c.caption == caption; });
        widths[static_cast<std::size_t>(column - columns.begin())] = 0;
    }
}

// Takes places off the widest columns until the line fits or none can give any more.
void narrow(Widths& widths, std::size_t terminalColumns) {
    for (std::size_t total = lineWidth(widths); total > terminalColumns; --total) {
        std::size_t& widest = *std::max_element(widths.begin(), widths.end());
        if (widest <= leastWidth) return;
        --widest;
    }
}
}  // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        const CodePoint next = firstCodePoint(text);
        width += widthOf(next.value);
        text.remove_prefix(next.length);
    }
    return width;
}

void appendTabLine(std::string& out, const ListRow& row) {
    const std::size_t start = out.size();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (out.size() > start || i > 0) out += '\t';
        out += withoutControls(i == 0 ? row.path : columns[i].value(row));
    }
    out += '\n';
}

void ListTable::add(const ListRow& row) {
    std::vector<std::string> cells;
    cells.reserve(columns.size());
    for (const Column& column : columns) cells.push_back(displayText(column.value(row)));
    cells_.push_back(std::move(cells));
}

std::string ListTable::print(const Texts& texts, std::size_t terminalColumns) const {
    std::vector<std::string> captions;
    Widths widths{};
    for (std::size_t i = 0; i < columns.size(); ++i) {
        captions.push_back(texts.get(columns[i].caption));
        widths[i] = displayWidth(captions[i]);
        for (const auto& cells : cells_) widths[i] = std::max(widths[i], displayWidth(cells[i]));
    }
    leaveOut(widths, terminalColumns);
    narrow(widths, terminalColumns);
    std::string out;
    const auto printLine = [&](const std::vector<std::string>& cells) {
        std::string line;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (widths[i] == 0) continue;
            if (!line.empty()) line += columnGap;
            line += fitted(cells[i], widths[i], columns[i].alignsRight);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + '\n';
    };
    printLine(captions);
    for (const auto& cells : cells_) printLine(cells);
    return out;
}

}  // namespace tavlo
