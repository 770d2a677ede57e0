#include "ui/ColumnsDialog.h"

#include <wx/button.h>
#include <wx/checklst.h>
#include <wx/dialog.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <algorithm>
#include <vector>

#include "ui/WxText.h"

namespace tavlo {

namespace {
class ColumnsDialog final : public wxDialog {
 public:
    ColumnsDialog(wxWindow* parent, const Texts& texts, const ColumnLayout& layout)
        : wxDialog(parent, wxID_ANY, toWx(texts.get(Text::ColumnsTitle)), wxDefaultPosition,
                   wxDefaultSize, wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
          order_(layout.order().begin(), layout.order().end()) {
        auto* const all = new wxBoxSizer(wxVERTICAL);
        wxSizerFlags around = wxSizerFlags().Border(wxALL, FromDIP(8));
        all->Add(new wxStaticText(this, wxID_ANY, toWx(texts.get(Text::ColumnsIntro))), around);
        list_ = new wxCheckListBox(this, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(240, 380)));
        for (const ListColumn column : order_) {
            const int at = list_->Append(toWx(texts.get(listColumnRow(column).caption)));
            list_->Check(static_cast<unsigned>(at), layout.isShown(column));
        }
        list_->SetSelection(0);
        auto* const row = new wxBoxSizer(wxHORIZONTAL);
        row->Add(list_, wxSizerFlags(1).Expand());
        auto* const moves = new wxBoxSizer(wxVERTICAL);
        moves->Add(button(texts, Text::MoveUpCaption, -1), wxSizerFlags().Expand());
        moves->Add(button(texts, Text::MoveDownCaption, 1), wxSizerFlags().Expand());
        row->Add(moves, wxSizerFlags().Border(wxLEFT, FromDIP(8)));
        all->Add(row, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, FromDIP(8)));
        all->Add(CreateStdDialogButtonSizer(wxOK | wxCANCEL), around.Right());
        FindWindow(wxID_OK)->SetLabel(toWx(texts.get(Text::OptOk)));
        FindWindow(wxID_CANCEL)->SetLabel(toWx(texts.get(Text::CallOffCaption)));
        SetSizerAndFit(all);
        CentreOnParent();
        list_->SetFocus();
    }

    // Something has to be shown: the names.
    void applyTo(ColumnLayout& layout) const {
        wxArrayInt checked;
        const bool isNone = list_->GetCheckedItems(checked) == 0;
        const auto isWanted = [&](std::size_t i) {
            return isNone ? order_[i] == ListColumn::FileName
                          : list_->IsChecked(static_cast<unsigned>(i));
        };
        for (const bool isShown : {true, false}) {
            for (std::size_t i = 0; i < order_.size(); ++i) {
                if (isWanted(i) == isShown) layout.show(order_[i], isShown);
            }
        }
        std::vector<ListColumn> shown;
        std::ranges::copy_if(order_, std::back_inserter(shown),
                             [&](ListColumn column) { return layout.isShown(column); });
        layout.arrange(shown);
    }

 private:
    wxButton* button(const Texts& texts, Text caption, int step) {
        auto* const made = new wxButton(this, wxID_ANY, toWx(texts.get(caption)));
        made->Bind(wxEVT_BUTTON, [this, step](wxCommandEvent&) { move(step); });
        return made;
    }

    void move(int step) {
        const int from = list_->GetSelection();
        const int to = from + step;
        if (from < 0 || to < 0 || to >= static_cast<int>(order_.size())) return;
        const auto a = static_cast<unsigned>(from);
        const auto b = static_cast<unsigned>(to);
        std::swap(order_[a], order_[b]);
        const wxString text = list_->GetString(a);
        const bool isChecked = list_->IsChecked(a);
        list_->SetString(a, list_->GetString(b));
        list_->Check(a, list_->IsChecked(b));
        list_->SetString(b, text);
        list_->Check(b, isChecked);
        list_->SetSelection(to);
    }

    std::vector<ListColumn> order_;
    wxCheckListBox* list_;
};
}  // namespace

bool chooseColumns(wxWindow* parent, const Texts& texts, ColumnLayout& layout) {
    ColumnsDialog dialog(parent, texts, layout);
    if (dialog.ShowModal() != wxID_OK) return false;
    dialog.applyTo(layout);
    return true;
}

}  // namespace tavlo
