#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/PathText.h"
#include "core/SettingsTable.h"
#include "core/Texts.h"
#include "desk/ShellIntegration.h"

namespace tavlo {

/// How a row of the options is shown and edited.
enum class OptionKind {
    Heading,
    Flag,     ///< a check box
    Line,     ///< one line of text
    File,     ///< the path of a file, with a way to look for it
    Program,  ///< the same of a program
    Folder,   ///< the same of a folder
    Number,   ///< a whole number within a range
    Choice,   ///< one of `choices`
    Shell,    ///< a check box for an entry of the system's
    Tools,    ///< the list of the programs that are not there
};

/// What a setting is to be, as text also where it is a number, and how that is called.
struct OptionChoice {
    std::string_view stored;
    Text caption;
};

/// Another setting, a flag, that lets a row be edited when it is as `wanted`.
struct OptionCondition {
    Setting setting;
    bool wanted;
};

struct OptionRow {
    OptionKind kind;
    Text caption;
    Setting setting = {};   ///< of all but headings, shell entries and tools
    ShellEntry entry = {};  ///< of shell entries
    std::optional<Text> tip = {};
    std::optional<OptionCondition> condition = {};
    std::span<const OptionChoice> choices = {};
    int lowest = 0;
    int highest = 0;
    bool isNeeded = false;       ///< must not be empty
    bool onlyWindows = false;    ///< means nothing on other systems
    std::string_view name = {};  ///< of its control, where it is not made of the setting's key

    constexpr OptionRow with(Text text) const {
        OptionRow row = *this;
        row.tip = text;
        return row;
    }
    constexpr OptionRow when(Setting flag, bool wanted = true) const {
        OptionRow row = *this;
        row.condition = OptionCondition{flag, wanted};
        return row;
    }
    constexpr OptionRow needed() const {
        OptionRow row = *this;
        row.isNeeded = true;
        return row;
    }
    constexpr OptionRow onWindows() const {
        OptionRow row = *this;
        row.onlyWindows = true;
        return row;
    }
    constexpr bool hasSetting() const {
        return kind != OptionKind::Heading && kind != OptionKind::Shell &&
               kind != OptionKind::Tools;
    }
    constexpr bool isHere(PathStyle system) const {
        return !onlyWindows || system == PathStyle::Windows;
    }
};

struct OptionPage {
    Text title;
    std::span<const OptionRow> rows;
};

/// All pages in their order, also those of other systems.
std::span<const OptionPage> optionPages();

/// The name of a row's control: its kind ("chk", "txt", "cmb", "lbl", "lst") and the setting's key.
std::string controlName(const OptionRow& row);

/// "1\u20139": the range of a number's row.
std::string rangeText(const OptionRow& row);

/// A page and those of its rows that were asked for, in their order.
struct OptionMatch {
    const OptionPage* page;
    std::vector<const OptionRow*> rows;
};

/// The rows that have every word in their texts, their page's title or the heading above them,
/// without case; a heading comes along with its rows. No words: all rows. Only what means
/// something on the system, and no page without rows.
std::vector<OptionMatch> findOptions(const Texts& texts, std::string_view words,
                                     PathStyle system = nativePathStyle());

}  // namespace tavlo
