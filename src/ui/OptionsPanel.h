#pragma once

#include <wx/scrolwin.h>

#include <functional>
#include <string>
#include <vector>

#include "core/Texts.h"
#include "desk/OptionDraft.h"

class wxBoxSizer;
class wxSizerItem;
class wxTextCtrl;

namespace tavlo {

/// One page of the options: the controls of its rows, which edit the draft as they are used.
class OptionsPanel : public wxScrolledWindow {
 public:
    /// `taken` are captions around the page, with the letters that reach them marked.
    OptionsPanel(wxWindow* parent, const OptionPage& page, OptionDraft& draft, const Texts& texts,
                 const std::vector<std::string>& taken);

    const OptionPage& page() const { return page_; }

    void showOnly(const std::vector<const OptionRow*>& rows);

    /// Takes everything from the draft.
    void refresh();

    void focusOn(const OptionRow& row);

    /// Goes to the field whose label has this letter marked; false when there is none that can be
    /// reached. Check boxes see to their letters themselves.
    bool focusOn(wxChar letter);

 private:
    struct Line {
        const OptionRow* row;
        wxString caption;              // with its mark
        wxSizerItem* item = nullptr;   // of the whole line
        wxWindow* control = nullptr;   // gets the focus; none of a heading
        std::vector<wxWindow*> parts;  // enabled and disabled together
        std::function<void()> refresh = [] {};
    };

    void makeLines(const std::vector<std::string>& taken);
    void addLine(Line line);
    wxSizer* controlsOf(Line& line);
    wxSizer* makeHeading(Line& line);
    wxSizer* makeFlag(Line& line);
    wxSizer* makeText(Line& line);
    wxSizer* makeNumber(Line& line);
    wxSizer* makeChoice(Line& line);
    wxSizer* makeTools(Line& line);
    wxBoxSizer* makeLabelled(Line& line, wxWindow* control, int proportion);
    void addBrowse(Line& line, wxSizer& sizer, wxTextCtrl& field);
    void bindField(Line& line, wxTextCtrl& field);
    void enableLines();
    int labelWidth();

    const OptionPage& page_;
    OptionDraft& draft_;
    const Texts& texts_;
    std::vector<Line> lines_;
    int labelWidth_ = 0;
};

}  // namespace tavlo
