#include "ui/OptionsDialog.h"

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/display.h>
#include <wx/listbox.h>
#include <wx/menu.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <array>
#include <map>

#include "desk/Mnemonics.h"
#include "desk/OptionDraft.h"
#include "platform/Environment.h"
#include "platform/Registry.h"
#include "ui/AppIcon.h"
#include "ui/OptionsPanel.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr int border = 10, pageWidth = 560, pageHeight = 515;  // DIP

class OptionsDialog : public wxDialog {
 public:
    OptionsDialog(wxWindow* parent, Services& services);

    bool isStored() const { return isStored_; }
    void keepPlace();

 private:
    wxString text(Text number) const { return toWx(services_.texts.get(number)); }

    void makeSearch(wxSizer& outer, const wxString& caption);
    void makePages(wxSizer& outer);
    void makeButtons(wxSizer& outer, const wxString& defaults);
    void restorePlace();

    void search();
    const OptionMatch* selectedMatch() const;
    void showPage();
    OptionsPanel& panelOf(const OptionPage& page);
    void goTo(const OptionPage& page, const OptionRow& row);

    void askForDefaults();
    void refreshPanels();
    void store();
    void complain(const wxString& message);
    bool goToLetter(wxChar letter);
    void onKey(wxKeyEvent& event);

    Services& services_;
    Registry registry_;  // keys outside the program's own
    ShellIntegration shell_{registry_, programFile()};
    OptionDraft draft_;
    std::vector<std::string> taken_;  // captions with the letters that reach them
    std::vector<OptionMatch> matches_;
    std::map<const OptionPage*, OptionsPanel*> panels_;  // made when first seen
    OptionsPanel* shown_ = nullptr;

    wxTextCtrl* txtSearch_ = nullptr;
    wxListBox* lstPages_ = nullptr;
    wxStaticText* lblNothing_ = nullptr;
    wxPanel* area_ = nullptr;
    wxButton* cmdDefault_ = nullptr;
    bool isStored_ = false;
};

OptionsDialog::OptionsDialog(wxWindow* parent, Services& services)
    : wxDialog(parent, wxID_ANY, toWx(services.texts.get(Text::OptionsTitle)), wxDefaultPosition,
               wxDefaultSize, wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      services_(services),
      draft_(services.settings, shell_) {
    taken_ =
        withMnemonics({services.texts.get(Text::OptSearch), services.texts.get(Text::OptDefaults)});
    if (parent == nullptr) SetIcons(appIcons());
    auto* outer = new wxBoxSizer(wxVERTICAL);
    makeSearch(*outer, toWx(taken_[0]));
    makePages(*outer);
    makeButtons(*outer, toWx(taken_[1]));
    SetSizerAndFit(outer);
    Bind(wxEVT_CHAR_HOOK, &OptionsDialog::onKey, this);
    search();
    lstPages_->SetFocus();
    restorePlace();
}

void OptionsDialog::makeSearch(wxSizer& outer, const wxString& caption) {
    auto* line = new wxBoxSizer(wxHORIZONTAL);
    line->Add(new wxStaticText(this, wxID_ANY, caption + ":"), 0, wxALIGN_CENTER_VERTICAL | wxRIGHT,
              FromDIP(border));
    txtSearch_ = new wxTextCtrl(this, wxID_ANY);
    txtSearch_->SetName("txtSearch");
    txtSearch_->SetToolTip(text(Text::OptSearchTip));
    txtSearch_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { search(); });
    line->Add(txtSearch_, 1, wxALIGN_CENTER_VERTICAL);
    outer.Add(line, 0, wxEXPAND | wxALL, FromDIP(border));
}

