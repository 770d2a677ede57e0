#include "ui/ReportPage.h"

#include <wx/settings.h>

#include <algorithm>

#include "ui/WxText.h"

namespace tavlo {

ReportPage::ReportPage(wxWindow* parent, std::size_t shares)
    : wxPanel(parent), sizer_(new wxBoxSizer(wxVERTICAL)), shares_(shares) {
    constexpr int detailHeight = 80;
    lstRows_ = new wxListCtrl(this, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                              wxLC_REPORT | wxLC_SINGLE_SEL | wxLC_HRULES | wxLC_VRULES);
    txtDetail_ = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition,
                                FromDIP(wxSize(-1, detailHeight)), wxTE_MULTILINE | wxTE_READONLY);
    sizer_->Add(lstRows_, 1, wxEXPAND | wxALL, FromDIP(6));
    sizer_->Add(txtDetail_, 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(6));
    SetSizer(sizer_);
    lstRows_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { showDetail(); });
    lstRows_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        fitColumns();
    });
}

void ReportPage::fill(const std::vector<std::string>& captions, std::vector<ReportRow> rows) {
    const long chosen =
        std::max(0L, lstRows_->GetNextItem(-1, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED));
    rows_ = std::move(rows);
    lstRows_->Freeze();
    lstRows_->ClearAll();
    for (const std::string& caption : captions) lstRows_->AppendColumn(toWx(caption));
    for (const ReportRow& row : rows_) addRow(row);
    fitColumns();
    lstRows_->Thaw();
    constexpr long both = wxLIST_STATE_SELECTED | wxLIST_STATE_FOCUSED;
    const long last = static_cast<long>(rows_.size()) - 1;
    if (last >= 0) lstRows_->SetItemState(std::min(chosen, last), both, both);
    showDetail();
}

void ReportPage::addRow(const ReportRow& row) {
    const long at = lstRows_->InsertItem(lstRows_->GetItemCount(), toWx(row.cells.front()));
    for (std::size_t i = 1; i < row.cells.size(); ++i) {
        lstRows_->SetItem(at, static_cast<int>(i), toWx(row.cells[i]));
    }
    if (row.isMarked) lstRows_->SetItemFont(at, lstRows_->GetFont().Bold());
}

void ReportPage::fitColumns() {
    const int columns = lstRows_->GetColumnCount();
    const int shares = std::min(static_cast<int>(shares_), columns);
    if (columns == 0) return;
    const int least = FromDIP(90);
    const int margin = FromDIP(12);
    int left = lstRows_->GetClientSize().x - wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, this);
    for (int i = 0; i < columns - shares; ++i) {
        lstRows_->SetColumnWidth(i, wxLIST_AUTOSIZE);
        const int content = lstRows_->GetColumnWidth(i);
        lstRows_->SetColumnWidth(i, wxLIST_AUTOSIZE_USEHEADER);
        const int width = std::max(content + margin, lstRows_->GetColumnWidth(i));
        lstRows_->SetColumnWidth(i, width);
        left -= width;
    }
    for (int i = columns - shares; i < columns; ++i) {
        lstRows_->SetColumnWidth(i, std::max(least, left / shares));
    }
}

void ReportPage::showDetail() {
    const long chosen = lstRows_->GetNextItem(-1, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED);
    const bool isRow = chosen >= 0 && static_cast<std::size_t>(chosen) < rows_.size();
    txtDetail_->ChangeValue(isRow ? toWx(rows_[static_cast<std::size_t>(chosen)].detail)
                                  : wxString());
}

}  // namespace tavlo
