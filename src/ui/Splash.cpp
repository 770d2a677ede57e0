#include "ui/Splash.h"

#include <wx/app.h>
#include <wx/dcmemory.h>
#include <wx/icon.h>
#include <wx/settings.h>
#include <wx/utils.h>

#include "ui/AppIcon.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr auto patience = std::chrono::milliseconds(500);
constexpr int iconSide = 64, gap = 24;

// The icon, and the name beside it.
wxBitmap picture(const wxString& name) {
    const wxFont font = wxSystemSettings::GetFont(wxSYS_DEFAULT_GUI_FONT).Larger().Larger().Bold();
    wxMemoryDC dc;
    dc.SetFont(font);
    const wxSize words = dc.GetTextExtent(name);
    wxBitmap bitmap(iconSide + words.x + 3 * gap, iconSide + 2 * gap);
    dc.SelectObject(bitmap);
    dc.SetBackground(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOW));
    dc.Clear();
    dc.DrawIcon(appIcons().GetIcon(wxSize(iconSide, iconSide)), gap, gap);
    dc.SetFont(font);
    dc.SetTextForeground(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT));
    dc.DrawText(name, iconSide + 2 * gap, (bitmap.GetHeight() - words.y) / 2);
    dc.SelectObject(wxNullBitmap);
    return bitmap;
}

// No events run while the main window is made, so it has to be on the screen before.
void letItAppear() {
    constexpr int rounds = 10;
    constexpr int pause = 5;  // milliseconds
    for (int i = 0; i < rounds; ++i) {
        wxTheApp->Yield(true);
        wxMilliSleep(pause);
    }
}
}  // namespace

void Splash::end() {
    if (frmSplash_) frmSplash_->Destroy();
}

void Splash::look() {
    if (wasShown_ || std::chrono::steady_clock::now() - start_ < patience) return;
    wasShown_ = true;
    frmSplash_ = new wxSplashScreen(picture(toWx(texts_.get(Text::ProgramTitle))),
                                    wxSPLASH_CENTRE_ON_SCREEN | wxSPLASH_NO_TIMEOUT, 0, nullptr,
                                    wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                    wxBORDER_SIMPLE | wxFRAME_NO_TASKBAR | wxSTAY_ON_TOP);
    letItAppear();
}

}  // namespace tavlo
