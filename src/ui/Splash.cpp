#include "ui/Splash.h"

#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include <utility>

#include "ui/AppIcon.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr auto patience = std::chrono::milliseconds(500);
constexpr int iconSide = 64;
}  // namespace

void Splash::end() {
    if (frmSplash_ != nullptr) std::exchange(frmSplash_, nullptr)->Destroy();
}

void Splash::look() {
    if (frmSplash_ != nullptr || std::chrono::steady_clock::now() - start_ < patience) return;
    frmSplash_ =
        new wxFrame(nullptr, wxID_ANY, toWx(texts_.get(Text::ProgramTitle)), wxDefaultPosition,
                    wxDefaultSize, wxBORDER_SIMPLE | wxFRAME_NO_TASKBAR | wxSTAY_ON_TOP);
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    const int gap = frmSplash_->FromDIP(20);
    row->Add(
        new wxStaticBitmap(frmSplash_, wxID_ANY, appIcons().GetIcon(wxSize(iconSide, iconSide))),
        wxSizerFlags().Border(wxALL, gap));
    auto* const name = new wxStaticText(frmSplash_, wxID_ANY, toWx(texts_.get(Text::ProgramTitle)));
    name->SetFont(name->GetFont().Larger().Larger().Bold());
    row->Add(name, wxSizerFlags().CenterVertical().Border(wxTOP | wxBOTTOM | wxRIGHT, gap));
    frmSplash_->SetSizerAndFit(row);
    frmSplash_->CentreOnScreen();
    frmSplash_->Show();
    frmSplash_->Update();
}

}  // namespace tavlo
