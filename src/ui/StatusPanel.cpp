#include "ui/StatusPanel.h"

#include <wx/sizer.h>

#include <algorithm>
#include <string>

#include "ui/WxText.h"

namespace tavlo {

StatusPanel::StatusPanel(wxWindow* parent, const Texts& texts, const std::function<void()>& cancel)
    : wxPanel(parent), texts_(texts) {
    lblStatus_ = new wxStaticText(this, wxID_ANY, {}, wxDefaultPosition, wxDefaultSize,
                                  wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END);
    gauge_ = new wxGauge(this, wxID_ANY, 100, wxDefaultPosition, FromDIP(wxSize(180, 14)));
    cmdCancelLoading_ = new wxButton(this, wxID_ANY, {}, wxDefaultPosition, wxDefaultSize);
    cmdCancelLoading_->Bind(wxEVT_BUTTON, [cancel](wxCommandEvent&) { cancel(); });
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    row->Add(lblStatus_, wxSizerFlags(1).CenterVertical().Border(wxALL, FromDIP(5)));
    row->Add(gauge_, wxSizerFlags().CenterVertical().Border(wxRIGHT, FromDIP(5)));
    row->Add(cmdCancelLoading_, wxSizerFlags().CenterVertical());
    SetSizer(row);
    SetMinSize({-1, cmdCancelLoading_->GetBestSize().y});
    speak();
    endProgress();
}

void StatusPanel::showProgress(Text what, std::size_t done, std::size_t count) {
    const std::string numbers = std::to_string(done) + " / " + std::to_string(count);
    lblStatus_->SetLabel(toWx(texts_.get(what, numbers)));
    gauge_->SetRange(static_cast<int>(std::max<std::size_t>(count, 1)));
    gauge_->SetValue(static_cast<int>(std::min(done, count)));
    if (gauge_->IsShown()) return;
    gauge_->Show();
    cmdCancelLoading_->Show();
    Layout();
}

void StatusPanel::endProgress() {
    gauge_->Hide();
    cmdCancelLoading_->Hide();
    Layout();
}

void StatusPanel::showText(const wxString& text) {
    if (lblStatus_->GetLabel() != text) lblStatus_->SetLabel(text);
}

void StatusPanel::speak() {
    cmdCancelLoading_->SetLabel(toWx(texts_.get(Text::CancelCaption)));
    cmdCancelLoading_->SetToolTip(toWx(texts_.get(Text::CancelTip)));
}

}  // namespace tavlo
