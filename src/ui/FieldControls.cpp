#include "ui/FieldControls.h"

#include <wx/arrstr.h>

#include <array>

#include "tags/Genre.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
wxArrayString genreNames() {
    wxArrayString names;
    for (int i = 0; i <= lastGenre; ++i) names.Add(toWx(genreName(i)));
    names.Sort();
    return names;
}

// A text field and a combo box have the same members, but no base class that has them all.
template <class Control>
class TextField final : public FieldControl {
 public:
    TextField(Control* control, const Texts& texts, const std::function<void()>& changed)
        : control_(control), texts_(texts) {
        control_->Bind(wxEVT_TEXT, [this, changed](wxCommandEvent& event) {
            event.Skip();
            if (isShowing_) return;
            isTyped_ = true;
            changed();
        });
    }

    [[nodiscard]] wxWindow* window() const override { return control_; }

    void show(const CommonValue& value) override {
        value_ = value;
        isTyped_ = false;
        put(value.differs ? wxString() : toWx(value.text),
            value.differs ? Text::DiffersHint : std::optional<Text>());
    }

    void empty() override {
        put({}, Text::EmptiedHint);
        isTyped_ = true;
    }

    [[nodiscard]] std::optional<std::string> typed() const override {
        if (!isTyped_) return std::nullopt;
        std::string text = fromWx(control_->GetValue());
        if (!value_.differs && text == value_.text) return std::nullopt;
        return text;
    }

    [[nodiscard]] bool differs() const override { return value_.differs; }

    void speak(const Texts&) override {
        if (!isTyped_) show(value_);
    }

 private:
    void put(const wxString& text, std::optional<Text> hint) {
        isShowing_ = true;
        control_->SetHint(hint ? toWx(texts_.get(*hint)) : wxString());
        if (control_->GetValue() != text) control_->ChangeValue(text);  // the caret stays
        control_->Refresh();  // a hint alone paints nothing anew everywhere
        isShowing_ = false;
    }

    Control* const control_;
    const Texts& texts_;
    CommonValue value_;
    bool isTyped_ = false;
    bool isShowing_ = false;
};

class CheckField final : public FieldControl {
 public:
    CheckField(wxCheckBox* box, const std::function<void()>& changed) : box_(box) {
        box_->Bind(wxEVT_CHECKBOX, [this, changed](wxCommandEvent&) {
            isTyped_ = true;
            changed();
        });
    }

    [[nodiscard]] wxWindow* window() const override { return box_; }

    void show(const CommonValue& value) override {
        isTyped_ = false;
        box_->Set3StateValue(value.differs       ? wxCHK_UNDETERMINED
                             : value.text == "1" ? wxCHK_CHECKED
                                                 : wxCHK_UNCHECKED);
    }

    void empty() override {
        box_->Set3StateValue(wxCHK_UNCHECKED);
        isTyped_ = true;
    }

    [[nodiscard]] std::optional<std::string> typed() const override {
        if (!isTyped_ || box_->Get3StateValue() == wxCHK_UNDETERMINED) return std::nullopt;
        return box_->GetValue() ? "1" : "";
    }

    [[nodiscard]] bool differs() const override {
        return box_->Get3StateValue() == wxCHK_UNDETERMINED;
    }

    void speak(const Texts& texts) override {
        box_->SetLabel(toWx(texts.get(Text::FieldCompilation)));
    }

 private:
    wxCheckBox* const box_;
    bool isTyped_ = false;
};

std::unique_ptr<FieldControl> makeCheck(wxWindow* parent, const Texts& texts,
                                        const std::function<void()>& changed) {
    auto* const box = new wxCheckBox(parent, wxID_ANY, toWx(texts.get(Text::FieldCompilation)),
                                     wxDefaultPosition, wxDefaultSize, wxCHK_3STATE);
    return std::make_unique<CheckField>(box, changed);
}

std::unique_ptr<FieldControl> makeGenre(wxWindow* parent, const Texts& texts,
                                        const std::function<void()>& changed) {
    const wxArrayString names = genreNames();
    auto* const box = new wxComboBox(parent, wxID_ANY, {}, wxDefaultPosition, wxDefaultSize, names);
    box->AutoComplete(names);
    box->SetMinSize({box->FromDIP(60), -1});
    auto field = std::make_unique<TextField<wxComboBox>>(box, texts, changed);
    return field;
}
}  // namespace

std::unique_ptr<FieldControl> makeFieldControl(TagField field, wxWindow* parent, const Texts& texts,
                                               const std::function<void()>& changed) {
    if (field == TagField::Compilation) return makeCheck(parent, texts, changed);
    if (field == TagField::Genre) return makeGenre(parent, texts, changed);
    auto* const box = new wxTextCtrl(parent, wxID_ANY);
    box->SetMinSize({box->FromDIP(60), -1});
    return std::make_unique<TextField<wxTextCtrl>>(box, texts, changed);
}

}  // namespace tavlo
