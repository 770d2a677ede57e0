#include "desk/ListColumns.h"

#include <string_view>

#include "core/Numbers.h"
#include "core/TextCase.h"

namespace tavlo {

namespace {
static_assert([] {
    for (std::size_t i = 0; i < listColumns.size(); ++i) {
        if (static_cast<std::size_t>(listColumns[i].column) != i) return false;
    }
    return true;
}());

std::string numberOrNothing(int number) {
    return number == 0 ? std::string() : std::to_string(number);
}

std::string timeText(const FileRow& row) {
    if (!row.hasStream) return {};
    return std::to_string(row.seconds / 60) + ":" + paddedNumber(row.seconds % 60, 2);
}

// "~" stands for an average.
std::string bitrateText(const FileRow& row) {
    return (row.isVbr && row.bitrate != 0 ? "~" : "") + numberOrNothing(row.bitrate);
}

// In units of 1024 bytes, rounded up, with thousands apart: a column of one unit compares well.
std::string sizeText(const FileRow& row) {
    constexpr std::uint64_t unit = 1024;
    std::string digits = std::to_string((row.size + unit - 1) / unit);
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, "\u00A0");
    return digits;
}

std::string tagsText(const FileRow& row) {
    std::string tags;
    const auto add = [&](bool isThere, std::string_view name) {
        if (!isThere) return;
        if (!tags.empty()) tags += ' ';
        tags += name;
    };
    add(row.hasID3v2, "v2");
    add(row.hasAPEv2, "APE");
    add(row.hasLyrics, "Lyrics");
    add(row.hasID3v1, "v1");
    return tags;
}

void appendNumber(std::string& key, std::uint64_t number) {
    for (int shift = 56; shift >= 0; shift -= 8) key += static_cast<char>(number >> shift & 0xFFU);
}
}  // namespace

std::string cellText(const FileRow& row, ListColumn column) {
    if (const auto text = listColumnRow(column).text) return std::string(row.text(*text));
    switch (column) {
        case ListColumn::Time:
            return timeText(row);
        case ListColumn::Bitrate:
            return bitrateText(row);
        case ListColumn::SampleRate:
            return numberOrNothing(row.sampleRate);
        case ListColumn::Type:
            return std::string(fileTypeName(row.type));
        case ListColumn::Size:
            return sizeText(row);
        default:
            return tagsText(row);
    }
}

void appendSortKey(std::string& key, const FileRow& row, ListColumn column) {
    switch (column) {
        case ListColumn::Time:
            return appendNumber(key, static_cast<std::uint64_t>(row.seconds));
        case ListColumn::Bitrate:
            return appendNumber(key, static_cast<std::uint64_t>(row.bitrate));
        case ListColumn::SampleRate:
            return appendNumber(key, static_cast<std::uint64_t>(row.sampleRate));
        case ListColumn::Size:
            return appendNumber(key, row.size);
        default:
            break;
    }
    if (const auto text = listColumnRow(column).text) {
        appendNaturalKey(key, row.text(*text));
    } else {
        key += cellText(row, column);
    }
}

}  // namespace tavlo
