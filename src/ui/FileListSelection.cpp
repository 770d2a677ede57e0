#include <algorithm>
#include <array>
#include <utility>

#include "ui/FileListCtrl.h"

namespace tavlo {

namespace {
constexpr long selectedState = wxLIST_STATE_SELECTED;
constexpr long focusedState = wxLIST_STATE_FOCUSED;

std::size_t placeFrom(long item) {
    return static_cast<std::size_t>(item);
}
}  // namespace

// The control keeps places, the desk rows: what is selected, what has the keyboard and where a
// range begins has to go with its row when places change. So ranges are made here.
void FileListCtrl::watchSelection() {
    Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { onSelection(); });
    Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { onSelection(); });
    Bind(wxEVT_LIST_ITEM_FOCUSED, [this](wxListEvent& event) {
        event.Skip();
        if (!isRestoring_) focus_ = rowAt(event.GetIndex());
    });
    const auto watch = [this](wxWindow* window) {
        window->Bind(wxEVT_LEFT_DOWN, &FileListCtrl::onPress, this);
        window->Bind(wxEVT_RIGHT_DOWN, &FileListCtrl::onPress, this);
        window->Bind(wxEVT_KEY_DOWN, &FileListCtrl::onArrow, this);
        // Not every system tells of all that it selects.
        window->Bind(wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
            event.Skip();
            onSelection();
        });
        window->Bind(wxEVT_KEY_UP, [this](wxKeyEvent& event) {
            event.Skip();
            onSelection();
        });
    };
    watch(this);
    // Where the toolkit draws the list itself, its rows have a window of their own.
    for (wxWindow* const child : GetChildren()) {
        if (child->GetName() != "wxlistctrlcolumntitles") watch(child);
    }
}

std::optional<RowId> FileListCtrl::rowAt(long item) const {
    if (item < 0 || placeFrom(item) >= desk_.table().shownCount()) return std::nullopt;
    return desk_.table().shownAt(placeFrom(item));
}

std::optional<long> FileListCtrl::itemOf(std::optional<RowId> row) const {
    const auto place = row ? desk_.table().placeOf(*row) : std::nullopt;
    if (!place || static_cast<long>(*place) >= GetItemCount()) return std::nullopt;
    return static_cast<long>(*place);
}

void FileListCtrl::forgetRows() {
    focus_.reset();
    anchor_.reset();
}

void FileListCtrl::onPress(wxMouseEvent& event) {
    event.Skip();
    int flags = 0;
    const long item = HitTest(event.GetPosition(), flags);
    if (item < 0) return;
    focus_ = rowAt(item);
    if (event.ShiftDown() && event.LeftDown()) {
        event.Skip(false);
        SetFocus();
        extendTo(item, event.ControlDown());
    } else if (event.ControlDown()) {
        anchor_ = rowAt(item);
    } else {
        dropStraySelection();
    }
}

void FileListCtrl::onArrow(wxKeyEvent& event) {
    event.Skip();
    const long focused = GetNextItem(-1, wxLIST_NEXT_ALL, focusedState);
    const long last = GetItemCount() - 1;
    const std::array<std::pair<int, long>, 6> targets{{{WXK_UP, focused - 1},
                                                       {WXK_DOWN, focused + 1},
                                                       {WXK_PAGEUP, focused - GetCountPerPage()},
                                                       {WXK_PAGEDOWN, focused + GetCountPerPage()},
                                                       {WXK_HOME, 0},
                                                       {WXK_END, last}}};
    const auto* const target = std::ranges::find(targets, event.GetKeyCode(),
                                                 [](const auto& entry) { return entry.first; });
    if (target == targets.end() || last < 0) return;
    if (event.GetModifiers() == wxMOD_NONE) dropStraySelection();
    if (event.GetModifiers() != wxMOD_SHIFT) return;
    event.Skip(false);
    extendTo(std::clamp(target->second, 0L, last), false);
}

// Where one row is selected, the control takes it for the one with the keyboard and would leave any
// other one selected.
void FileListCtrl::dropStraySelection() {
    if (GetSelectedItemCount() != 1) return;
    const long selected = GetNextItem(-1, wxLIST_NEXT_ALL, selectedState);
    if (selected == GetNextItem(-1, wxLIST_NEXT_ALL, focusedState)) return;
    isRestoring_ = true;
    SetItemState(selected, 0, selectedState);
    isRestoring_ = false;
}

