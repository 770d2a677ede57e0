#include "ui/MainFrame.h"

#include <wx/app.h>
#include <wx/dirdlg.h>
#include <wx/display.h>
#include <wx/dnd.h>
#include <wx/menu.h>
#include <wx/sizer.h>
#include <wx/time.h>

#include <algorithm>
#include <memory>

#include "core/Measures.h"
#include "platform/FileSystem.h"
#include "ui/AppIcon.h"
#include "ui/Messages.h"
#include "ui/WindowScreens.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr int pollPause = 40;  // milliseconds
constexpr int barGap = 4;
const wxSize firstSize{1000, 680};
constexpr int editorWidth = 330;
constexpr int treeWidth = 210;

// The identifiers of menu entries follow those that the toolkit keeps for itself.
constexpr int firstCommandId = wxID_HIGHEST + 1;

constexpr int firstSortId = firstCommandId + 200;

int idOf(Command command) {
    return firstCommandId + static_cast<int>(command);
}

class DropTarget final : public wxFileDropTarget {
 public:
    explicit DropTarget(std::function<void(std::vector<std::string>)> dropped)
        : dropped_(std::move(dropped)) {}

    // What is asked about a drop must not hold up the program that it comes from.
    bool OnDropFiles(wxCoord, wxCoord, const wxArrayString& files) override {
        std::vector<std::string> paths;
        for (const wxString& file : files) paths.push_back(fromWx(file));
        wxTheApp->CallAfter([dropped = dropped_, paths] { dropped(paths); });
        return true;
    }

 private:
    std::function<void(std::vector<std::string>)> dropped_;
};
}  // namespace

MainFrame::MainFrame(Services& services, KeptLines& told, Trace& trace,
                     const std::function<void()>& stepDone)
    : wxFrame(nullptr, wxID_ANY, toWx(services.texts.get(Text::ProgramTitle))),
      services_(services),
      texts_(services.texts),
      told_(told),
      trace_(trace),
      desk_(services),
      timer_(this) {
    layout_.load(services_.settings);
    SetIcons(appIcons());
    auto* const room = new wxPanel(this);  // lets the keyboard travel between the parts
    auto* const all = new wxBoxSizer(wxVERTICAL);
    room->SetSizer(all);
    makeBars(all);
    makeMiddle(all);
    stepDone();
    status_ = new StatusPanel(room, texts_, [this] { perform(Command::Stop); });
    all->Add(status_, wxSizerFlags().Expand());
    makeMenus();
    placeWindow();
    speak();
    if (layout_.sortColumn) desk_.table().sortBy(*layout_.sortColumn, layout_.descending);
    room->SetDropTarget(new DropTarget([this](const auto& paths) { open(paths); }));
    Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onTimer(); });
    Bind(wxEVT_CLOSE_WINDOW, &MainFrame::onClose, this);
    Bind(wxEVT_CHAR_HOOK, &MainFrame::onKey, this);
    Bind(wxEVT_MENU_OPEN, [this](wxMenuEvent& event) {
        event.Skip();
        updateMenus(true);
    });
    Bind(wxEVT_MENU_CLOSE, [this](wxMenuEvent& event) {
        event.Skip();
        updateMenus(false);
    });
    showParts();
    CallAfter([this] { list_->SetFocus(); });
    timer_.Start(pollPause);
}

void MainFrame::makeBars(wxSizer* all) {
    all->Add(makeFolderBar(), wxSizerFlags().Expand().Border(wxALL, FromDIP(barGap)));
    targetBar_ = makeTargetBar();
    all->Add(targetBar_,
             wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(barGap)));
}

