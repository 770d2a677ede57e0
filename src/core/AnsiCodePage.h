#pragma once

#include <optional>
#include <string>

#include "core/Settings.h"

namespace tavlo {

/// The page of 8-bit tag text: the environment's number beats the setting, the setting beats the
/// system; 0 or no number means not set.
int chooseAnsiCodePage(const std::optional<std::string>& environment, int setting, int system);

/// The same with the variable TAVLO_ANSI_CODE_PAGE and the setting "AnsiCodePage".
int ansiCodePage(const Settings& settings);

}  // namespace tavlo
