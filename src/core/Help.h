#pragma once

#include <string>

#include "core/Texts.h"

namespace tavlo {

/// The whole help page: how to call the program, then every option of the table under its group.
std::string helpPage(const Texts& texts);

}  // namespace tavlo
