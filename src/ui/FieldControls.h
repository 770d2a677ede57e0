#pragma once

#include <wx/checkbox.h>
#include <wx/combobox.h>
#include <wx/textctrl.h>

#include <functional>
#include <optional>
#include <string>

#include "core/Texts.h"
#include "desk/TagChanges.h"

namespace tavlo {

/// The control of one tag field. It knows whether a person changed it: until then the files keep
/// what they have, be it different from file to file.
class FieldControl {
 public:
    virtual ~FieldControl() = default;

    [[nodiscard]] virtual wxWindow* window() const = 0;
    /// Shows what the files have; what was typed goes.
    virtual void show(const CommonValue& value) = 0;
    /// The field is to be empty in every file.
    virtual void empty() = 0;
    /// What was typed; nothing where nobody typed.
    [[nodiscard]] virtual std::optional<std::string> typed() const = 0;
    /// Whether the files that are shown have it differently.
    [[nodiscard]] virtual bool differs() const = 0;
    virtual void speak(const Texts& texts) = 0;
};

/// Makes the control that suits a field; `changed` is told of every change by a person.
std::unique_ptr<FieldControl> makeFieldControl(TagField field, wxWindow* parent, const Texts& texts,
                                               const std::function<void()>& changed);

}  // namespace tavlo
