#pragma once

#include <string>
#include <vector>

#include "tags/ID3tag.h"

namespace tavlo {

/// Remembers the fields as they are: what differs from now on is an edit. A record that was never
/// read counts every field that is not empty as edited.
void markAsRead(ID3tag& record);

/// Counts every field that is not empty as edited, but for a picture that stayed.
void markAllEdited(ID3tag& record);

/// Copies the edited fields of one record into another one of the same file and says which.
FieldSet takeEdits(ID3tag& target, const ID3tag& edited);

/// Whether two records say the same of these fields.
bool sameFields(const ID3tag& a, const ID3tag& b, FieldSet fields);

/// What a record read whole has that another one has not, or has otherwise: names of fields as in
/// the list's JSON, and "Others" for frames and items that are kept but not understood.
std::vector<std::string> tagsMissing(const ID3tag& source, const ID3tag& result);

/// What a writer makes of a record: what its file says, what it is to say, and the fields that were
/// edited, whether or not they differ.
struct TagChange {
    const ID3tag& before;
    const ID3tag& after;
    FieldSet edited = 0;

    [[nodiscard]] bool edits(FieldSet fields) const { return (edited & fields) != 0; }
    [[nodiscard]] bool isSame(FieldSet fields) const { return sameFields(before, after, fields); }
};

}  // namespace tavlo
