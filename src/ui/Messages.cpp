#include "ui/Messages.h"

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "ui/AppIcon.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
class TextDialog final : public wxDialog {
 public:
    TextDialog(wxWindow* parent, const wxString& title, const wxString& intro, const wxString& text,
               const wxString& close, bool isPage)
        : wxDialog(parent, wxID_ANY, title, wxDefaultPosition, wxDefaultSize,
                   wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
        if (parent == nullptr) SetIcons(appIcons());
        auto* const all = new wxBoxSizer(wxVERTICAL);
        const int border = FromDIP(8);
        if (!intro.empty()) {
            all->Add(new wxStaticText(this, wxID_ANY, intro), wxSizerFlags().Border(wxALL, border));
        }
        auto* const lines = new wxTextCtrl(
            this, wxID_ANY, text, wxDefaultPosition,
            FromDIP(isPage ? wxSize(820, 520) : wxSize(620, 260)),
            wxTE_MULTILINE | wxTE_READONLY | (isPage ? wxTE_DONTWRAP : wxTE_CHARWRAP));
        if (isPage) {
            lines->SetFont(
                wxFont(wxFontInfo(GetFont().GetPointSize()).Family(wxFONTFAMILY_TELETYPE)));
        }
        lines->SetInsertionPoint(0);
        all->Add(lines, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, border));
        auto* const cmdClose = new wxButton(this, wxID_CANCEL, close);
        cmdClose->SetDefault();
        all->Add(cmdClose, wxSizerFlags().Right().Border(wxALL, border));
        SetSizerAndFit(all);
        CentreOnParent();
        cmdClose->SetFocus();
    }
};
}  // namespace

void showFailures(wxWindow* parent, const Texts& texts, const std::vector<std::string>& lines) {
    if (lines.empty()) return;
    wxString all;
    for (const std::string& line : lines) all += toWx(line) + "\n";
    TextDialog(parent, toWx(texts.get(Text::FailuresTitle)), toWx(texts.get(Text::FailuresIntro)),
               all, toWx(texts.get(Text::CloseCaption)), false)
        .ShowModal();
}

void showPage(wxWindow* parent, const Texts& texts, Text title, const std::string& page) {
    TextDialog(parent, toWx(texts.get(title)), {}, toWx(page), toWx(texts.get(Text::CloseCaption)),
               true)
        .ShowModal();
}

int ask(wxWindow* parent, const Texts& texts, const std::string& question, const Answers& answers) {
    wxMessageDialog dialog(parent, toWx(question), toWx(texts.get(Text::ProgramTitle)),
                           wxYES_NO | wxCANCEL | wxICON_QUESTION |
                               (answers.isHarmless ? wxYES_DEFAULT : wxCANCEL_DEFAULT));
    dialog.SetYesNoCancelLabels(toWx(texts.get(answers.yes)), toWx(texts.get(answers.no)),
                                toWx(texts.get(Text::CallOffCaption)));
    return dialog.ShowModal();
}

bool confirm(wxWindow* parent, const Texts& texts, const std::string& question, Text yes) {
    wxMessageDialog dialog(parent, toWx(question), toWx(texts.get(Text::ProgramTitle)),
                           wxOK | wxCANCEL | wxICON_QUESTION);
    dialog.SetOKCancelLabels(toWx(texts.get(yes)), toWx(texts.get(Text::CallOffCaption)));
    return dialog.ShowModal() == wxID_OK;
}

}  // namespace tavlo
