#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "core/SettingsTable.h"
#include "core/Texts.h"

namespace tavlo {

/// Everything that a person can ask the main window to do.
enum class Command : std::uint8_t {
    OpenFolder,
    OpenList,
    Save,
    Revert,
    Play,
    Enqueue,
    ShowInFolder,
    Rename,
    Delete,
    CopyToTarget,
    ListRelative,
    ListAbsolute,
    Info,
    Quit,
    SelectAll,
    Invert,
    CopyTags,
    PasteTags,
    EmptyField,
    Find,
    PickCover,
    PasteCover,
    ExportCover,
    RemoveCover,
    Options,
    Up,
    Refresh,
    Subfolders,
    Stop,
    Tree,
    Editor,
    Cover,
    TargetBar,
    Columns,
    AutoSize,
    Unsort,
    GoToList,
    GoToFolder,
    GoToEditor,
    CommandHelp,
    About,
};

/// What the window is at, as far as it decides about commands.
struct DeskState {
    std::size_t selected = 0;
    std::size_t editable = 0;  ///< of them: their tags can be written
    std::size_t shown = 0;
    std::size_t pending = 0;  ///< files with edits that were not saved
    bool hasTyped = false;    ///< the editor holds changes that no row has yet
    bool hasFolder = false;   ///< what is shown is one folder
    bool isLoading = false;
    bool isSaving = false;
    bool hasCopiedTags = false;
    bool hasCover = false;   ///< one that all selected files share is shown
    bool hasCovers = false;  ///< some of the selected files have one
    bool hasTarget = false;
    bool hasEditor = false;  ///< it is shown
};

struct CommandRow {
    Command command;
    Text caption, tip;
    std::string_view key;            ///< "Ctrl+S"; empty where it has none beside its menu
    std::optional<Setting> setting;  ///< the switch that it turns
    bool (*isPossible)(const DeskState&);
};
/// Indexed by `Command`.
std::span<const CommandRow> commandRows();
const CommandRow& commandRow(Command command);

/// Where nothing stands a line parts two groups.
struct MenuRow {
    Text title;
    std::span<const std::optional<Command>> commands;
};
std::span<const MenuRow> menuRows();

}  // namespace tavlo
