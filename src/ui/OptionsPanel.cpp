#include "ui/OptionsPanel.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/listctrl.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <algorithm>

#include "core/PathText.h"
#include "desk/Mnemonics.h"
#include "desk/ToolUses.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr int gap = 6, border = 12, indent = 20, numberWidth = 70, listHeight = 300;  // DIP

wxString wildcardOf(OptionKind kind, const Texts& texts) {
    const wxString all = toWx(texts.get(Text::OptAllFiles)) + " (*)|*";
    if (kind == OptionKind::File)
        return toWx(texts.get(Text::OptLanguageFiles)) + " (*.lng)|*.lng|" + all;
    const bool haveEndings = nativePathStyle() == PathStyle::Windows;
    return haveEndings ? toWx(texts.get(Text::OptPrograms)) + " (*.exe)|*.exe|" + all : all;
}

// Empty when none was chosen.
wxString askForPath(wxWindow* parent, const OptionRow& row, const Texts& texts,
                    const wxString& now) {
    const wxString title = toWx(texts.get(row.caption));
    if (row.kind == OptionKind::Folder) {
        wxDirDialog dialog(parent, title, now, wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
        return dialog.ShowModal() == wxID_OK ? dialog.GetPath() : wxString();
    }
    wxFileDialog dialog(parent, title, {}, {}, wildcardOf(row.kind, texts),
                        wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    if (!now.empty()) dialog.SetPath(now);
    return dialog.ShowModal() == wxID_OK ? dialog.GetPath() : wxString();
}
}  // namespace

OptionsPanel::OptionsPanel(wxWindow* parent, const OptionPage& page, OptionDraft& draft,
                           const Texts& texts, const std::vector<std::string>& taken)
    : wxScrolledWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                       wxVSCROLL | wxTAB_TRAVERSAL),
      page_(page),
      draft_(draft),
      texts_(texts) {
    auto* outer = new wxBoxSizer(wxVERTICAL);
    SetSizer(outer);
    makeLines(taken);
    SetScrollRate(0, FromDIP(border));
    refresh();
}

void OptionsPanel::makeLines(const std::vector<std::string>& taken) {
    std::vector<std::string> captions = taken;
    for (const OptionRow& row : page_.rows) {
        const bool isMarked = row.kind != OptionKind::Heading && row.kind != OptionKind::Tools;
        captions.push_back(isMarked ? texts_.get(row.caption) : std::string());
    }
    captions = withMnemonics(std::move(captions));
    labelWidth_ = labelWidth();
    lines_.reserve(page_.rows.size());
    for (std::size_t i = 0; i < page_.rows.size(); ++i) {
        Line line{&page_.rows[i], toWx(captions[taken.size() + i]), nullptr, nullptr, {}};
        addLine(std::move(line));
    }
}

// All labels of a page are as wide as the widest, so that the fields stand in one column.
int OptionsPanel::labelWidth() {
    int widest = 0;
    for (const OptionRow& row : page_.rows) {
        if (row.kind == OptionKind::Heading || row.kind == OptionKind::Flag ||
            row.kind == OptionKind::Shell || row.kind == OptionKind::Tools)
            continue;
        widest = std::max(widest, GetTextExtent(toWx(texts_.get(row.caption)) + ":").GetWidth() +
                                      (row.condition ? FromDIP(indent) : 0));
    }
    return widest + FromDIP(gap);
}

void OptionsPanel::addLine(Line line) {
    wxSizer* sizer = controlsOf(line);
    const bool isBelow = line.row->condition.has_value();
    auto* shifted = new wxBoxSizer(wxHORIZONTAL);
    if (isBelow) shifted->AddSpacer(FromDIP(indent));
    shifted->Add(sizer, 1, wxALIGN_CENTER_VERTICAL);
    line.item = GetSizer()->Add(shifted, 0, wxEXPAND | wxLEFT | wxRIGHT | wxTOP, FromDIP(gap));
    if (line.control != nullptr) {
        line.control->SetName(controlName(*line.row));
        for (wxWindow* part : line.parts)
            if (line.row->tip && part->GetToolTipText().empty())
                part->SetToolTip(toWx(texts_.get(*line.row->tip)));
    }
    lines_.push_back(std::move(line));
}

