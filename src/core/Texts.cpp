#include "core/Texts.h"

#include <algorithm>
#include <optional>

#include "core/Numbers.h"
#include "platform/PlainText.h"

namespace tavlo {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view placeholder = "%1";

constexpr bool numbersAscend() {
    for (std::size_t i = 1; i < textTable.size(); ++i)
        if (textTable[i - 1].number >= textTable[i].number) return false;
    return true;
}
static_assert(numbersAscend());

const TextRow* findRow(Text text) {
    const auto* row = std::ranges::lower_bound(textTable, text, {}, &TextRow::number);
    return row != textTable.end() && row->number == text ? row : nullptr;
}

std::optional<Text> numberOf(std::string_view line) {
    const auto number = parseInteger(line.substr(0, line.find('=')));
    if (!number || findRow(static_cast<Text>(*number)) == nullptr) return std::nullopt;
    return static_cast<Text>(*number);
}

}  // namespace

void Texts::addReplacements(std::string_view languageFile) {
    if (languageFile.starts_with(byteOrderMark)) languageFile.remove_prefix(byteOrderMark.size());
    while (!languageFile.empty()) {
        const std::string_view line = takeLine(languageFile);
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        if (const auto number = numberOf(line)) replacements_[*number] = line.substr(equals + 1);
    }
}

std::string Texts::get(Text text) const {
    const auto replacement = replacements_.find(text);
    if (replacement != replacements_.end()) return replacement->second;
    const TextRow* row = findRow(text);
    if (row == nullptr) return {};
    return std::string(language_ == Language::Russian ? row->russian : row->english);
}

std::string Texts::get(Text text, std::string_view argument) const {
    std::string result = get(text);
    replaceAll(result, placeholder, argument);
    return result;
}

std::string Texts::languageFileTemplate() const {
    std::string file;
    for (const TextRow& row : textTable)
        file += std::to_string(static_cast<int>(row.number)) + '=' + get(row.number) + '\n';
    return file;
}

Language languageFor(std::string_view systemLanguage) {
    return systemLanguage == "ru" ? Language::Russian : Language::English;
}

}  // namespace tavlo
