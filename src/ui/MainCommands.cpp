#include <wx/aboutdlg.h>
#include <wx/app.h>
#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/utils.h>

#include <algorithm>
#include <array>

#include "core/Help.h"
#include "core/PathText.h"
#include "desk/PlayerCommand.h"
#include "platform/FileSystem.h"
#include "platform/SystemOpen.h"
#include "ui/ColumnsDialog.h"
#include "ui/FileInfoDialog.h"
#include "ui/MainFrame.h"
#include "ui/Messages.h"
#include "ui/OptionsDialog.h"
#include "ui/WxText.h"

namespace tavlo {

void MainFrame::perform(Command command) {
    if (!commandRow(command).isPossible(state())) {
        wxBell();
        const wxString name = toWx(texts_.get(commandRow(command).caption));
        return tell(Text::NotPossibleNow, fromWx(wxControl::RemoveMnemonics(name)));
    }
    struct Row {
        Command command;
        void (*act)(MainFrame&);
    };
    static constexpr std::array rows{
        Row{Command::OpenFolder, [](MainFrame& w) { w.openFolder(); }},
        Row{Command::OpenList, [](MainFrame& w) { w.openList(); }},
        Row{Command::Save, [](MainFrame& w) { w.save(); }},
        Row{Command::Revert, [](MainFrame& w) { w.revert(); }},
        Row{Command::Play, [](MainFrame& w) { w.play(false); }},
        Row{Command::Enqueue, [](MainFrame& w) { w.play(true); }},
        Row{Command::ShowInFolder, [](MainFrame& w) { w.showContaining(); }},
        Row{Command::Rename, [](MainFrame& w) { w.renameSelected(); }},
        Row{Command::Delete, [](MainFrame& w) { w.deleteSelected(); }},
        Row{Command::CopyToTarget, [](MainFrame& w) { w.copyToTarget(); }},
        Row{Command::ListRelative, [](MainFrame& w) { w.desk_.makeList(false); }},
        Row{Command::ListAbsolute, [](MainFrame& w) { w.desk_.makeList(true); }},
        Row{Command::Info, [](MainFrame& w) { w.showInfo(); }},
        Row{Command::Quit, [](MainFrame& w) { w.Close(); }},
        Row{Command::SelectAll, [](MainFrame& w) { w.list_->selectAll(); }},
        Row{Command::Invert, [](MainFrame& w) { w.list_->invertSelection(); }},
        Row{Command::CopyTags, [](MainFrame& w) { w.copyTags(); }},
        Row{Command::PasteTags, [](MainFrame& w) { w.pasteTags(); }},
        Row{Command::EmptyField, [](MainFrame& w) { w.editor_->emptyFocused(); }},
        Row{Command::Find, [](MainFrame& w) { w.txtFilter_->SetFocus(); }},
        Row{Command::PickCover, [](MainFrame& w) { w.editor_->cover().pick(); }},
        Row{Command::PasteCover, [](MainFrame& w) { w.editor_->cover().paste(); }},
        Row{Command::ExportCover, [](MainFrame& w) { w.editor_->cover().exportCover(); }},
        Row{Command::RemoveCover, [](MainFrame& w) { w.editor_->cover().remove(); }},
        Row{Command::Options, [](MainFrame& w) { w.showOptionsPages(); }},
        Row{Command::Up, [](MainFrame& w) { w.goUp(); }},
        Row{Command::Refresh, [](MainFrame& w) { w.refresh(); }},
        Row{Command::Stop, [](MainFrame& w) { w.desk_.stop(); }},
        Row{Command::Columns, [](MainFrame& w) { w.editColumns(); }},
        Row{Command::AutoSize, [](MainFrame& w) { w.list_->fitColumns(); }},
        Row{Command::Unsort, [](MainFrame& w) { w.unsort(); }},
        Row{Command::GoToList, [](MainFrame& w) { w.list_->SetFocus(); }},
        Row{Command::GoToFolder, [](MainFrame& w) { w.cmbFolder_->SetFocus(); }},
        Row{Command::GoToEditor, [](MainFrame& w) { w.editor_->focusFirst(); }},
        Row{Command::CommandHelp,
            [](MainFrame& w) {
                showPage(&w, w.texts_, Text::CommandHelpTitle, helpPage(w.texts_));
            }},
        Row{Command::About, [](MainFrame& w) { w.about(); }},
    };
    const auto* row = std::ranges::find(rows, command, &Row::command);
    if (row != rows.end()) {
        row->act(*this);
    } else {
        toggle(command);
    }
    if (!told_.lines.empty()) showFailed();
}

// What was typed belongs to the files that were selected until now.
void MainFrame::onSelection() {
    const std::vector<RowId> rows = list_->selectedRows();
    if (rows == desk_.selected()) return;
    const bool typed = editor_->commit();
    desk_.select(rows);
    note_.clear();
    trace_.note("selected", static_cast<double>(rows.size()));
    editor_->showSelection();
    if (!typed) return;
    list_->rowsRepainted();
    if (services_.settings.flag(Setting::AutoTagsUpdate)) desk_.save();
}

void MainFrame::onFilter() {
    {
        const Trace::Span span(trace_, "filtered");
        desk_.table().filter(fromWx(txtFilter_->GetValue()));
        list_->rowsMoved();
        list_->showFocus();
    }
    trace_.note("listed", static_cast<double>(desk_.table().shownCount()));
}

void MainFrame::sortBy(ListColumn column) {
    const Trace::Span span(trace_, "sorted");
    layout_.descending = layout_.sortColumn == column && !layout_.descending;
    layout_.sortColumn = column;
    desk_.table().sortBy(column, layout_.descending);
    list_->showSortMark();
    list_->rowsMoved();
    list_->showFocus();
}

void MainFrame::unsort() {
    layout_.sortColumn.reset();
    desk_.table().unsort();
    list_->showSortMark();
    list_->rowsMoved();
    list_->showFocus();
}

// Esc ends what is going on, or else the filter. Files are deleted from their list only, not while
// a button or the tree has the keyboard.
void MainFrame::onKey(wxKeyEvent& event) {
    if (event.GetModifiers() != wxMOD_NONE) return event.Skip();
    const bool isTyping = dynamic_cast<wxTextEntry*>(wxWindow::FindFocus()) != nullptr;
    if (event.GetKeyCode() == WXK_DELETE && !isTyping && !list_->hasKeyboard()) return;
    if (event.GetKeyCode() != WXK_ESCAPE) return event.Skip();
    if (cmbFolder_->HasFocus()) showPath();
    if (cmbTarget_->HasFocus()) showTarget();
    if (desk_.isLoading() || desk_.isWorking()) return desk_.stop();
    if (txtFilter_->HasFocus() || !txtFilter_->IsEmpty()) txtFilter_->Clear();
    list_->SetFocus();
}

void MainFrame::openFolder() {
    const wxString chosen = wxDirSelector(toWx(texts_.get(Text::OpenFolderTitle)),
                                          toWx(desk_.folder()), 0, wxDefaultPosition, this);
    if (!chosen.empty()) open({fromWx(chosen)});
}

void MainFrame::openList() {
    const wxString lists = "*.m3u;*.m3u8;*.M3U;*.M3U8";
    wxFileDialog dialog(this, toWx(texts_.get(Text::OpenListTitle)), toWx(desk_.folder()), {},
                        toWx(texts_.get(Text::ListFiles)) + "|" + lists,
                        wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    if (dialog.ShowModal() == wxID_OK) open({fromWx(dialog.GetPath())});
}

void MainFrame::save() {
    editor_->commit();
    desk_.save();
    editor_->showSelection();
    list_->rowsRepainted();
}

void MainFrame::revert() {
    desk_.revertSelected();
    editor_->showSelection();
    list_->rowsRepainted();
}

void MainFrame::copyTags() {
    editor_->commit();
    desk_.copyTags();
    editor_->showSelection();
}

void MainFrame::pasteTags() {
    editor_->commit();
    desk_.pasteTags();
    editor_->showSelection();
    list_->rowsRepainted();
}

std::vector<std::string> MainFrame::selectedPaths() const {
    std::vector<std::string> paths;
    for (const RowId row : desk_.selected()) paths.push_back(desk_.table().row(row).path());
    return paths;
}

void MainFrame::play(bool enqueues) {
    playFiles(services_, selectedPaths(), enqueues ? PlayWish::Enqueue : PlayWish::Play);
}

void MainFrame::showContaining() {
    const std::string path = selectedPaths().front();
    if (!showInFolder(path)) told_.lines.push_back(texts_.get(Text::NotStarted, path));
}

void MainFrame::renameSelected() {
    list_->editName(desk_.selected().front());
}

void MainFrame::onRenamed(RowId row, const std::string& name) {
    if (desk_.isWorking()) return wxBell();
    editor_->commit();
    if (const auto failure = desk_.rename(row, name)) told_.lines.push_back(*failure);
    editor_->showSelection();
    list_->rowsRepainted();
    trace_.note("renamed", static_cast<double>(told_.lines.size()));
    showFailed();
}

void MainFrame::deleteSelected() {
    const bool toBin = services_.settings.flag(Setting::DeleteToRecycleBin);
    const std::string question = texts_.get(toBin ? Text::AskRecycle : Text::AskDelete,
                                            std::to_string(desk_.selected().size())) +
                                 "\n" + namesOf(desk_.selected());
    if (confirm(this, texts_, question, Text::AskDeleteYes)) desk_.deleteSelected();
}

void MainFrame::copyToTarget() {
    const std::string folder = absolutePath(cmbTarget_->path());
    if (!folderExists(folder)) {
        told_.lines.push_back(texts_.get(Text::FolderNotFound, folder));
        return;
    }
    Settings& settings = services_.settings;
    cmbTarget_->setPath(folder);
    keepTarget();
    remember(settings, HistoryList::TargetFolders, folder);
    cmbTarget_->setHistory(settings.history(HistoryList::TargetFolders));
    desk_.copySelected(folder);
}

void MainFrame::showInfo() {
    editor_->commit();
    std::vector<std::string> paths = selectedPaths();
    std::size_t at = 0;
    if (paths.size() == 1) {
        // One file: its neighbours can be visited.
        paths.clear();
        for (const RowId row : desk_.table().shown()) {
            if (row == desk_.selected().front()) at = paths.size();
            paths.push_back(desk_.table().row(row).path());
        }
    }
    FileInfoDialog(this, services_, desk_, std::move(paths), at).ShowModal();
    editor_->showSelection();
    list_->rowsRepainted();
}

void MainFrame::showOptionsPages() {
    const bool isChanged = showOptions(this, services_);
    trace_.note("options", isChanged ? 1.0 : 0.0);
    if (!isChanged) return;
    if (services_.changeTexts) services_.changeTexts();
    speak();
    showParts();
    fitColumns();
    list_->rowsRepainted();
}

// The same files stay selected.
void MainFrame::refresh() {
    if (treeSplit_->IsSplit()) tree_->renew();
    std::vector<std::string> selected = selectedPaths();
    open(std::vector(desk_.paths()));
    selectAgain_ = std::move(selected);
}

// Where folders are gone, to the next one above that is there.
void MainFrame::goUp() {
    const std::string place = desk_.place();
    std::string above(parentOf(place, nativePathStyle()));
    while (!above.empty() && !folderExists(above)) {
        const std::string next(parentOf(above, nativePathStyle()));
        if (next == above) return;
        above = next;
    }
    if (!above.empty() && above != place) open({above});
}

void MainFrame::toggle(Command command) {
    const auto setting = commandRow(command).setting;
    if (!setting) return;
    Settings& settings = services_.settings;
    settings.set(*setting, !settings.flag(*setting));
    settings.save(*setting);
    showParts();
    updateMenus(false);
    if (command == Command::Subfolders) refresh();
}

void MainFrame::editColumns() {
    if (!chooseColumns(this, texts_, layout_)) return;
    list_->makeColumns();
    fitColumns();
    list_->rowsRepainted();
}

void MainFrame::about() {
    wxAboutDialogInfo info;
    info.SetName(toWx(services_.programName));
    info.SetDescription(toWx(texts_.get(Text::AboutText)));
    wxAboutBox(info, this);
}

bool MainFrame::mayLeave() {
    editor_->commit();
    if (desk_.edits().isEmpty()) return true;
    if (services_.settings.flag(Setting::AutoTagsUpdate)) return saveAndWait();
    list_->rowsRepainted();
    const int answer =
        ask(this, texts_, texts_.get(Text::AskSave, std::to_string(desk_.edits().count())),
            {Text::AskSaveYes, Text::AskSaveNo});
    list_->rowsRepainted();
    editor_->showSelection();
    if (answer == wxID_NO) return true;
    return answer == wxID_YES && saveAndWait();
}

bool MainFrame::saveAndWait() {
    if (isWaiting_) return false;
    isWaiting_ = true;
    desk_.save();
    while (desk_.isWorking()) {
        wxMilliSleep(10);
        wxTheApp->Yield(true);
    }
    isWaiting_ = false;
    return desk_.edits().isEmpty();
}

// The file that is at work is brought to its end first.
void MainFrame::onClose(wxCloseEvent& event) {
    if (isWaiting_ || modals_.areOpen()) return event.Veto();
    isClosing_ = desk_.isWorking() && event.CanVeto();
    if (isClosing_) {
        desk_.stop();
        return event.Veto();
    }
    if (event.CanVeto() && !mayLeave()) return event.Veto();
    desk_.stop();
    timer_.Stop();
    keepPlace();
    trace_.note("closed");
    Destroy();
}

}  // namespace tavlo