wxSizer* OptionsPanel::controlsOf(Line& line) {
    switch (line.row->kind) {
        case OptionKind::Heading:
            return makeHeading(line);
        case OptionKind::Flag:
        case OptionKind::Shell:
            return makeFlag(line);
        case OptionKind::Number:
            return makeNumber(line);
        case OptionKind::Choice:
            return makeChoice(line);
        case OptionKind::Tools:
            return makeTools(line);
        default:
            return makeText(line);
    }
}

wxSizer* OptionsPanel::makeHeading(Line& line) {
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    auto* label =
        new wxStaticText(this, wxID_ANY, toWx(withoutMnemonic(texts_.get(line.row->caption))));
    label->SetFont(label->GetFont().Bold());
    label->SetName(controlName(*line.row));
    sizer->Add(label, 0, wxTOP, FromDIP(lines_.empty() ? 0 : gap));
    return sizer;
}

wxSizer* OptionsPanel::makeFlag(Line& line) {
    const OptionRow& row = *line.row;
    auto* box = new wxCheckBox(this, wxID_ANY, line.caption);
    box->Bind(wxEVT_CHECKBOX, [this, &row](wxCommandEvent& event) {
        draft_.setFlag(row, event.IsChecked());
        enableLines();
    });
    line.control = box;
    line.parts = {box};
    line.refresh = [this, &row, box] { box->SetValue(draft_.flag(row)); };
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    sizer->Add(box);
    return sizer;
}

wxBoxSizer* OptionsPanel::makeLabelled(Line& line, wxWindow* control, int proportion) {
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    auto* label = new wxStaticText(this, wxID_ANY, line.caption + ":");
    // Labels come before their fields in the order of windows, which is how their letters work.
    label->MoveBeforeInTabOrder(control);
    label->SetMinSize({labelWidth_ - (line.row->condition ? FromDIP(indent) : 0), -1});
    sizer->Add(label, 0, wxALIGN_CENTER_VERTICAL);
    sizer->Add(control, proportion, wxALIGN_CENTER_VERTICAL);
    line.control = control;
    line.parts = {label, control};
    return sizer;
}

void OptionsPanel::bindField(Line& line, wxTextCtrl& field) {
    const OptionRow& row = *line.row;
    field.Bind(wxEVT_TEXT, [this, &row, &field](wxCommandEvent&) {
        draft_.type(row, fromWx(field.GetValue()));
    });
    line.refresh = [this, &row, &field] { field.ChangeValue(toWx(draft_.text(row))); };
}

wxSizer* OptionsPanel::makeText(Line& line) {
    auto* field = new wxTextCtrl(this, wxID_ANY);
    bindField(line, *field);
    wxBoxSizer* sizer = makeLabelled(line, field, 1);
    if (line.row->kind != OptionKind::Line) addBrowse(line, *sizer, *field);
    return sizer;
}

void OptionsPanel::addBrowse(Line& line, wxSizer& sizer, wxTextCtrl& field) {
    auto* button = new wxButton(this, wxID_ANY, toWx(texts_.get(Text::OptBrowse)));
    button->SetName("cmd" + controlName(*line.row).substr(3));
    button->SetToolTip(toWx(texts_.get(line.row->caption)));
    button->Bind(wxEVT_BUTTON, [this, &row = *line.row, &field](wxCommandEvent&) {
        const wxString path = askForPath(this, row, texts_, field.GetValue());
        if (!path.empty()) field.SetValue(path);
    });
    sizer.Add(button, 0, wxLEFT | wxALIGN_CENTER_VERTICAL, FromDIP(gap));
    line.parts.push_back(button);
}

