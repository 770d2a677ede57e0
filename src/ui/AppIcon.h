#pragma once

#include <wx/iconbndl.h>

namespace tavlo {

/// The program's own drawing in the sizes that windows and task bars ask for.
wxIconBundle appIcons();

}  // namespace tavlo
