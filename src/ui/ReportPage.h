#pragma once

#include <wx/listctrl.h>
#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>

#include <string>
#include <vector>

namespace tavlo {

struct ReportRow {
    std::vector<std::string> cells;
    bool isMarked = false;  ///< shown bold
    std::string detail;     ///< what the cells say, in full
};

/// A list of rows, and below it the chosen row in full, to be read and copied.
class ReportPage : public wxPanel {
 public:
    /// The first columns are as wide as their texts, the last `shares` of them share the rest.
    ReportPage(wxWindow* parent, std::size_t shares);

    /// The row chosen before stays chosen, as far as there is one in its place.
    void fill(const std::vector<std::string>& captions, std::vector<ReportRow> rows);
    void share(std::size_t columns) { shares_ = columns; }

 protected:
    wxBoxSizer* sizer() { return sizer_; }

 private:
    void addRow(const ReportRow& row);
    void fitColumns();
    void showDetail();

    wxBoxSizer* sizer_;
    wxListCtrl* lstRows_;
    wxTextCtrl* txtDetail_;
    std::size_t shares_;
    std::vector<ReportRow> rows_;
};

}  // namespace tavlo
