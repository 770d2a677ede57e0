#pragma once

#include <string>
#include <vector>

#include "collection/ListRow.h"
#include "core/Texts.h"

namespace tavlo {

/// Appends one line of values with tabs between them; the first is the full path. Tabs, line ends
/// and other control characters inside values become blanks, bytes of names stay as they are.
void appendTabLine(std::string& out, const ListRow& row);

/// A list in aligned columns for a terminal of a given width.
class ListTable {
 public:
    void add(const ListRow& row);

    /// Captions and rows; cells that do not fit are cut with "…", and a narrow terminal does
    /// without some columns.
    [[nodiscard]] std::string print(const Texts& texts, std::size_t terminalColumns) const;

 private:
    std::vector<std::vector<std::string>> cells_;  // by row, then column
};

/// How many places of a terminal a text takes: two for a wide letter, none for a mark above.
std::size_t displayWidth(std::string_view text);

}  // namespace tavlo
