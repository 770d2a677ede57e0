#include "ui/PathField.h"

#include <algorithm>

#include "ui/WxText.h"

namespace tavlo {

PathField::PathField(wxWindow* parent)
    : wxComboBox(parent, wxID_ANY, {}, wxDefaultPosition, wxDefaultSize, 0, nullptr,
                 wxCB_DROPDOWN | wxTE_PROCESS_ENTER) {
    SetMinSize({FromDIP(120), -1});
}

void PathField::onChosen(const std::function<void()>& act) {
    Bind(wxEVT_COMBOBOX_DROPDOWN, [this](wxCommandEvent& event) {
        event.Skip();
        isDropped_ = true;
    });
    Bind(wxEVT_COMBOBOX_CLOSEUP, [this](wxCommandEvent& event) {
        event.Skip();
        CallAfter([this] { isDropped_ = false; });
    });
    Bind(wxEVT_COMBOBOX, [this, act](wxCommandEvent&) {
        if (isDropped_) CallAfter(act);
    });
}

void PathField::setPath(const std::string& path) {
    shown_ = path;
    ChangeValue(toWx(path));
}

std::string PathField::path() const {
    const wxString text = GetValue();
    if (text == toWx(shown_)) return shown_;
    const auto known =
        std::ranges::find_if(history_, [&](const std::string& path) { return text == toWx(path); });
    return known != history_.end() ? *known : fromWx(text.Strip(wxString::both));
}

void PathField::setHistory(std::vector<std::string> paths) {
    history_ = std::move(paths);
    const wxString text = GetValue();
    Clear();
    for (const std::string& path : history_) Append(toWx(path));
    ChangeValue(text);
}

}  // namespace tavlo