wxSizer* MainFrame::makeFolderBar() {
    wxWindow* const room = GetChildren().front();
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    const wxSizerFlags flags = wxSizerFlags().CenterVertical().Border(wxRIGHT, FromDIP(barGap));
    const auto button = [&](Command command, const char* sign) {
        auto* const made = new wxButton(room, wxID_ANY, toWx(sign), wxDefaultPosition,
                                        wxDefaultSize, wxBU_EXACTFIT);
        made->SetMinSize(FromDIP(wxSize(34, -1)));
        made->Bind(wxEVT_BUTTON, [=, this](wxCommandEvent&) { perform(command); });
        row->Add(made, flags);
        return made;
    };
    cmdUp_ = button(Command::Up, "\u2191");
    cmdRefresh_ = button(Command::Refresh, "\u21BB");
    lblFolder_ = new wxStaticText(room, wxID_ANY, {});
    row->Add(lblFolder_, flags);
    cmbFolder_ = new PathField(room);
    const auto goThere = [this] {
        open({cmbFolder_->path()});
        list_->SetFocus();
    };
    cmbFolder_->Bind(wxEVT_TEXT_ENTER, [goThere](wxCommandEvent&) { goThere(); });
    cmbFolder_->onChosen(goThere);
    cmbFolder_->setHistory(services_.settings.history(HistoryList::Folders));
    row->Add(cmbFolder_, wxSizerFlags(3).CenterVertical().Border(wxRIGHT, FromDIP(barGap)));
    chkSubfolders_ = new wxCheckBox(room, wxID_ANY, {});
    chkSubfolders_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) { perform(Command::Subfolders); });
    row->Add(chkSubfolders_, flags);
    txtFilter_ = new wxTextCtrl(room, wxID_ANY);
    txtFilter_->SetMinSize(FromDIP(wxSize(140, -1)));
    txtFilter_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { onFilter(); });
    row->Add(txtFilter_, wxSizerFlags(1).CenterVertical());
    return row;
}

wxPanel* MainFrame::makeTargetBar() {
    auto* const bar = new wxPanel(GetChildren().front());
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    Settings& settings = services_.settings;
    chkTarget_ = new wxCheckBox(bar, wxID_ANY, {});
    chkTarget_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) {
        keepTarget();
        showTarget();
    });
    cmbTarget_ = new PathField(bar);
    cmbTarget_->setHistory(settings.history(HistoryList::TargetFolders));
    cmbTarget_->Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        if (!IsBeingDeleted()) keepTarget();
    });
    cmdBrowse_ = new wxButton(bar, wxID_ANY, {}, wxDefaultPosition, wxDefaultSize, wxBU_EXACTFIT);
    cmdBrowse_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
        const wxString chosen = wxDirSelector(toWx(texts_.get(Text::BrowseTip)),
                                              toWx(cmbTarget_->path()), 0, wxDefaultPosition, this);
        if (chosen.empty()) return;
        cmbTarget_->setPath(fromWx(chosen));
        chkTarget_->SetValue(true);
        keepTarget();
        showTarget();
    });
    const wxSizerFlags flags = wxSizerFlags().CenterVertical().Border(wxRIGHT, FromDIP(barGap));
    row->Add(chkTarget_, flags);
    row->Add(cmbTarget_, wxSizerFlags(1).CenterVertical().Border(wxRIGHT, FromDIP(barGap)));
    row->Add(cmdBrowse_, wxSizerFlags().CenterVertical());
    bar->SetSizer(row);
    return bar;
}

void MainFrame::showTarget() {
    const Settings& settings = services_.settings;
    chkTarget_->SetValue(settings.flag(Setting::TargetFolderEn));
    cmbTarget_->setPath(settings.text(Setting::TargetFolderPath));
    cmbTarget_->Enable(chkTarget_->GetValue());
}

void MainFrame::keepTarget() {
    Settings& settings = services_.settings;
    settings.set(Setting::TargetFolderEn, chkTarget_->GetValue());
    settings.set(Setting::TargetFolderPath, cmbTarget_->path());
    settings.save(std::array{Setting::TargetFolderEn, Setting::TargetFolderPath});
}

