#pragma once

#include <wx/button.h>
#include <wx/gauge.h>
#include <wx/panel.h>
#include <wx/stattext.h>

#include <cstddef>
#include <functional>

#include "core/Texts.h"

namespace tavlo {

/// The line at the window's foot: how far reading or writing is with a button that ends it, then
/// the sums.
class StatusPanel : public wxPanel {
 public:
    StatusPanel(wxWindow* parent, const Texts& texts, const std::function<void()>& cancel);

    void showProgress(Text what, std::size_t done, std::size_t count);
    void endProgress();
    void showText(const wxString& text);
    void speak();

 private:
    const Texts& texts_;
    wxStaticText* lblStatus_;
    wxGauge* gauge_;
    wxButton* cmdCancelLoading_;
};

}  // namespace tavlo
