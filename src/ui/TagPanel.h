#pragma once

#include <wx/button.h>
#include <wx/panel.h>
#include <wx/scrolwin.h>
#include <wx/stattext.h>

#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "core/StartUp.h"
#include "desk/FileDesk.h"
#include "ui/CoverPanel.h"
#include "ui/FieldControls.h"

namespace tavlo {

/// The express tag editor: the fields of the selected files and their cover.
class TagPanel : public wxPanel {
 public:
    TagPanel(wxWindow* parent, Services& services, FileDesk& desk,
             std::function<void(Command)> command, std::function<void(bool hasTyped)> changed);

    /// Shows what the selected files have; what was typed goes.
    void showSelection();
    /// The same, but what is being typed stays.
    void showUntouched();
    /// The changes that were typed for the selected files and are not theirs yet.
    [[nodiscard]] TagChanges typed() const;
    [[nodiscard]] bool hasTyped() const { return !typed().isEmpty(); }
    /// Hands them to the files; false when there were none.
    bool commit();

    /// Empties the field that has the keyboard.
    void emptyFocused();
    void focusFirst();
    void setCover(NewPicture picture);
    [[nodiscard]] CoverPanel& cover() { return *cover_; }
    void showCover(bool isShown);
    /// Captions in the language of now.
    void speak();
    void enable(const DeskState& state);

 private:
    struct Field {
        TagField field;
        wxStaticText* caption;  ///< null where the control bears it
        std::unique_ptr<FieldControl> control;
    };

    void addField(wxSizer* sizer, TagField field);
    void addPair(wxSizer* sizer, TagField left, TagField right);
    void addMenu(Field& field);
    void fill(bool keepsTyped);
    void onChange();
    void showState(DeskState state);
    void markCaptions();

    Services& services_;
    FileDesk& desk_;
    std::function<void(Command)> command_;
    std::function<void(bool)> changed_;
    std::vector<Field> fields_;
    wxStaticText* heading_ = nullptr;
    wxScrolledWindow* room_ = nullptr;  // of cover and fields
    CoverPanel* cover_ = nullptr;
    wxButton* cmdSave_ = nullptr;
    wxButton* cmdRevert_ = nullptr;
    NewPicture newCover_;
};

}  // namespace tavlo