void MainFrame::makeMiddle(wxSizer* all) {
    wxWindow* const room = GetChildren().front();
    const long style = wxSP_LIVE_UPDATE | wxSP_3DSASH;
    treeSplit_ = new wxSplitterWindow(room, wxID_ANY, wxDefaultPosition, wxDefaultSize, style);
    tree_ = new FolderTree(treeSplit_, [this](const std::string& folder) { open({folder}); });
    editorSplit_ =
        new wxSplitterWindow(treeSplit_, wxID_ANY, wxDefaultPosition, wxDefaultSize, style);
    FileListEvents events;
    events.selectionChanged = [this] { onSelection(); };
    events.columnClicked = [this](ListColumn column) { sortBy(column); };
    events.state = [this] { return state(); };
    events.command = [this](Command command) { perform(command); };
    events.renamed = [this](RowId row, const std::string& name) { onRenamed(row, name); };
    events.columnsChanged = [this] { fitColumns(); };
    events.columnResized = [this] { services_.settings.set(Setting::MainAutoSize, false); };
    events.activated = [this] {
        const bool showsInfo = services_.settings.flag(Setting::FilePropertiesOnDblClick);
        perform(showsInfo ? Command::Info : Command::Play);
    };
    list_ = new FileListCtrl(editorSplit_, desk_, layout_, texts_, events);
    editor_ = new TagPanel(
        editorSplit_, services_, desk_, [this](Command command) { perform(command); },
        [this](bool hasTyped) { list_->markTyped(hasTyped); });
    treeSplit_->SetMinimumPaneSize(FromDIP(120));
    editorSplit_->SetMinimumPaneSize(FromDIP(260));
    editorSplit_->SetSashGravity(1);
    editorSplit_->Initialize(list_);
    treeSplit_->Initialize(editorSplit_);
    editor_->Hide();
    tree_->Hide();
    all->Add(treeSplit_, wxSizerFlags(1).Expand());
}

void MainFrame::makeMenus() {
    for (const CommandRow& row : commandRows()) {
        Bind(
            wxEVT_MENU, [this, command = row.command](wxCommandEvent&) { perform(command); },
            idOf(row.command));
    }
    for (const ListColumnRow& row : listColumns) {
        Bind(
            wxEVT_MENU, [this, column = row.column](wxCommandEvent&) { sortBy(column); },
            firstSortId + static_cast<int>(row.column));
    }
}

// Every caption in the language of now.
void MainFrame::speak() {
    auto* const bar = new wxMenuBar;
    for (const MenuRow& row : menuRows()) {
        auto* const menu = new wxMenu;
        for (const auto& command : row.commands) {
            if (!command) {
                menu->AppendSeparator();
                continue;
            }
            const CommandRow& entry = commandRow(*command);
            wxString caption = toWx(texts_.get(entry.caption));
            if (!entry.key.empty()) caption += "\t" + toWx(entry.key);
            menu->Append(idOf(*command), caption, toWx(texts_.get(entry.tip)),
                         entry.setting ? wxITEM_CHECK : wxITEM_NORMAL);
            if (*command == Command::AutoSize) {
                menu->AppendSubMenu(makeSortMenu(), toWx(texts_.get(Text::MenuSort)));
            }
        }
        bar->Append(menu, toWx(texts_.get(row.title)));
    }
    // The window still looks at the bar that goes while it takes the new one.
    const std::unique_ptr<wxMenuBar> old(GetMenuBar());
    SetMenuBar(bar);
    const auto tip = [&](wxWindow* window, Text text) {
        window->SetToolTip(toWx(texts_.get(text)));
    };
    tip(cmdUp_, Text::UpTip);
    tip(cmdRefresh_, Text::RefreshTip);
    lblFolder_->SetLabel(toWx(texts_.get(Text::FolderCaption)));
    tip(cmbFolder_, Text::FolderTip);
    chkSubfolders_->SetLabel(wxControl::RemoveMnemonics(toWx(texts_.get(Text::SubfoldersCaption))));
    tip(chkSubfolders_, Text::SubfoldersTip);
    txtFilter_->SetHint(toWx(texts_.get(Text::FilterHint)));
    tip(txtFilter_, Text::FilterTip);
    chkTarget_->SetLabel(toWx(texts_.get(Text::TargetCaption)));
    tip(chkTarget_, Text::TargetTip);
    tip(cmbTarget_, Text::TargetTip);
    cmdBrowse_->SetLabel(toWx(texts_.get(Text::BrowseCaption)));
    tip(cmdBrowse_, Text::BrowseTip);
    list_->makeColumns();
    tree_->speak(texts_);
    editor_->speak();
    status_->speak();
    Layout();
    updateMenus(false);
}