void FileListCtrl::extendTo(long item, bool keepsOthers) {
    const long from = itemOf(anchor_).value_or(itemOf(focus_).value_or(item));
    if (!anchor_) anchor_ = rowAt(from);
    std::vector<bool> wanted(placeFrom(GetItemCount()));
    if (keepsOthers) wanted = selectedPlaces();
    const auto [first, last] = std::minmax(from, item);
    std::fill(wanted.begin() + first, wanted.begin() + last + 1, true);
    select(wanted);
    focusOn(item);
    EnsureVisible(item);
    onSelection();
}

void FileListCtrl::focusOn(long item) {
    SetItemState(item, focusedState, focusedState);
}

void FileListCtrl::showFocus() {
    if (const auto item = itemOf(focus_)) EnsureVisible(*item);
}

// Only what is rarer is told one by one.
void FileListCtrl::select(const std::vector<bool>& wanted) {
    const auto count = static_cast<std::size_t>(std::ranges::count(wanted, true));
    const bool isMost = count > wanted.size() / 2;
    isRestoring_ = true;
    SetItemState(-1, isMost ? selectedState : 0, selectedState);
    for (std::size_t place = 0; place < wanted.size(); ++place) {
        if (wanted[place] == isMost) continue;
        SetItemState(static_cast<long>(place), isMost ? 0 : selectedState, selectedState);
    }
    isRestoring_ = false;
}

std::vector<bool> FileListCtrl::selectedPlaces() const {
    std::vector<bool> places(placeFrom(GetItemCount()));
    for (long item = -1; (item = GetNextItem(item, wxLIST_NEXT_ALL, selectedState)) >= 0;) {
        places[placeFrom(item)] = true;
    }
    return places;
}

void FileListCtrl::rowsMoved() {
    isRestoring_ = true;
    SetItemState(-1, 0, selectedState);
    rowsCame();
    isRestoring_ = false;
    showSelected();
    keepFocus();
    onSelection();
}

void FileListCtrl::showSelected() {
    const std::vector<RowId>& selected = desk_.selected();
    if (selected.empty()) return;
    std::vector<bool> isSelected(*std::ranges::max_element(selected) + 1);
    for (const RowId row : selected) isSelected[row] = true;
    const auto shown = desk_.table().shown();
    std::vector<bool> wanted(shown.size());
    std::transform(shown.begin(), shown.end(), wanted.begin(),
                   [&](RowId row) { return row < isSelected.size() && isSelected[row]; });
    select(wanted);
}

// With its row, or else with the first one that is selected.
void FileListCtrl::keepFocus() {
    const auto focused = itemOf(focus_);
    const long first = GetNextItem(-1, wxLIST_NEXT_ALL, selectedState);
    if (focused || first >= 0) focusOn(focused.value_or(first));
    focus_ = rowAt(GetNextItem(-1, wxLIST_NEXT_ALL, focusedState));
}

std::vector<RowId> FileListCtrl::selectedRows() const {
    std::vector<RowId> rows;
    rows.reserve(placeFrom(GetSelectedItemCount()));
    for (long item = -1; (item = GetNextItem(item, wxLIST_NEXT_ALL, selectedState)) >= 0;) {
        if (const auto row = rowAt(item)) rows.push_back(*row);
    }
    return rows;
}

// A range that is selected comes as many events: they are told as one.
void FileListCtrl::onSelection() {
    if (isRestoring_ || isSelectionDirty_) return;
    isSelectionDirty_ = true;
    CallAfter([this] {
        isSelectionDirty_ = false;
        if (GetSelectedItemCount() == 1) {
            anchor_ = rowAt(GetNextItem(-1, wxLIST_NEXT_ALL, selectedState));
        }
        events_.selectionChanged();
    });
}

void FileListCtrl::selectAll() {
    SetItemState(-1, selectedState, selectedState);
    onSelection();
}

void FileListCtrl::invertSelection() {
    std::vector<bool> wanted = selectedPlaces();
    wanted.flip();
    select(wanted);
    onSelection();
}

bool FileListCtrl::hasKeyboard() const {
    const wxWindow* const focused = FindFocus();
    return focused == this || (focused != nullptr && focused->GetParent() == this);
}

void FileListCtrl::focusFirst() {
    if (GetItemCount() > 0) SetItemState(0, focusedState, focusedState);
}

}  // namespace tavlo
