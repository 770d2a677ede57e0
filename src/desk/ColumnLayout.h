#pragma once

#include <array>
#include <optional>
#include <vector>

#include "core/Settings.h"
#include "desk/ListColumns.h"

namespace tavlo {

/// Which columns the list shows, how wide and in what order, and by which it is sorted.
class ColumnLayout {
 public:
    ColumnLayout() { reset(); }
    /// Columns, their order and their widths as they are at first.
    void reset();

    /// From "MainColW", "MainColP", "MainColV" and "MainSort": numbers parted by commas, a column
    /// each. What does not fit (another count, a column twice) leaves the defaults.
    void load(const Settings& settings);
    /// False when they could not be stored.
    bool save(Settings& settings) const;

    /// The shown columns from left to right; never none.
    [[nodiscard]] std::vector<ListColumn> shown() const;
    /// All of them.
    [[nodiscard]] const std::array<ListColumn, listColumnCount>& order() const { return order_; }

    [[nodiscard]] bool isShown(ListColumn column) const { return shown_[indexOf(column)]; }
    /// The last shown column stays.
    void show(ListColumn column, bool isShown);
    [[nodiscard]] int width(ListColumn column) const { return widths_[indexOf(column)]; }
    void setWidth(ListColumn column, int width);
    /// Before or behind its shown neighbour; nothing happens at an end.
    void move(ListColumn column, bool towardsEnd);
    /// The order of the shown columns as they are now; hidden ones keep their places.
    void arrange(const std::vector<ListColumn>& shownOrder);

    std::optional<ListColumn> sortColumn;
    bool descending = false;

 private:
    static std::size_t indexOf(ListColumn column) { return static_cast<std::size_t>(column); }

    std::array<ListColumn, listColumnCount> order_{};
    std::array<int, listColumnCount> widths_{};
    std::array<bool, listColumnCount> shown_{};
};

}  // namespace tavlo
