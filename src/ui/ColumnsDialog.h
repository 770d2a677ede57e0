#pragma once

#include <wx/window.h>

#include "core/Texts.h"
#include "desk/ColumnLayout.h"

namespace tavlo {

/// Lets a person choose the columns of the list and their order; false when it was called off.
bool chooseColumns(wxWindow* parent, const Texts& texts, ColumnLayout& layout);

}  // namespace tavlo
