#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "desk/FileRow.h"
#include "desk/ListColumns.h"

namespace tavlo {

/// A row's number as long as its list is shown, whatever is sorted, filtered or removed.
using RowId = std::uint32_t;

struct Sums {
    std::size_t files = 0;
    std::uint64_t bytes = 0;
    std::uint64_t seconds = 0;
};

/// The rows of the main list, and which of them are shown in what order.
class FileTable {
 public:
    /// Forgets every row; sorting and filter stay. Folders are searched below `baseFolder` only.
    void clear(std::string_view baseFolder);

    /// Adds rows whose texts lie in a store that the table then keeps alive.
    void append(std::span<const FileRow> rows, const std::shared_ptr<TextStore>& store);

    /// Takes over what a file holds now. It keeps its place until the list is sorted anew, and
    /// stays in sight until the filter is typed into.
    void replace(RowId id, const ID3tag& record, std::string_view path);

    /// Takes rows off the list.
    void remove(std::span<const RowId> ids);

    [[nodiscard]] const FileRow& row(RowId id) const { return rows_[id]; }
    [[nodiscard]] std::size_t shownCount() const { return shown_.size(); }
    [[nodiscard]] RowId shownAt(std::size_t place) const { return shown_[place]; }
    [[nodiscard]] std::span<const RowId> shown() const { return shown_; }
    /// Where a row is shown; nothing while the filter hides it.
    [[nodiscard]] std::optional<std::size_t> placeOf(RowId id) const;
    [[nodiscard]] std::optional<RowId> rowOfPath(std::string_view path) const;

    /// Rows that are equal in the column keep the order that they had. Rows added later are put in
    /// their places.
    void sortBy(ListColumn column, bool descending);
    /// The order in which the rows came.
    void unsort();

    /// Shows only rows that hold every word, anywhere and without case.
    void filter(std::string_view words);
    [[nodiscard]] const std::string& filterWords() const { return words_; }

    [[nodiscard]] const Sums& sums() const { return sums_; }  ///< of all rows, shown or not
    [[nodiscard]] Sums sumsOf(std::span<const RowId> ids) const;

 private:
    [[nodiscard]] bool matches(const FileRow& row);
    void insertSorted(std::vector<RowId> added);
    [[nodiscard]] std::string keyOf(RowId id) const;
    void sortRows(std::vector<RowId>& ids) const;
    void showMatching();

    std::vector<FileRow> rows_;
    std::vector<RowId> order_;  // of all rows but those removed
    std::vector<RowId> shown_;
    std::vector<bool> matching_;  // by row
    std::vector<std::shared_ptr<TextStore>> stores_;
    TextStore replaced_;
    Sums sums_;
    std::string baseFolder_;
    std::optional<ListColumn> sortColumn_;
    bool descending_ = false;
    std::string words_;
    std::vector<std::string> foldedWords_;
    std::string folded_;  // room for one row's texts, kept between rows
};

}  // namespace tavlo
