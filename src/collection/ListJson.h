#pragma once

#include <string>

#include "collection/ListRow.h"

namespace tavlo {

/// Appends one line: a JSON object with every field of the row. Bytes of a name that are no UTF-8
/// stand as \udc80 to \udcff.
void appendJsonLine(std::string& out, const ListRow& row);

}  // namespace tavlo