void OptionsDialog::makePages(wxSizer& outer) {
    auto* line = new wxBoxSizer(wxHORIZONTAL);
    wxArrayString titles;
    for (const OptionPage& page : optionPages()) titles.Add(text(page.title));
    // As wide as all titles, not only those that are found.
    lstPages_ = new wxListBox(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, titles);
    lstPages_->SetMinSize(lstPages_->GetBestSize());
    lstPages_->SetName("lstPages");
    lstPages_->Bind(wxEVT_LISTBOX, [this](wxCommandEvent&) { showPage(); });
    line->Add(lstPages_, 0, wxEXPAND | wxRIGHT, FromDIP(border));

    area_ = new wxPanel(this);
    area_->SetSizer(new wxBoxSizer(wxVERTICAL));
    area_->SetMinSize(FromDIP(wxSize(pageWidth, pageHeight)));
    lblNothing_ = new wxStaticText(area_, wxID_ANY, text(Text::OptNothingFound));
    area_->GetSizer()->Add(lblNothing_, 0, wxALL, FromDIP(border));
    line->Add(area_, 1, wxEXPAND);
    outer.Add(line, 1, wxEXPAND | wxLEFT | wxRIGHT, FromDIP(border));
}

void OptionsDialog::makeButtons(wxSizer& outer, const wxString& defaults) {
    auto* line = new wxBoxSizer(wxHORIZONTAL);
    cmdDefault_ = new wxButton(this, wxID_ANY, defaults + "...");
    cmdDefault_->SetName("cmdDefault");
    cmdDefault_->SetToolTip(text(Text::OptDefaultsTip));
    cmdDefault_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { askForDefaults(); });
    line->Add(cmdDefault_, 0, wxALIGN_CENTER_VERTICAL);
    line->AddStretchSpacer();
    auto* buttons = new wxStdDialogButtonSizer;
    auto* ok = new wxButton(this, wxID_OK, text(Text::OptOk));
    ok->SetName("cmdOK");
    ok->SetToolTip(text(Text::OptOkTip));
    ok->SetDefault();
    ok->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { store(); });
    auto* cancel = new wxButton(this, wxID_CANCEL, text(Text::OptCancel));
    cancel->SetName("cmdCancel");
    cancel->SetToolTip(text(Text::OptCancelTip));
    buttons->AddButton(ok);
    buttons->AddButton(cancel);
    buttons->Realize();
    line->Add(buttons, 0, wxALIGN_CENTER_VERTICAL);
    outer.Add(line, 0, wxEXPAND | wxALL, FromDIP(border));
}

// A place that is on no screen any more is left for the middle of the window below.
void OptionsDialog::restorePlace() {
    const wxPoint place(services_.settings.number(Setting::OptL),
                        services_.settings.number(Setting::OptT));
    CentreOnParent();
    if (place.x == noPlace || place.y == noPlace) return;
    const wxSize size = GetSize();
    for (unsigned i = 0; i < wxDisplay::GetCount(); ++i)
        if (wxDisplay(i).GetClientArea().Contains(wxRect(place, size))) Move(place);
}

void OptionsDialog::keepPlace() {
    const wxPoint place = GetPosition();
    services_.settings.set(Setting::OptL, place.x);
    services_.settings.set(Setting::OptT, place.y);
    services_.settings.save(std::array{Setting::OptL, Setting::OptT});
}

// With words the best page is the first that has them, without any the one that was there.
void OptionsDialog::search() {
    const OptionPage* shown = shown_ == nullptr ? nullptr : &shown_->page();
    const std::string words = fromWx(txtSearch_->GetValue());
    matches_ = findOptions(services_.texts, words);
    lstPages_->Clear();
    for (const OptionMatch& match : matches_) lstPages_->Append(text(match.page->title));
    const auto before = std::ranges::find(matches_, shown, &OptionMatch::page);
    const bool stays = words.empty() && before != matches_.end();
    if (!matches_.empty())
        lstPages_->SetSelection(stays ? static_cast<int>(before - matches_.begin()) : 0);
    showPage();
}

const OptionMatch* OptionsDialog::selectedMatch() const {
    const int selected = lstPages_->GetSelection();
    return selected == wxNOT_FOUND ? nullptr : &matches_[static_cast<std::size_t>(selected)];
}

void OptionsDialog::showPage() {
    const OptionMatch* match = selectedMatch();
    lblNothing_->Show(match == nullptr);
    shown_ = match == nullptr ? nullptr : &panelOf(*match->page);
    for (const auto& [page, panel] : panels_) panel->Show(panel == shown_);
    if (shown_ != nullptr) shown_->showOnly(match->rows);
    area_->Layout();
}