wxSizer* OptionsPanel::makeNumber(Line& line) {
    auto* field =
        new wxTextCtrl(this, wxID_ANY, {}, wxDefaultPosition, wxSize(FromDIP(numberWidth), -1));
    bindField(line, *field);
    wxBoxSizer* sizer = makeLabelled(line, field, 0);
    auto* range = new wxStaticText(this, wxID_ANY, toWx(rangeText(*line.row)));
    sizer->Add(range, 0, wxLEFT | wxALIGN_CENTER_VERTICAL, FromDIP(gap));
    line.parts.push_back(range);
    if (!line.row->tip)
        field->SetToolTip(toWx(texts_.get(Text::OptNumberTip, rangeText(*line.row))));
    return sizer;
}

wxSizer* OptionsPanel::makeChoice(Line& line) {
    const OptionRow& row = *line.row;
    auto* box = new wxChoice(this, wxID_ANY);
    for (const OptionChoice& choice : row.choices) box->Append(toWx(texts_.get(choice.caption)));
    box->Bind(wxEVT_CHOICE, [this, &row](wxCommandEvent& event) {
        if (event.GetSelection() >= 0)
            draft_.choose(row, static_cast<std::size_t>(event.GetSelection()));
    });
    line.refresh = [this, &row, box] {
        // A value that is none of the choices stands behind them as long as it is the one.
        while (box->GetCount() > row.choices.size()) box->Delete(box->GetCount() - 1);
        const auto place = draft_.choice(row);
        if (!place) box->Append(toWx(draft_.text(row)));
        box->SetSelection(static_cast<int>(place.value_or(row.choices.size())));
    };
    return makeLabelled(line, box, 0);
}

wxSizer* OptionsPanel::makeTools(Line& line) {
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    const auto missing = missingToolUses(systemToolPlaces());
    if (missing.empty()) {
        sizer->Add(new wxStaticText(this, wxID_ANY, toWx(texts_.get(Text::OptNoneMissing))));
        return sizer;
    }
    auto* list = new wxListCtrl(this, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(-1, listHeight)),
                                wxLC_REPORT | wxLC_SINGLE_SEL);
    list->AppendColumn(toWx(texts_.get(Text::OptToolColumn)));
    list->AppendColumn(toWx(texts_.get(Text::OptToolUseColumn)));
    for (const MissingTool& tool : missing) {
        const long at = list->InsertItem(list->GetItemCount(), toWx(tool.name));
        list->SetItem(at, 1, toWx(texts_.get(tool.enables)));
    }
    for (const int column : {0, 1}) list->SetColumnWidth(column, wxLIST_AUTOSIZE);
    sizer->Add(list, 0, wxEXPAND);
    line.control = list;
    line.parts = {list};
    return sizer;
}

void OptionsPanel::enableLines() {
    for (const Line& line : lines_)
        for (wxWindow* part : line.parts) part->Enable(draft_.isEnabled(*line.row));
}

void OptionsPanel::refresh() {
    for (const Line& line : lines_) line.refresh();
    enableLines();
}

void OptionsPanel::showOnly(const std::vector<const OptionRow*>& rows) {
    for (const Line& line : lines_)
        line.item->Show(std::ranges::find(rows, line.row) != rows.end());
    FitInside();
    Layout();
    Refresh();
}

void OptionsPanel::focusOn(const OptionRow& row) {
    const auto line = std::ranges::find(lines_, &row, &Line::row);
    if (line != lines_.end() && line->control != nullptr) line->control->SetFocus();
}

bool OptionsPanel::focusOn(wxChar letter) {
    const wxString wanted = wxString(letter).Lower();
    for (const Line& line : lines_) {
        const int mark = line.caption.Find('&');
        if (mark == wxNOT_FOUND || !line.item->IsShown() || !line.control->IsEnabled()) continue;
        const auto at = static_cast<std::size_t>(mark) + 1;
        if (line.caption.Mid(at, 1).Lower() != wanted) continue;
        const bool isLabelled = line.parts.front() != line.control;
        if (isLabelled) line.control->SetFocus();
        return isLabelled;
    }
    return false;
}

}  // namespace tavlo
