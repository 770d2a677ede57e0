#pragma once

#include <string>
#include <vector>

#include "tags/ID3tag.h"

namespace tavlo {

/// Remembers the fields as they are: what differs from now on is an edit. A record that was never
/// read counts every field that is not empty as edited.
void markAsRead(ID3tag& record);

/// Copies the edited fields of one record into another one of the same file.
void takeEdits(ID3tag& target, const ID3tag& edited);

/// What a record read whole has that another one has not, or has otherwise: names of fields as in
/// the list's JSON, and "Others" for frames and items that are kept but not understood.
std::vector<std::string> tagsMissing(const ID3tag& source, const ID3tag& result);

}  // namespace tavlo