// For those who have no mouse to click a heading with.
wxMenu* MainFrame::makeSortMenu() {
    auto* const menu = new wxMenu;
    for (const ListColumnRow& row : listColumns) {
        const int id = firstSortId + static_cast<int>(row.column);
        menu->Append(id, toWx(texts_.get(row.caption)));
    }
    return menu;
}

void MainFrame::placeWindow() {
    const Settings& settings = services_.settings;
    const auto number = [&](Setting setting) { return settings.number(setting); };
    const wxSize size = FromDIP(firstSize);
    WindowPlace wanted{number(Setting::MainL), number(Setting::MainT), number(Setting::MainW),
                       number(Setting::MainH)};
    if (wanted.width <= 0 || wanted.height <= 0) {
        wanted.width = size.x;
        wanted.height = size.y;
    }
    if (const auto place = visiblePlace(wanted, screenAreas())) {
        kept_ = wxRect(place->left, place->top, place->width, place->height);
        SetSize(*kept_);
    } else {
        const wxRect area = wxDisplay(this).GetClientArea();
        SetSize(std::min(wanted.width, area.width), std::min(wanted.height, area.height));
        Centre();
    }
    SetMinSize(FromDIP(wxSize(640, 420)));
    constexpr int maximized = 2;
    if (number(Setting::MainWS) == maximized) Maximize();
}

void MainFrame::keepPlace() {
    Settings& settings = services_.settings;
    settings.set(Setting::MainWS, IsMaximized() ? 2 : 0);
    if (!IsMaximized() && !IsIconized()) {
        const wxRect place = GetRect();
        settings.set(Setting::MainL, place.x);
        settings.set(Setting::MainT, place.y);
        settings.set(Setting::MainW, place.width);
        settings.set(Setting::MainH, place.height);
    }
    layout_.save(settings);
    settings.save(Setting::MainAutoSize);
}

void MainFrame::showParts() {
    const Settings& settings = services_.settings;
    targetBar_->Show(settings.flag(Setting::MainTargetFolder));
    const auto part = [&](wxSplitterWindow* split, wxWindow* window, bool isShown, auto join) {
        if (isShown == split->IsSplit()) return;
        if (isShown) {
            window->Show();
            join();
        } else {
            split->Unsplit(window);
        }
    };
    part(editorSplit_, editor_, settings.flag(Setting::MainTagEditor),
         [&] { editorSplit_->SplitVertically(list_, editor_, -FromDIP(editorWidth)); });
    part(treeSplit_, tree_, settings.flag(Setting::MainTree), [&] {
        treeSplit_->SplitVertically(tree_, editorSplit_, FromDIP(treeWidth));
        treeSplit_->SetSashPosition(FromDIP(treeWidth));
        tree_->follow(desk_.folder());
    });
    editor_->showCover(settings.flag(Setting::ShowAlbumArt));
    chkSubfolders_->SetValue(settings.flag(Setting::MainSubfolders));
    showTarget();
    const bool isClear = settings.flag(Setting::AlphaEnabled) && CanSetTransparent();
    if (CanSetTransparent()) {
        constexpr wxByte solid = 255;
        SetTransparent(isClear ? static_cast<wxByte>(settings.number(Setting::AlphaLevel)) : solid);
    }
    GetChildren().front()->Layout();
}

