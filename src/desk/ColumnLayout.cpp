#include "desk/ColumnLayout.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "core/Numbers.h"

namespace tavlo {

namespace {
constexpr int leastWidth = 16;
constexpr int mostWidth = 2000;

std::string joined(const std::array<int, listColumnCount>& numbers) {
    std::string text;
    for (const int number : numbers) text += (text.empty() ? "" : ",") + std::to_string(number);
    return text;
}

// One number for every column, or nothing.
std::optional<std::array<int, listColumnCount>> numbersOf(std::string_view text) {
    std::array<int, listColumnCount> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t comma = text.find(',');
        const auto number = parseInteger(text.substr(0, comma));
        const bool isLast = i + 1 == numbers.size();
        if (!number || (comma == std::string_view::npos) != isLast) return std::nullopt;
        numbers[i] = *number;
        text.remove_prefix(isLast ? text.size() : comma + 1);
    }
    return numbers;
}

bool isOrder(std::array<int, listColumnCount> numbers) {
    std::ranges::sort(numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] != static_cast<int>(i)) return false;
    }
    return true;
}
}  // namespace

void ColumnLayout::reset() {
    for (const ListColumnRow& row : listColumns) {
        const std::size_t index = indexOf(row.column);
        order_[index] = row.column;
        widths_[index] = row.width;
        shown_[index] = row.isShown;
    }
}

void ColumnLayout::load(const Settings& settings) {
    if (const auto widths = numbersOf(settings.text(Setting::MainColW))) {
        for (const ListColumnRow& row : listColumns) {
            setWidth(row.column, (*widths)[indexOf(row.column)]);
        }
    }
    if (const auto places = numbersOf(settings.text(Setting::MainColP));
        places && isOrder(*places)) {
        std::ranges::transform(*places, order_.begin(),
                               [](int column) { return static_cast<ListColumn>(column); });
    }
    const auto visible = numbersOf(settings.text(Setting::MainColV));
    if (visible && std::ranges::any_of(*visible, [](int flag) { return flag != 0; })) {
        std::ranges::transform(*visible, shown_.begin(), [](int flag) { return flag != 0; });
    }
    std::string_view sort = settings.text(Setting::MainSort);
    descending = sort.starts_with('-');
    if (descending) sort.remove_prefix(1);
    const auto column = parseInteger(sort);
    sortColumn.reset();
    if (column && *column >= 1 && *column <= static_cast<int>(listColumnCount)) {
        sortColumn = static_cast<ListColumn>(*column - 1);
    }
}

bool ColumnLayout::save(Settings& settings) const {
    std::array<int, listColumnCount> places{};
    std::array<int, listColumnCount> visible{};
    std::ranges::transform(order_, places.begin(),
                           [](auto column) { return static_cast<int>(column); });
    std::ranges::transform(shown_, visible.begin(), [](bool flag) { return flag ? 1 : 0; });
    settings.set(Setting::MainColW, joined(widths_));
    settings.set(Setting::MainColP, joined(places));
    settings.set(Setting::MainColV, joined(visible));
    const std::string number = sortColumn ? std::to_string(indexOf(*sortColumn) + 1) : "";
    settings.set(Setting::MainSort, (sortColumn && descending ? "-" : "") + number);
    return settings.saveGroup(SettingsGroup::Window);
}

std::vector<ListColumn> ColumnLayout::shown() const {
    std::vector<ListColumn> columns;
    std::ranges::copy_if(order_, std::back_inserter(columns),
                         [&](ListColumn column) { return isShown(column); });
    return columns;
}

void ColumnLayout::show(ListColumn column, bool isShown) {
    if (!isShown && shown().size() == 1) return;
    shown_[indexOf(column)] = isShown;
}

void ColumnLayout::setWidth(ListColumn column, int width) {
    widths_[indexOf(column)] = std::clamp(width, leastWidth, mostWidth);
}

void ColumnLayout::move(ListColumn column, bool towardsEnd) {
    std::vector<ListColumn> columns = shown();
    const auto at = std::ranges::find(columns, column);
    if (at == columns.end() || at == (towardsEnd ? columns.end() - 1 : columns.begin())) return;
    std::iter_swap(at, towardsEnd ? at + 1 : at - 1);
    arrange(columns);
}

void ColumnLayout::arrange(const std::vector<ListColumn>& shownOrder) {
    auto next = shownOrder.begin();
    for (ListColumn& column : order_) {
        if (isShown(column) && next != shownOrder.end()) column = *next++;
    }
}

}  // namespace tavlo
