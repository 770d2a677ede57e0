#include "desk/OptionDraft.h"

#include <algorithm>

#include "core/Numbers.h"
#include "platform/PlainText.h"

namespace tavlo {

namespace {
constexpr std::string_view onText = "1", offText = "0";

std::string asText(const SettingValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* flag = std::get_if<bool>(&value)) return std::string(*flag ? onText : offText);
    if (const auto* byte = std::get_if<std::uint8_t>(&value)) return std::to_string(*byte);
    return std::to_string(std::get<int>(value));
}

/// In the kind that a setting has; nothing for a text that is no number where one is needed.
std::optional<SettingValue> asValue(const std::string& text, Setting setting) {
    const SettingKind kind = settingRow(setting).kind;
    if (kind == SettingKind::Text) return text;
    const auto number = parseInteger(trimBlanks(text));
    if (!number) return std::nullopt;
    if (kind == SettingKind::Integer) return *number;
    if (kind == SettingKind::Byte) return static_cast<std::uint8_t>(std::clamp(*number, 0, 255));
    return *number != 0;
}

bool isWithin(const OptionRow& row, std::string_view text) {
    const auto number = parseInteger(trimBlanks(text));
    return number && *number >= row.lowest && *number <= row.highest;
}

bool isText(const OptionRow& row) {
    return row.kind == OptionKind::Line || row.kind == OptionKind::File ||
           row.kind == OptionKind::Program || row.kind == OptionKind::Folder;
}
}  // namespace

OptionDraft::OptionDraft(Settings& settings, ShellIntegration& shell, PathStyle system)
    : settings_(settings), shell_(shell), system_(system) {
    for (const SettingRow& row : settingsTable)
        textOf(row.setting) = asText(settings.value(row.setting));
    for (std::size_t i = 0; i < shellEntryCount && system == PathStyle::Windows; ++i)
        entries_[i] = shell.isOn(static_cast<ShellEntry>(i));
    entriesBefore_ = entries_;
}

bool OptionDraft::flag(const OptionRow& row) const {
    if (row.kind == OptionKind::Shell) return entries_[static_cast<std::size_t>(row.entry)];
    return textOf(row.setting) != offText;
}

void OptionDraft::setFlag(const OptionRow& row, bool on) {
    if (row.kind == OptionKind::Shell) {
        entries_[static_cast<std::size_t>(row.entry)] = on;
    } else {
        textOf(row.setting) = on ? onText : offText;
    }
}

const std::string& OptionDraft::text(const OptionRow& row) const {
    return textOf(row.setting);
}

void OptionDraft::type(const OptionRow& row, std::string text) {
    textOf(row.setting) = std::move(text);
}

std::optional<std::size_t> OptionDraft::choice(const OptionRow& row) const {
    const auto found = std::ranges::find_if(row.choices, [&](const OptionChoice& choice) {
        return sameAscii(choice.stored, textOf(row.setting));
    });
    if (found == row.choices.end()) return std::nullopt;
    return static_cast<std::size_t>(found - row.choices.begin());
}

void OptionDraft::choose(const OptionRow& row, std::size_t place) {
    if (place < row.choices.size()) textOf(row.setting) = row.choices[place].stored;
}

bool OptionDraft::isEnabled(const OptionRow& row) const {
    if (!row.condition) return true;
    return (textOf(row.condition->setting) != offText) == row.condition->wanted;
}

void OptionDraft::putDefaults(const OptionPage& page) {
    for (const OptionRow& row : page.rows)
        if (row.hasSetting() && row.isHere(system_))
            textOf(row.setting) = asText(defaultValue(row.setting));
}

void OptionDraft::putDefaults() {
    for (const OptionPage& page : optionPages()) putDefaults(page);
}

std::vector<Setting> OptionDraft::changed() const {
    std::vector<Setting> result;
    for (const OptionPage& page : optionPages())
        for (const OptionRow& row : page.rows) {
            if (!row.hasSetting()) continue;
            const auto value = asValue(text(row), row.setting);
            const bool isGood = row.kind != OptionKind::Number || isWithin(row, text(row));
            if (value && isGood && *value != settings_.value(row.setting))
                result.push_back(row.setting);
        }
    std::ranges::sort(result);
    return result;
}

bool OptionDraft::isChanged() const {
    return entries_ != entriesBefore_ || !changed().empty();
}

std::optional<std::string> OptionDraft::faultOf(const OptionRow& row, const Texts& texts) const {
    if (!row.hasSetting() || !row.isHere(system_) || !isEnabled(row)) return std::nullopt;
    const std::string name = texts.get(row.caption) + ": ";
    if (row.kind == OptionKind::Number && !isWithin(row, text(row)))
        return name + texts.get(Text::OptNumberWanted, rangeText(row));
    if (row.isNeeded && isText(row) && trimBlanks(text(row)).empty())
        return name + texts.get(Text::OptTextWanted);
    return std::nullopt;
}

std::optional<OptionFault> OptionDraft::firstFault(const Texts& texts) const {
    for (const OptionPage& page : optionPages())
        for (const OptionRow& row : page.rows)
            if (auto message = faultOf(row, texts))
                return OptionFault{&page, &row, std::move(*message)};
    return std::nullopt;
}

bool OptionDraft::saveSettings() {
    const std::vector<Setting> settings = changed();
    if (settings.empty()) return true;
    std::vector<SettingValue> before;
    before.reserve(settings.size());
    for (const Setting setting : settings) {
        before.push_back(settings_.value(setting));
        settings_.set(setting, *asValue(textOf(setting), setting));
    }
    if (settings_.save(settings)) return true;
    for (std::size_t i = 0; i < settings.size(); ++i) settings_.set(settings[i], before[i]);
    return false;
}

bool OptionDraft::saveShell() {
    bool done = true;
    for (std::size_t i = 0; i < shellEntryCount; ++i) {
        if (entries_[i] == entriesBefore_[i]) continue;
        if (shell_.set(static_cast<ShellEntry>(i), entries_[i])) {
            entriesBefore_[i] = entries_[i];
        } else {
            done = false;
        }
    }
    return done;
}

OptionDraft::Saved OptionDraft::save() {
    if (!saveSettings()) return Saved::NotStored;
    return saveShell() ? Saved::Done : Saved::ShellNotWritten;
}

}  // namespace tavlo