void MainFrame::open(const std::vector<std::string>& paths) {
    selectAgain_.clear();
    if (paths.empty() || paths.front().empty()) return showPath();
    if (desk_.isWorking()) return wxBell();
    std::vector<std::string> full;
    full.reserve(paths.size());
    for (const std::string& path : paths) full.push_back(absolutePath(path));
    // A slip of the pen leaves the list as it is.
    if (full.size() == 1 && full != desk_.paths() && !fileInfo(full.front())) {
        told_.lines.push_back(texts_.get(Text::FolderNotFound, full.front()));
        showPath();
        return showFailed();
    }
    if (!mayLeave()) return;
    if (desk_.isLoading()) trace_.endWatch();
    desk_.show(full);
    list_->forgetRows();
    note_.clear();
    hasRows_ = false;
    trace_.beginWatch();
    list_->rowsMoved();
    editor_->showSelection();
    showPath();
    const std::string folder = desk_.folder();
    if (treeSplit_->IsSplit()) tree_->follow(folder);
    SetTitle(toWx(desk_.place() + " - " + texts_.get(Text::ProgramTitle)));
    if (folder.empty()) return;
    Settings& settings = services_.settings;
    settings.set(Setting::CurrentFolder, folder);
    settings.save(Setting::CurrentFolder);
    remember(settings, HistoryList::Folders, folder);
    cmbFolder_->setHistory(settings.history(HistoryList::Folders));
}

void MainFrame::showPath() {
    if (!desk_.paths().empty()) cmbFolder_->setPath(desk_.place());
}

// Only a window that has been shown knows how much room its parts share.
void MainFrame::placeSashes() {
    if (editorSplit_->IsSplit()) editorSplit_->SetSashPosition(-FromDIP(editorWidth));
    if (treeSplit_->IsSplit()) treeSplit_->SetSashPosition(FromDIP(treeWidth));
}

void MainFrame::onTimer() {
    if (!std::exchange(isPlaced_, true)) {
        placeSashes();
        // Some window managers place a new window as they like, but let it move.
        if (kept_ && !IsMaximized()) SetSize(*kept_);
    }
    const DeskNews news = desk_.poll();
    showRows(news);
    showStatus();
    ended_.loadingEnded |= news.loadingEnded;
    ended_.workEnded |= news.workEnded;
    if (!news.list.empty()) ended_.list = news.list;
    // What has to be said waits until nothing else is being asked.
    if (modals_.areOpen()) return;
    if (services_.cancel.exchange(false)) Close();  // the terminal's Ctrl+C
    const DeskNews ended = std::exchange(ended_, {});
    if (ended.loadingEnded) onLoaded();
    if (ended.workEnded) onWorkEnded(ended.list);
    if (isClosing_ && !desk_.isWorking()) Close();
}

void MainFrame::showRows(const DeskNews& news) {
    const bool isFirst = news.rowsCame && !hasRows_;
    if (isFirst) {
        hasRows_ = true;
        trace_.note("rows", static_cast<double>(desk_.table().shownCount()));
    }
    if (news.rowsCame) {
        if (layout_.sortColumn && !desk_.selected().empty()) {
            list_->rowsMoved();
        } else {
            list_->rowsCame();
        }
    }
    if (isFirst) list_->focusFirst();
    if (news.rowsRemoved) {
        list_->rowsMoved();
    } else if (news.rowsChanged) {
        list_->rowsRepainted();
    }
}

void MainFrame::fitColumns() {
    if (services_.settings.flag(Setting::MainAutoSize)) list_->fitColumns();
}

void MainFrame::onLoaded() {
    trace_.endWatch();
    trace_.note("loaded", static_cast<double>(desk_.table().sums().files));
    fitColumns();
    if (desk_.selected().empty() && !selectAgain_.empty()) {
        desk_.select(desk_.rowsOf(std::exchange(selectAgain_, {})));
        list_->forgetRows();
        list_->rowsMoved();
        list_->showFocus();
        editor_->showSelection();
    }
    if (desk_.wasStopped()) told_.lines.push_back(texts_.get(Text::ReadingCancelled));
    showFailed();
}

// `list` is the playlist that was written, if one was.
void MainFrame::onWorkEnded(const std::string& list) {
    trace_.note("done", static_cast<double>(desk_.workDone()));
    if (list.empty()) {
        tell(Text::NumberDone, std::to_string(desk_.workDone()));
    } else {
        tell(Text::ListWritten, list);
    }
    editor_->showUntouched();
    const std::vector<RowId> changed = desk_.takeChanged();
    if (!changed.empty()) askAboutChanged(changed);
    showFailed();
}

