#include "core/Settings.h"

#include <algorithm>

namespace tavlo {
namespace {

constexpr int longestHistory = 100;
constexpr std::string_view historySection = "History";

struct HistoryRow {
    std::string_view name;
    int first;  // number of the first item
};

const HistoryRow& rowOf(HistoryList list) {
    static constexpr std::array<HistoryRow, 4> rows{
        {{"Folder", 1}, {"RenameTemplate", 0}, {"TargetFolder", 1}, {"Server", 1}}};
    return rows[static_cast<std::size_t>(list)];
}

/// The key of the item at a 0-based place.
std::string itemKey(HistoryList list, int place) {
    return std::string(rowOf(list).name) + std::to_string(rowOf(list).first + place);
}

std::string countKey(HistoryList list) {
    return std::string(rowOf(list).name) + "sCount";
}

SettingValue defaultOf(const SettingRow& row) {
    switch (row.kind) {
        case SettingKind::Boolean:
        case SettingKind::TextBoolean:
            return row.number != 0;
        case SettingKind::Integer:
            return row.number;
        case SettingKind::Byte:
            return static_cast<std::uint8_t>(row.number);
        case SettingKind::Text:
            break;
    }
    return std::string(row.text);
}

/// An empty server cannot be asked; every other text may be empty.
bool mustHaveText(const SettingRow& row) {
    return row.setting == Setting::CDServer;
}

SettingValue within(const SettingRow& row, SettingValue value) {
    if (auto* number = std::get_if<int>(&value))
        *number = std::clamp(*number, row.lowest, row.highest);
    if (auto* byte = std::get_if<std::uint8_t>(&value))
        *byte = static_cast<std::uint8_t>(std::clamp<int>(*byte, row.lowest, row.highest));
    const auto* text = std::get_if<std::string>(&value);
    if (text != nullptr && text->empty() && mustHaveText(row)) return std::string(row.text);
    return value;
}

}  // namespace

SettingValue defaultValue(Setting setting) {
    return defaultOf(settingRow(setting));
}

Settings::Settings(RegistryEx& store) : store_(store) {
    for (const SettingRow& row : settingsTable) valueAt(row.setting) = defaultOf(row);
}

void Settings::load() {
    for (const SettingRow& row : settingsTable)
        valueAt(row.setting) =
            within(row, store_.GetSetting(row.section(), std::string(row.key), defaultOf(row)));
}

bool Settings::flag(Setting setting) const {
    const auto* flag = std::get_if<bool>(&value(setting));
    return flag != nullptr && *flag;
}

int Settings::number(Setting setting) const {
    if (const auto* byte = std::get_if<std::uint8_t>(&value(setting))) return *byte;
    const auto* number = std::get_if<int>(&value(setting));
    return number == nullptr ? 0 : *number;
}

const std::string& Settings::text(Setting setting) const {
    static const std::string none;
    const auto* text = std::get_if<std::string>(&value(setting));
    return text == nullptr ? none : *text;
}

void Settings::set(Setting setting, const SettingValue& newValue) {
    if (newValue.index() != value(setting).index()) return;
    valueAt(setting) = within(settingRow(setting), newValue);
}

bool Settings::saveRow(const SettingRow& row) {
    const std::string key(row.key);
    if (row.kind == SettingKind::TextBoolean)
        return store_.SaveSetting(row.section(), key,
                                  std::string(flag(row.setting) ? "True" : "False"));
    return store_.SaveSetting(row.section(), key, value(row.setting));
}

bool Settings::save(Setting setting) {
    return saveRow(settingRow(setting));
}

bool Settings::save(std::span<const Setting> several) {
    auto batch = store_.batch();
    bool done = true;
    for (const Setting setting : several) done = save(setting) && done;
    return batch.commit() && done;
}

bool Settings::saveGroup(SettingsGroup group) {
    auto batch = store_.batch();
    bool done = true;
    for (const SettingRow& row : settingsTable)
        if (row.group == group) done = saveRow(row) && done;
    return batch.commit() && done;
}

bool Settings::saveAll() {
    auto batch = store_.batch();
    bool done = true;
    for (const SettingRow& row : settingsTable) done = saveRow(row) && done;
    return batch.commit() && done;
}

std::vector<std::string> Settings::history(HistoryList list) const {
    const auto count = std::get<int>(store_.GetSetting(historySection, countKey(list), 0));
    const int used = std::clamp(count, 0, longestHistory);
    std::vector<std::string> texts;
    texts.reserve(static_cast<std::size_t>(used));
    for (int i = 0; i < used; ++i)
        texts.push_back(std::get<std::string>(store_.GetSetting(historySection, itemKey(list, i))));
    return texts;
}

bool Settings::saveHistory(HistoryList list, const std::vector<std::string>& texts) {
    auto batch = store_.batch();
    const int count = static_cast<int>(std::min<std::size_t>(texts.size(), longestHistory));
    const int before = static_cast<int>(history(list).size());
    bool done = store_.SaveSetting(historySection, countKey(list), count);
    for (int i = 0; i < count; ++i)
        done = store_.SaveSetting(historySection, itemKey(list, i),
                                  texts[static_cast<std::size_t>(i)]) &&
               done;
    for (int i = count; i < before; ++i) store_.DeleteSetting(historySection, itemKey(list, i));
    return batch.commit() && done;
}

}  // namespace tavlo
