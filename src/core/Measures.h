#pragma once

#include <cstdint>
#include <string>

#include "core/Texts.h"

namespace tavlo {

/// A size in the largest unit that leaves a whole number above 9: "345 MB".
std::string sizeText(const Texts& texts, std::uint64_t bytes);

/// A playing time as "12:34:56".
std::string durationText(std::uint64_t seconds);

}  // namespace tavlo