// Stands at the foot for a while.
void MainFrame::tell(Text text, const std::string& about) {
    constexpr wxLongLong_t milliseconds = 6000;
    note_ = toWx(texts_.get(text, about));
    noteUntil_ = wxGetLocalTimeMillis() + milliseconds;
}

// A line each, but not of many.
std::string MainFrame::namesOf(const std::vector<RowId>& rows) const {
    constexpr std::size_t mostNamed = 5;
    std::string names;
    for (std::size_t i = 0; i < std::min(rows.size(), mostNamed); ++i) {
        names += "\n" + std::string(desk_.table().row(rows[i]).text(RowText::Name));
    }
    return rows.size() > mostNamed ? names + "\n…" : names;
}

void MainFrame::askAboutChanged(const std::vector<RowId>& rows) {
    const std::string question =
        texts_.get(Text::AskChanged, std::to_string(rows.size())) + "\n" + namesOf(rows);
    const int answer =
        ask(this, texts_, question, {Text::AskChangedReload, Text::AskChangedApply, false});
    if (answer == wxID_YES) desk_.reload(rows);
    if (answer == wxID_NO) desk_.saveOnTop(rows);
}

void MainFrame::showFailed() {
    std::vector<std::string> lines = desk_.takeFailures();
    std::ranges::move(told_.lines, std::back_inserter(lines));
    told_.lines.clear();
    trace_.note("failures", static_cast<double>(lines.size()));
    if (lines.empty()) return;
    showFailures(this, texts_, lines);
}

wxString MainFrame::sumsText(const Sums& sums) const {
    return toWx(texts_.get(Text::SummaryFiles, std::to_string(sums.files)) + "   " +
                texts_.get(Text::SummarySize, sizeText(texts_, sums.bytes)) + "   " +
                texts_.get(Text::SummaryTime, durationText(sums.seconds)));
}

void MainFrame::showStatus() {
    const auto [done, count] = desk_.progress();
    if (desk_.isLoading()) return status_->showProgress(Text::ReadingStatus, done, count);
    if (desk_.isWorking()) return status_->showProgress(Text::WorkingStatus, done, count);
    status_->endProgress();
    if (!note_.empty() && wxGetLocalTimeMillis() < noteUntil_) return status_->showText(note_);
    const FileTable& table = desk_.table();
    wxString text = sumsText(table.sums());
    const auto add = [&](Text what, const wxString& value) {
        text += "   |   " + toWx(texts_.get(what, fromWx(value)));
    };
    if (table.shownCount() != table.sums().files) {
        add(Text::ShownStatus, wxString::Format("%zu", table.shownCount()));
    }
    if (!desk_.selected().empty()) {
        add(Text::SelectedStatus, sumsText(table.sumsOf(desk_.selected())));
    }
    if (!desk_.edits().isEmpty()) {
        add(Text::UnsavedStatus, wxString::Format("%zu", desk_.edits().count()));
    }
    status_->showText(text);
}

DeskState MainFrame::state() const {
    DeskState state = desk_.state();
    state.hasTyped = editor_->hasTyped();
    state.hasCover = editor_->cover().hasCover();
    state.hasTarget = chkTarget_->GetValue() && !cmbTarget_->path().empty();
    state.hasEditor = editorSplit_->IsSplit();
    return state;
}

// What is not possible now is grey while a menu is open. Closed menus have all entries, for an
// entry that is off would swallow its key; `perform` looks again.
void MainFrame::updateMenus(bool isOpen) {
    const DeskState now = isOpen ? state() : DeskState{};
    for (const CommandRow& row : commandRows()) {
        wxMenuItem* const item = GetMenuBar()->FindItem(idOf(row.command));
        if (item == nullptr) continue;
        if (row.setting) item->Check(services_.settings.flag(*row.setting));
        item->Enable(!isOpen || row.isPossible(now));
    }
}

}  // namespace tavlo