OptionsPanel& OptionsDialog::panelOf(const OptionPage& page) {
    OptionsPanel*& panel = panels_[&page];
    if (panel == nullptr) {
        panel = new OptionsPanel(area_, page, draft_, services_.texts, taken_);
        area_->GetSizer()->Add(panel, 1, wxEXPAND);
    }
    return *panel;
}

void OptionsDialog::goTo(const OptionPage& page, const OptionRow& row) {
    txtSearch_->ChangeValue({});
    search();
    const auto match = std::ranges::find(matches_, &page, &OptionMatch::page);
    if (match == matches_.end()) return;
    lstPages_->SetSelection(static_cast<int>(match - matches_.begin()));
    showPage();
    panelOf(page).focusOn(row);
}

void OptionsDialog::askForDefaults() {
    wxMenu menu;
    const auto captions = withMnemonics(
        {services_.texts.get(Text::OptDefaultsPage), services_.texts.get(Text::OptDefaultsAll)});
    const int thisPage = menu.Append(wxID_ANY, toWx(captions[0]))->GetId();
    const int allPages = menu.Append(wxID_ANY, toWx(captions[1]))->GetId();
    menu.Enable(thisPage, shown_ != nullptr);
    const wxPoint below(0, cmdDefault_->GetSize().GetHeight());
    const int chosen = GetPopupMenuSelectionFromUser(menu, cmdDefault_->GetPosition() + below);
    if (chosen == thisPage) draft_.putDefaults(shown_->page());
    if (chosen == allPages) draft_.putDefaults();
    refreshPanels();
}

void OptionsDialog::refreshPanels() {
    for (const auto& [page, panel] : panels_) panel->refresh();
}

void OptionsDialog::store() {
    if (const auto fault = draft_.firstFault(services_.texts)) {
        goTo(*fault->page, *fault->row);
        complain(toWx(fault->message));
        return;
    }
    const bool isChanged = draft_.isChanged();
    switch (draft_.save()) {
        case OptionDraft::Saved::Done:
            isStored_ = isStored_ || isChanged;
            EndModal(wxID_OK);
            break;
        case OptionDraft::Saved::NotStored:
            complain(text(Text::OptNotStored));
            break;
        case OptionDraft::Saved::ShellNotWritten:
            isStored_ = true;
            complain(text(Text::OptShellNotStored));
            break;
    }
}

void OptionsDialog::complain(const wxString& message) {
    wxMessageDialog box(this, message, GetTitle(), wxOK | wxICON_WARNING);
    box.SetOKLabel(text(Text::OptOk));
    box.ShowModal();
}

// Labels of fields take no letters themselves on every system.
bool OptionsDialog::goToLetter(wxChar letter) {
    const wxString caption = toWx(taken_[0]);
    const auto mark = static_cast<std::size_t>(caption.Find('&')) + 1;
    if (caption.Mid(mark, 1).Lower() != wxString(letter).Lower())
        return shown_ != nullptr && shown_->focusOn(letter);
    txtSearch_->SetFocus();
    return true;
}

void OptionsDialog::onKey(wxKeyEvent& event) {
    const wxChar letter = event.GetUnicodeKey();
    if (event.GetModifiers() == wxMOD_CONTROL && event.GetKeyCode() == 'F') {
        txtSearch_->SetFocus();
    } else if (event.GetKeyCode() == WXK_ESCAPE && FindFocus() == txtSearch_ &&
               !txtSearch_->IsEmpty()) {
        txtSearch_->Clear();
    } else if (event.GetKeyCode() == WXK_RETURN && FindFocus() == txtSearch_) {
        lstPages_->SetFocus();
    } else if (event.GetModifiers() != wxMOD_ALT || letter <= WXK_SPACE || !goToLetter(letter)) {
        event.Skip();
    }
}
}  // namespace

bool showOptions(wxWindow* parent, Services& services) {
    OptionsDialog dialog(parent, services);
    dialog.ShowModal();
    dialog.keepPlace();
    return dialog.isStored();
}

}  // namespace tavlo
