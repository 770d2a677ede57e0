#include "ui/TagPanel.h"

#include <wx/menu.h>
#include <wx/sizer.h>

#include "ui/WxText.h"

namespace tavlo {

namespace {
// Fields that are short stand two in a line.
struct Line {
    TagField left;
    std::optional<TagField> right;
};
constexpr std::array lines{Line{TagField::Artist, {}},
                           Line{TagField::Title, {}},
                           Line{TagField::Mix, {}},
                           Line{TagField::Album, {}},
                           Line{TagField::Year, TagField::Track},
                           Line{TagField::Genre, {}},
                           Line{TagField::Disk, TagField::Bpm},
                           Line{TagField::Comment, {}},
                           Line{TagField::Composer, {}},
                           Line{TagField::OriginalArtist, {}},
                           Line{TagField::CopyRight, {}},
                           Line{TagField::Url, {}},
                           Line{TagField::EncodedBy, {}},
                           Line{TagField::Compilation, {}}};
constexpr int gap = 3;
}  // namespace

TagPanel::TagPanel(wxWindow* parent, Services& services, FileDesk& desk,
                   std::function<void(Command)> command, std::function<void(bool)> changed)
    : wxPanel(parent),
      services_(services),
      desk_(desk),
      command_(std::move(command)),
      changed_(std::move(changed)) {
    auto* const all = new wxBoxSizer(wxVERTICAL);
    heading_ = new wxStaticText(this, wxID_ANY, {}, wxDefaultPosition, wxDefaultSize,
                                wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
    heading_->SetFont(heading_->GetFont().Bold());
    all->Add(heading_, wxSizerFlags().Expand().Border(wxALL, FromDIP(gap)));
    room_ = new wxScrolledWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                 wxVSCROLL | wxTAB_TRAVERSAL);
    auto* const inside = new wxBoxSizer(wxVERTICAL);
    cover_ = new CoverPanel(room_, services_, command_,
                            [this](NewPicture picture) { setCover(std::move(picture)); });
    inside->Add(cover_, wxSizerFlags().Expand().Border(wxALL, FromDIP(gap)));
    auto* const grid = new wxFlexGridSizer(2, FromDIP(gap), FromDIP(6));
    grid->AddGrowableCol(1);
    for (const Line& line : lines) {
        if (line.right) {
            addPair(grid, line.left, *line.right);
        } else {
            addField(grid, line.left);
        }
    }
    inside->Add(grid, wxSizerFlags().Expand().Border(wxALL, FromDIP(gap)));
    room_->SetSizer(inside);
    room_->SetScrollRate(0, FromDIP(12));
    // A scroll bar that came takes room from the fields.
    room_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        room_->CallAfter([this] { room_->Layout(); });
    });
    all->Add(room_, wxSizerFlags(1).Expand());
    auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
    cmdSave_ = new wxButton(this, wxID_ANY);
    cmdRevert_ = new wxButton(this, wxID_ANY);
    cmdSave_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { command_(Command::Save); });
    cmdRevert_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { command_(Command::Revert); });
    buttons->Add(cmdSave_, wxSizerFlags(1).Border(wxRIGHT, FromDIP(gap)));
    buttons->Add(cmdRevert_, wxSizerFlags(1));
    all->Add(buttons, wxSizerFlags().Expand().Border(wxALL, FromDIP(gap)));
    SetSizer(all);
    speak();
}

void TagPanel::addField(wxSizer* sizer, TagField field) {
    const bool bearsCaption = field == TagField::Compilation;
    wxStaticText* const caption = bearsCaption ? nullptr : new wxStaticText(room_, wxID_ANY, {});
    auto control = makeFieldControl(field, room_, services_.texts, [this] { onChange(); });
    if (caption != nullptr) {
        sizer->Add(caption, wxSizerFlags().CenterVertical());
    } else {
        sizer->AddSpacer(0);
    }
    sizer->Add(control->window(), wxSizerFlags(1).Expand());
    fields_.push_back({field, caption, std::move(control)});
    addMenu(fields_.back());
}

void TagPanel::addPair(wxSizer* sizer, TagField left, TagField right) {
    auto* const pair = new wxFlexGridSizer(3, FromDIP(gap), FromDIP(6));
    pair->AddGrowableCol(0);
    pair->AddGrowableCol(2);
    auto* const caption = new wxStaticText(room_, wxID_ANY, {});
    sizer->Add(caption, wxSizerFlags().CenterVertical());
    auto control = makeFieldControl(left, room_, services_.texts, [this] { onChange(); });
    pair->Add(control->window(), wxSizerFlags(1).Expand());
    fields_.push_back({left, caption, std::move(control)});
    addMenu(fields_.back());
    addField(pair, right);
    sizer->Add(pair, wxSizerFlags(1).Expand());
}

