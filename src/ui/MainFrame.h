#pragma once

#include <wx/checkbox.h>
#include <wx/frame.h>
#include <wx/modalhook.h>
#include <wx/splitter.h>
#include <wx/textctrl.h>
#include <wx/timer.h>

#include <optional>
#include <string>
#include <vector>

#include "core/QuietWork.h"
#include "core/StartUp.h"
#include "desk/ColumnLayout.h"
#include "desk/FileDesk.h"
#include "ui/FileListCtrl.h"
#include "ui/FolderTree.h"
#include "ui/PathField.h"
#include "ui/StatusPanel.h"
#include "ui/TagPanel.h"
#include "ui/Trace.h"

namespace tavlo {

/// Knows whether a question or a dialog is open: nothing else begins meanwhile, and the window
/// below it does not close.
class Modals final : public wxModalDialogHook {
 public:
    Modals() { Register(); }
    ~Modals() override { Unregister(); }
    Modals(const Modals&) = delete;
    Modals& operator=(const Modals&) = delete;

    [[nodiscard]] bool areOpen() const { return count_ > 0; }

 private:
    int Enter(wxDialog*) override {
        ++count_;
        return wxID_NONE;
    }
    void Exit(wxDialog*) override { --count_; }

    int count_ = 0;
};

/// The main window: the list, the bars around it, the tag editor, and what each command does.
class MainFrame : public wxFrame {
 public:
    /// `told` gets what `services.errors` reports; the window shows it. `stepDone` is called now
    /// and then while the window is made.
    MainFrame(Services& services, KeptLines& told, Trace& trace,
              const std::function<void()>& stepDone);

    /// Asks about edits that were not saved, then shows these folders, playlists or files.
    void open(const std::vector<std::string>& paths);

 private:
    // Making
    void makeBars(wxSizer* all);
    wxSizer* makeFolderBar();
    wxPanel* makeTargetBar();
    void makeMiddle(wxSizer* all);
    void makeMenus();
    wxMenu* makeSortMenu();
    void speak();
    void placeWindow();
    void showPath();
    void showTarget();
    void keepTarget();
    void placeSashes();
    void keepPlace();

    // What goes on beside
    void onTimer();
    void showRows(const DeskNews& news);
    void fitColumns();
    void onLoaded();
    void onWorkEnded(const std::string& list);
    [[nodiscard]] std::string namesOf(const std::vector<RowId>& rows) const;
    void askAboutChanged(const std::vector<RowId>& rows);
    void showStatus();
    void tell(Text text, const std::string& about);
    void showFailed();
    [[nodiscard]] wxString sumsText(const Sums& sums) const;

    // Commands
    void perform(Command command);
    [[nodiscard]] DeskState state() const;
    void updateMenus(bool isOpen);
    void onSelection();
    void onFilter();
    void sortBy(ListColumn column);
    void unsort();
    void onKey(wxKeyEvent& event);
    void openFolder();
    void openList();
    void save();
    void revert();
    void copyTags();
    void pasteTags();
    void play(bool enqueues);
    void showContaining();
    void renameSelected();
    void onRenamed(RowId row, const std::string& name);
    void deleteSelected();
    void copyToTarget();
    void showInfo();
    void showOptionsPages();
    void refresh();
    void goUp();
    void toggle(Command command);
    void showParts();
    void editColumns();
    void about();
    void onClose(wxCloseEvent& event);

    /// Settles edits that are not saved: false when the person wants to stay.
    bool mayLeave();
    /// Saves and waits, with the window answering; false when something was left unsaved.
    bool saveAndWait();
    [[nodiscard]] std::vector<std::string> selectedPaths() const;

    Services& services_;
    const Texts& texts_;
    KeptLines& told_;
    Trace& trace_;
    FileDesk desk_;
    ColumnLayout layout_;
    wxTimer timer_;

    PathField* cmbFolder_ = nullptr;
    wxButton* cmdUp_ = nullptr;
    wxButton* cmdRefresh_ = nullptr;
    wxCheckBox* chkSubfolders_ = nullptr;
    wxTextCtrl* txtFilter_ = nullptr;
    wxStaticText* lblFolder_ = nullptr;
    wxPanel* targetBar_ = nullptr;
    wxCheckBox* chkTarget_ = nullptr;
    PathField* cmbTarget_ = nullptr;
    wxButton* cmdBrowse_ = nullptr;
    wxSplitterWindow* treeSplit_ = nullptr;
    wxSplitterWindow* editorSplit_ = nullptr;
    FolderTree* tree_ = nullptr;
    FileListCtrl* list_ = nullptr;
    TagPanel* editor_ = nullptr;
    StatusPanel* status_ = nullptr;
    wxString note_;  // shown until then instead of the sums
    wxLongLong noteUntil_ = 0;
    std::vector<std::string> selectAgain_;  // when the files are there
    DeskNews ended_;                        // what came to its end and was not told of yet
    bool hasRows_ = false;
    bool isPlaced_ = false;
    std::optional<wxRect> kept_;  // where the settings say the window was
    Modals modals_;
    bool isClosing_ = false;  // as soon as the file that is at work is done
    bool isWaiting_ = false;  // for a saving that was asked for when leaving
};

}  // namespace tavlo
