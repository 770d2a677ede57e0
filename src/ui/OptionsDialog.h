#pragma once

#include "core/StartUp.h"

class wxWindow;

namespace tavlo {

/// Lets the person change the options, and waits. True when something was stored; whoever shows
/// what depends on it reads the settings again, and calls `changeTexts`.
bool showOptions(wxWindow* parent, Services& services);

}  // namespace tavlo