// Of several files a field can be emptied on purpose, or left alone after all.
void TagPanel::addMenu(Field& field) {
    FieldControl* const control = field.control.get();
    const TagField which = field.field;
    control->window()->Bind(wxEVT_CONTEXT_MENU, [this, control, which](wxContextMenuEvent& event) {
        if (desk_.selected().size() < 2) return event.Skip();
        wxMenu menu;
        const Texts& texts = services_.texts;
        const int empty = menu.Append(wxID_ANY, toWx(texts.get(Text::EmptyFieldCaption)))->GetId();
        const int keep = menu.Append(wxID_ANY, toWx(texts.get(Text::KeepFieldCaption)))->GetId();
        const int chosen = GetPopupMenuSelectionFromUser(menu);
        if (chosen == empty) control->empty();
        if (chosen == keep) control->show(desk_.common(which));
        onChange();
    });
}

void TagPanel::onChange() {
    showState(desk_.state());
}

void TagPanel::showState(DeskState state) {
    state.hasTyped = hasTyped();
    enable(state);
    markCaptions();
    changed_(state.hasTyped);
}

void TagPanel::enable(const DeskState& state) {
    cmdSave_->Enable(commandRow(Command::Save).isPossible(state));
    cmdRevert_->Enable(commandRow(Command::Revert).isPossible(state));
}

void TagPanel::showSelection() {
    newCover_.reset();
    fill(false);
}

void TagPanel::showUntouched() {
    fill(true);
}

void TagPanel::fill(bool keepsTyped) {
    const std::vector<RowId>& rows = desk_.selected();
    const DeskState state = desk_.state();
    const Texts& texts = services_.texts;
    heading_->SetLabel(rows.empty() ? toWx(texts.get(Text::NoFileSelected))
                       : rows.size() == 1
                           ? toWx(desk_.table().row(rows.front()).text(RowText::Name))
                           : toWx(texts.get(Text::FilesSelected, std::to_string(rows.size()))));
    for (const Field& field : fields_) {
        const bool isKept = keepsTyped && field.control->typed();
        if (!isKept) field.control->show(desk_.common(field.field));
        field.control->window()->Enable(state.editable > 0);
        field.control->window()->SetToolTip(rows.size() > 1 ? toWx(texts.get(Text::FullTextTip))
                                                            : wxString());
    }
    if (!newCover_) cover_->show(desk_);
    showState(state);
}

// Behind the caption, for a field that has the keyboard shows no hint: what differs from file to
// file, and what was typed.
void TagPanel::markCaptions() {
    for (const Field& field : fields_) {
        if (field.caption == nullptr) continue;
        std::string text = services_.texts.get(tagFieldRow(field.field).caption);
        if (field.control->typed() || desk_.isEdited(field.field)) {
            text += " \u25CF";
        } else if (field.control->differs()) {
            text += " \u2260";
        }
        if (fromWx(field.caption->GetLabel()) != text) field.caption->SetLabel(toWx(text));
    }
    room_->Layout();
}

TagChanges TagPanel::typed() const {
    TagChanges changes;
    for (const Field& field : fields_) {
        if (auto text = field.control->typed()) changes.texts[field.field] = std::move(*text);
    }
    changes.picture = newCover_;
    return changes;
}

bool TagPanel::commit() {
    const TagChanges changes = typed();
    if (changes.isEmpty()) return false;
    desk_.editSelected(changes);
    return true;
}

void TagPanel::emptyFocused() {
    const wxWindow* const focused = FindFocus();
    for (const Field& field : fields_) {
        const wxWindow* const window = field.control->window();
        if (focused != window && (focused == nullptr || focused->GetParent() != window)) continue;
        field.control->empty();
        onChange();
    }
}

void TagPanel::focusFirst() {
    fields_.front().control->window()->SetFocus();
}

void TagPanel::setCover(NewPicture picture) {
    if (desk_.state().editable == 0) return;
    newCover_ = std::move(picture);
    cover_->showNew(newCover_);
    onChange();
}

void TagPanel::showCover(bool isShown) {
    cover_->Show(isShown);
    room_->FitInside();
    room_->Layout();
    Layout();
}

void TagPanel::speak() {
    const Texts& texts = services_.texts;
    for (const Field& field : fields_) {
        field.control->speak(texts);
    }
    const auto name = [&](wxButton* button, Command command) {
        button->SetLabel(toWx(texts.get(commandRow(command).caption)));
        button->SetToolTip(toWx(texts.get(commandRow(command).tip)));
    };
    name(cmdSave_, Command::Save);
    name(cmdRevert_, Command::Revert);
    cover_->speak();
    showUntouched();
    room_->FitInside();
    room_->Layout();
    Layout();
}

}  // namespace tavlo
