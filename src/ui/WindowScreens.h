#pragma once

#include <wx/toplevel.h>

#include <vector>

#include "desk/WindowPlace.h"

namespace tavlo {

/// The work areas of all screens.
std::vector<WindowPlace> screenAreas();

/// Moves a window that has its size to a kept corner, or to where it can be taken hold of; over the
/// middle of its parent where no corner is kept.
void placeWindow(wxTopLevelWindow& window, int left, int top);

}  // namespace tavlo
