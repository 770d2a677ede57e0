#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Settings.h"
#include "desk/OptionPages.h"

namespace tavlo {

/// A row that cannot be stored as it is.
struct OptionFault {
    const OptionPage* page;
    const OptionRow* row;
    std::string message;  ///< one sentence that names the row
};

/// The options while they are edited: nothing outside changes until they are saved.
class OptionDraft {
 public:
    OptionDraft(Settings& settings, ShellIntegration& shell, PathStyle system = nativePathStyle());

    /// Of a check box.
    bool flag(const OptionRow& row) const;
    void setFlag(const OptionRow& row, bool on);

    /// What the field of a text, path or number holds, as it was typed.
    const std::string& text(const OptionRow& row) const;
    void type(const OptionRow& row, std::string text);

    /// The place of a choice's value among its choices; nothing where it is none of them, which
    /// stays so unless another is chosen.
    std::optional<std::size_t> choice(const OptionRow& row) const;
    void choose(const OptionRow& row, std::size_t place);

    /// Whether the row's condition is met.
    bool isEnabled(const OptionRow& row) const;

    /// Puts the defaults of a page's settings in; entries of the shell have none.
    void putDefaults(const OptionPage& page);
    void putDefaults();

    /// The settings that would be stored now, in the table's order.
    std::vector<Setting> changed() const;
    bool isChanged() const;

    /// The first row that is enabled and holds what cannot be stored.
    std::optional<OptionFault> firstFault(const Texts& texts) const;

    enum class Saved { Done, NotStored, ShellNotWritten };
    /// Stores what changed. What is not stored does not count in this run either. A number that
    /// cannot be stored stays as it was; ask `firstFault` before.
    Saved save();

 private:
    const std::string& textOf(Setting setting) const {
        return texts_[static_cast<std::size_t>(setting)];
    }
    std::string& textOf(Setting setting) { return texts_[static_cast<std::size_t>(setting)]; }
    std::optional<std::string> faultOf(const OptionRow& row, const Texts& texts) const;
    bool saveSettings();
    bool saveShell();

    Settings& settings_;
    ShellIntegration& shell_;
    PathStyle system_;
    // Every setting as text: what stands in its field.
    std::array<std::string, settingsTable.size()> texts_;
    std::array<bool, shellEntryCount> entries_{}, entriesBefore_{};
};

}  // namespace tavlo
