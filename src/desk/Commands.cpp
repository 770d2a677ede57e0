#include "desk/Commands.h"

#include <array>

namespace tavlo {

namespace {
using State = DeskState;

bool always(const State&) {
    return true;
}
bool withFolderAtRest(const State& state) {
    return state.hasFolder && !state.isSaving;
}
bool withSelection(const State& state) {
    return state.selected > 0;
}
bool withOne(const State& state) {
    return state.selected == 1;
}
// Nothing is moved or renamed while its tags are being written.
bool withSelectionAtRest(const State& state) {
    return state.selected > 0 && !state.isSaving;
}
bool withOneAtRest(const State& state) {
    return state.selected == 1 && !state.isSaving;
}
bool withEditable(const State& state) {
    return state.editable > 0 && !state.isSaving;
}
bool withRows(const State& state) {
    return state.shown > 0;
}
bool withEdits(const State& state) {
    return (state.pending > 0 || state.hasTyped) && !state.isSaving;
}
bool withCopiedTags(const State& state) {
    return withEditable(state) && state.hasCopiedTags;
}
bool withCover(const State& state) {
    return state.hasCover;
}
bool withCoverToRemove(const State& state) {
    return withEditable(state) && (state.hasCover || state.hasCovers);
}
bool withTarget(const State& state) {
    return withSelectionAtRest(state) && state.hasTarget;
}
bool whileBusy(const State& state) {
    return state.isLoading || state.isSaving;
}
bool withEditor(const State& state) {
    return state.hasEditor;
}

constexpr std::array<CommandRow, 41> rows{{
    {Command::OpenFolder, Text::OpenFolderCaption, Text::OpenFolderTip, "Ctrl+O", {}, always},
    {Command::OpenList, Text::OpenListCaption, Text::OpenListTip, "Ctrl+Shift+L", {}, always},
    {Command::Save, Text::SaveCaption, Text::SaveTip, "Ctrl+S", {}, withEdits},
    {Command::Revert, Text::RevertCaption, Text::RevertTip, "Ctrl+Shift+Z", {}, withEdits},
    {Command::Play, Text::PlayCaption, Text::PlayTip, "Ctrl+P", {}, withSelection},
    {Command::Enqueue, Text::EnqueueCaption, Text::EnqueueTip, "Ctrl+E", {}, withSelection},
    {Command::ShowInFolder,
     Text::ShowInFolderCaption,
     Text::ShowInFolderTip,
     "Ctrl+Shift+O",
     {},
     withOne},
    {Command::Rename, Text::RenameCaption, Text::RenameTip, "F2", {}, withOneAtRest},
    {Command::Delete, Text::DeleteCaption, Text::DeleteTip, "Del", {}, withSelectionAtRest},
    {Command::CopyToTarget,
     Text::CopyToTargetCaption,
     Text::CopyToTargetTip,
     "Ctrl+Shift+T",
     {},
     withTarget},
    {Command::ListRelative,
     Text::ListRelativeCaption,
     Text::ListRelativeTip,
     "F6",
     {},
     withFolderAtRest},
    {Command::ListAbsolute,
     Text::ListAbsoluteCaption,
     Text::ListAbsoluteTip,
     "Shift+F6",
     {},
     withFolderAtRest},
    {Command::Info, Text::InfoCaption, Text::InfoTip, "Alt+Enter", {}, withSelectionAtRest},
    {Command::Quit, Text::QuitCaption, Text::QuitTip, "Ctrl+Q", {}, always},
    {Command::SelectAll, Text::SelectAllCaption, Text::SelectAllTip, "Ctrl+A", {}, withRows},
    {Command::Invert, Text::InvertCaption, Text::InvertTip, "Ctrl+Shift+A", {}, withRows},
    {Command::CopyTags, Text::CopyTagsCaption, Text::CopyTagsTip, "Ctrl+Shift+C", {}, withOne},
    {Command::PasteTags,
     Text::PasteTagsCaption,
     Text::PasteTagsTip,
     "Ctrl+Shift+V",
     {},
     withCopiedTags},
    {Command::EmptyField,
     Text::EmptyFieldCommand,
     Text::EmptyFieldTip,
     "Ctrl+Shift+E",
     {},
     withEditable},
    {Command::Find, Text::FindCaption, Text::FindTip, "Ctrl+F", {}, always},
    {Command::PickCover,
     Text::PickCoverCaption,
     Text::PickCoverTip,
     "Ctrl+Shift+P",
     {},
     withEditable},
    {Command::PasteCover,
     Text::PasteCoverCaption,
     Text::PasteCoverTip,
     "Ctrl+Shift+B",
     {},
     withEditable},
    {Command::ExportCover,
     Text::ExportCoverCaption,
     Text::ExportCoverTip,
     "Ctrl+Shift+X",
     {},
     withCover},
    {Command::RemoveCover,
     Text::RemoveCoverCaption,
     Text::RemoveCoverTip,
     "Ctrl+Shift+R",
     {},
     withCoverToRemove},
    {Command::Options, Text::OptionsCaption, Text::OptionsTip, "F12", {}, always},
    {Command::Up, Text::UpCaption, Text::UpTip, "Alt+Up", {}, always},
    {Command::Refresh, Text::RefreshCaption, Text::RefreshTip, "F5", {}, always},
    {Command::Subfolders, Text::SubfoldersCaption, Text::SubfoldersTip, "Ctrl+B",
     Setting::MainSubfolders, always},
    {Command::Stop, Text::StopCaption, Text::StopTip, "Ctrl+Shift+S", {}, whileBusy},
    {Command::Tree, Text::TreeCaption, Text::TreeTip, "F8", Setting::MainTree, always},
    {Command::Editor, Text::EditorCaption, Text::EditorTip, "F9", Setting::MainTagEditor, always},
    {Command::Cover, Text::CoverCaption, Text::CoverShownTip, "Ctrl+F9", Setting::ShowAlbumArt,
     always},
    {Command::TargetBar, Text::TargetBarCaption, Text::TargetBarTip, "F7",
     Setting::MainTargetFolder, always},
    {Command::Columns, Text::ColumnsCaption, Text::ColumnsTip, "Ctrl+K", {}, always},
    {Command::AutoSize, Text::AutoSizeCaption, Text::AutoSizeTip, "Ctrl+Shift+K", {}, withRows},
    {Command::Unsort, Text::UnsortCaption, Text::UnsortTip, "Ctrl+0", {}, always},
    {Command::GoToList, Text::GoToListCaption, Text::GoToListTip, "F3", {}, always},
    {Command::GoToFolder, Text::GoToFolderCaption, Text::GoToFolderTip, "Ctrl+L", {}, always},
    {Command::GoToEditor, Text::GoToEditorCaption, Text::GoToEditorTip, "F4", {}, withEditor},
    {Command::CommandHelp, Text::CommandHelpCaption, Text::CommandHelpTip, "F1", {}, always},
    {Command::About, Text::AboutCaption, Text::AboutTip, "Shift+F1", {}, always},
}};
static_assert([] {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (static_cast<std::size_t>(rows[i].command) != i) return false;
    }
    return rows.back().command == Command::About;
}());

using Item = std::optional<Command>;
constexpr Item line{};

constexpr std::array fileMenu{Item{Command::OpenFolder},
                              Item{Command::OpenList},
                              line,
                              Item{Command::Save},
                              Item{Command::Revert},
                              line,
                              Item{Command::Play},
                              Item{Command::Enqueue},
                              Item{Command::ShowInFolder},
                              line,
                              Item{Command::Rename},
                              Item{Command::Delete},
                              Item{Command::CopyToTarget},
                              line,
                              Item{Command::ListRelative},
                              Item{Command::ListAbsolute},
                              line,
                              Item{Command::Info},
                              line,
                              Item{Command::Quit}};
constexpr std::array editMenu{Item{Command::SelectAll},
                              Item{Command::Invert},
                              Item{Command::Find},
                              line,
                              Item{Command::CopyTags},
                              Item{Command::PasteTags},
                              Item{Command::EmptyField},
                              line,
                              Item{Command::PickCover},
                              Item{Command::PasteCover},
                              Item{Command::ExportCover},
                              Item{Command::RemoveCover},
                              line,
                              Item{Command::Options}};
constexpr std::array viewMenu{Item{Command::Up},
                              Item{Command::Refresh},
                              Item{Command::Subfolders},
                              Item{Command::Stop},
                              line,
                              Item{Command::Tree},
                              Item{Command::Editor},
                              Item{Command::Cover},
                              Item{Command::TargetBar},
                              line,
                              Item{Command::Columns},
                              Item{Command::AutoSize},
                              Item{Command::Unsort},
                              line,
                              Item{Command::GoToList},
                              Item{Command::GoToFolder},
                              Item{Command::GoToEditor}};
constexpr std::array helpMenu{Item{Command::CommandHelp}, Item{Command::About}};
}  // namespace

std::span<const CommandRow> commandRows() {
    return rows;
}

const CommandRow& commandRow(Command command) {
    return rows[static_cast<std::size_t>(command)];
}

std::span<const MenuRow> menuRows() {
    static constexpr std::array menus{
        MenuRow{Text::MenuFile, fileMenu}, MenuRow{Text::MenuEdit, editMenu},
        MenuRow{Text::MenuView, viewMenu}, MenuRow{Text::MenuHelp, helpMenu}};
    return menus;
}

}  // namespace tavlo
