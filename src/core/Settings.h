#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/RegistryEx.h"
#include "core/SettingsTable.h"

namespace tavlo {

/// Remembered lists, newest first as the caller keeps them.
enum class HistoryList { Folders, RenameTemplates, TargetFolders, Servers };

/// A setting's default, in its own kind.
SettingValue defaultValue(Setting setting);

/// Every setting of `settingsTable` in memory; nothing is stored until a save is asked for.
class Settings {
 public:
    /// Holds the defaults until `load`.
    explicit Settings(RegistryEx& store);

    /// Reads every setting; a missing or unreadable one gets its default, a number out of its
    /// range the nearest that is in it.
    void load();

    bool flag(Setting setting) const;
    int number(Setting setting) const;
    const std::string& text(Setting setting) const;

    /// For this run; a value of another kind than the setting's is ignored.
    void set(Setting setting, const SettingValue& value);

    /// In the setting's own kind.
    const SettingValue& value(Setting setting) const {
        return values_[static_cast<std::size_t>(setting)];
    }

    bool save(Setting setting);
    /// Several in one go.
    bool save(std::span<const Setting> several);
    bool saveGroup(SettingsGroup group);
    bool saveAll();

    /// At most 100 texts; empty when none were stored.
    std::vector<std::string> history(HistoryList list) const;

    /// Stores the first 100 texts and removes what a longer list left.
    bool saveHistory(HistoryList list, const std::vector<std::string>& texts);

 private:
    SettingValue& valueAt(Setting setting) { return values_[static_cast<std::size_t>(setting)]; }
    bool saveRow(const SettingRow& row);

    RegistryEx& store_;
    std::array<SettingValue, settingsTable.size()> values_;  // each in its row's kind
};

}  // namespace tavlo
