#include "collection/RowTools.h"

#include "core/Numbers.h"
#include "core/TextCase.h"
#include "core/WildcardMask.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
template <typename Convert>
void convertColumn(std::span<ID3tag> rows, const TagColumn& column, Convert convert) {
    for (ID3tag& row : rows) {
        const std::string text = column.get(row);
        if (!text.empty()) (row.*column.set)(convert(text));
    }
}

}  // namespace

void changeCase(std::span<ID3tag> rows, const TagColumn& column, LetterCase choice) {
    convertColumn(rows, column, [&](const std::string& text) {
        return choice == LetterCase::EveryWord ? capitalizeWords(text) : capitalizeFirst(text);
    });
}

void replaceText(std::span<ID3tag> rows, const TagColumn& column, std::string_view from,
                 std::string_view to) {
    if (from.empty()) return;
    convertColumn(rows, column, [&](std::string text) {
        replaceAll(text, from, to);
        return text;
    });
}

void transliterate(std::span<ID3tag> rows, const TagColumn& column, Transliteration table,
                   bool back) {
    convertColumn(rows, column, [&](const std::string& text) {
        return back ? toCyrillic(text, table) : toLatin(text, table);
    });
}

void numberRows(std::span<ID3tag> rows, int first) {
    for (ID3tag& row : rows) row.SetNumber(paddedNumber(first++, 2));
}

std::string numberFromFileName(std::string_view name) {
    std::string_view digits;
    constexpr std::string_view word = "track";
    if (WildcardMask("*Track##.*").matches(name)) {
        const std::string lower = lowerAscii(name);
        for (std::size_t at = lower.find(word); at != std::string::npos;
             at = lower.find(word, at + 1)) {
            digits = name.substr(at + word.size()).substr(0, 2);
            if (WildcardMask("##").matches(digits)) break;
        }
    } else if (WildcardMask("##[ _.-]*.*").matches(name)) {
        digits = name.substr(0, 2);
    } else if (WildcardMask("###[ _.-]*.*").matches(name)) {
        digits = name.substr(0, 3);
    }
    const auto number = parseInteger(digits);
    return number ? paddedNumber(*number, 2) : std::string();
}

}  // namespace tavlo
