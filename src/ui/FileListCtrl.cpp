#include "ui/FileListCtrl.h"

#include <wx/menu.h>
#include <wx/settings.h>

#include <algorithm>

#include "core/PathText.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
const wxString unsavedMark = wxString(L"\u25CF") + ' ';

// Where the same value shows as a field of the tag editor.
std::optional<TagField> fieldOf(ListColumn column) {
    const auto rows = tagFields();
    const auto found =
        std::ranges::find(rows, listColumnRow(column).caption, &TagFieldRow::caption);
    if (found == rows.end()) return std::nullopt;
    return found->field;
}
}  // namespace

FileListCtrl::FileListCtrl(wxWindow* parent, FileDesk& desk, ColumnLayout& layout,
                           const Texts& texts, FileListEvents events)
    : wxListCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_VIRTUAL),
      desk_(desk),
      layout_(layout),
      texts_(texts),
      events_(std::move(events)) {
    unsaved_.SetFont(GetFont().Bold());
    failed_.SetFont(GetFont().Italic());
    failed_.SetTextColour(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT));
    readOnly_.SetTextColour(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT));
    makeColumns();
    watchSelection();
    Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent&) { events_.activated(); });
    Bind(wxEVT_LIST_COL_CLICK, [this](wxListEvent& event) {
        const int column = event.GetColumn();
        if (column >= 0) events_.columnClicked(columns_[static_cast<std::size_t>(column)]);
    });
    Bind(wxEVT_LIST_COL_RIGHT_CLICK, &FileListCtrl::onColumnMenu, this);
    Bind(wxEVT_LIST_COL_END_DRAG, [this](wxListEvent& event) {
        event.Skip();
        CallAfter([this] {
            keepWidths();
            events_.columnResized();
        });
    });
    Bind(wxEVT_CONTEXT_MENU, &FileListCtrl::onContextMenu, this);
    Bind(wxEVT_CHAR_HOOK, &FileListCtrl::onKey, this);
}

void FileListCtrl::makeColumns() {
    columns_ = layout_.shown();
    DeleteAllColumns();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const ListColumnRow& row = listColumnRow(columns_[i]);
        const Text caption = columns_[i] == ListColumn::Size ? Text::KilobytesHeading : row.caption;
        InsertColumn(static_cast<long>(i), toWx(texts_.get(caption)),
                     row.alignsRight ? wxLIST_FORMAT_RIGHT : wxLIST_FORMAT_LEFT,
                     FromDIP(layout_.width(columns_[i])));
    }
    showSortMark();
}

void FileListCtrl::showSortMark() {
    const auto at =
        layout_.sortColumn ? std::ranges::find(columns_, *layout_.sortColumn) : columns_.end();
    if (at == columns_.end()) {
        RemoveSortIndicator();
    } else {
        ShowSortIndicator(static_cast<int>(at - columns_.begin()), !layout_.descending);
    }
}

void FileListCtrl::fitColumns() {
    if (GetItemCount() == 0) return;
    const long first = GetTopItem();
    const long last = std::min<long>(first + GetCountPerPage() + 1, GetItemCount());
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const ListColumnRow& row = listColumnRow(columns_[i]);
        int width = GetTextExtent(toWx(texts_.get(row.caption))).x + FromDIP(28);
        for (long item = first; item < last; ++item) {
            width = std::max(
                width, GetTextExtent(OnGetItemText(item, static_cast<long>(i))).x + FromDIP(18));
        }
        // Room for the mark of what is not saved, which is bold.
        if (columns_[i] == ListColumn::FileName) width += width / 12 + GetTextExtent(unsavedMark).x;
        SetColumnWidth(static_cast<int>(i), std::min(width, FromDIP(420)));
    }
    keepWidths();
}

void FileListCtrl::keepWidths() {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        layout_.setWidth(columns_[i], ToDIP(GetColumnWidth(static_cast<int>(i))));
    }
}

wxString FileListCtrl::OnGetItemText(long item, long column) const {
    const auto place = static_cast<std::size_t>(item);
    if (place >= desk_.table().shownCount()) return {};
    const RowId row = desk_.table().shownAt(place);
    const ListColumn shown = columns_[static_cast<std::size_t>(column)];
    if (shown == ListColumn::FileName && isUnsaved(item, row)) {
        return unsavedMark + toWx(cellText(desk_.table().row(row), shown));
    }
    if (desk_.edits().has(row)) {
        if (const auto field = fieldOf(shown)) {
            return toWx(desk_.edits().value(desk_.table(), row, *field));
        }
    }
    return toWx(cellText(desk_.table().row(row), shown));
}

bool FileListCtrl::isUnsaved(long item, RowId row) const {
    if (desk_.edits().has(row)) return true;
    return hasTyped_ && desk_.isEditable(row) && GetItemState(item, wxLIST_STATE_SELECTED) != 0;
}

void FileListCtrl::markTyped(bool hasTyped) {
    if (std::exchange(hasTyped_, hasTyped) != hasTyped) Refresh();
}

wxItemAttr* FileListCtrl::OnGetItemAttr(long item) const {
    const auto place = static_cast<std::size_t>(item);
    if (place >= desk_.table().shownCount()) return nullptr;
    const RowId row = desk_.table().shownAt(place);
    if (isUnsaved(item, row)) return &unsaved_;
    if (desk_.table().row(row).isFailed) return &failed_;
    if (desk_.table().row(row).isReadOnly) return &readOnly_;
    return nullptr;
}

void FileListCtrl::rowsCame() {
    SetItemCount(static_cast<long>(desk_.table().shownCount()));
    Refresh();
}

void FileListCtrl::rowsRepainted() {
    Refresh();
}

// Keys that mean something else while text is typed belong to the list alone.
void FileListCtrl::onKey(wxKeyEvent& event) {
    const bool isPlain = event.GetModifiers() == wxMOD_NONE;
    if (nameField_ != nullptr) return event.Skip();
    if (isPlain && event.GetKeyCode() == WXK_BACK) return events_.command(Command::Up);
    event.Skip();
}

wxRect FileListCtrl::nameCell(long item) const {
    const auto column = std::ranges::find(columns_, ListColumn::FileName);
    wxRect cell;
    const auto index = static_cast<long>(column == columns_.end() ? 0 : column - columns_.begin());
    GetSubItemRect(item, index, cell);
    cell.width = std::max(cell.width, FromDIP(240));
    return cell;
}

void FileListCtrl::editName(RowId row) {
    const auto place = desk_.table().placeOf(row);
    if (!place || nameField_ != nullptr) return;
    EnsureVisible(static_cast<long>(*place));
    const wxRect cell = nameCell(static_cast<long>(*place));
    const std::string name(desk_.table().row(row).text(RowText::Name));
    nameRow_ = row;
    nameField_ = new wxTextCtrl(GetParent(), wxID_ANY, toWx(name), wxDefaultPosition, wxDefaultSize,
                                wxTE_PROCESS_ENTER);
    const wxPoint corner = GetParent()->ScreenToClient(ClientToScreen(cell.GetPosition()));
    const int height = std::max(cell.height, nameField_->GetBestSize().y);
    nameField_->SetSize(corner.x, corner.y, cell.width, height);
    nameField_->Raise();
    nameField_->SetFocus();
    const auto base = baseNameOf(name, nativePathStyle());
    nameField_->SetSelection(0, static_cast<long>(toWx(base).length()));
    nameField_->Bind(wxEVT_TEXT_ENTER, [this](wxCommandEvent&) { endEdit(true); });
    nameField_->Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        CallAfter([this] { endEdit(false); });
    });
    nameField_->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        if (event.GetKeyCode() != WXK_ESCAPE) return event.Skip();
        endEdit(false);
    });
}

void FileListCtrl::endEdit(bool isAccepted) {
    if (nameField_ == nullptr) return;
    wxTextCtrl* const field = std::exchange(nameField_, nullptr);
    // A name that nobody changed stays, also where not all of it can be shown.
    const std::string old(desk_.table().row(nameRow_).text(RowText::Name));
    const bool isChanged = !field->IsEmpty() && field->GetValue() != toWx(old);
    const std::string name = fromWx(field->GetValue());
    field->Hide();
    field->CallAfter([field] { field->Destroy(); });
    SetFocus();
    if (isAccepted && isChanged) events_.renamed(nameRow_, name);
}

void FileListCtrl::onColumnMenu(wxListEvent& event) {
    wxMenu menu;
    const auto add = [&](Text caption, const std::function<void()>& act) {
        wxMenuItem* const item = menu.Append(wxID_ANY, toWx(texts_.get(caption)));
        menu.Bind(
            wxEVT_MENU, [act](wxCommandEvent&) { act(); }, item->GetId());
    };
    const int at = event.GetColumn();
    const auto change = [this](const std::function<void()>& act) {
        keepWidths();
        act();
        makeColumns();
        events_.columnsChanged();
        Refresh();
    };
    if (at >= 0) {
        const ListColumn column = columns_[static_cast<std::size_t>(at)];
        add(Text::SortAgainCaption, [=, this] { events_.columnClicked(column); });
        add(Text::MoveLeftCaption, [=, this] { change([&] { layout_.move(column, false); }); });
        add(Text::MoveRightCaption, [=, this] { change([&] { layout_.move(column, true); }); });
        add(Text::HideColumnCaption, [=, this] { change([&] { layout_.show(column, false); }); });
        menu.AppendSeparator();
    }
    add(Text::AutoSizeCaption, [this] { fitColumns(); });
    add(Text::ColumnsCaption, [this] { events_.command(Command::Columns); });
    add(Text::UsualColumnsCaption, [=, this] { change([&] { layout_.reset(); }); });
    menu.AppendSeparator();
    for (const ListColumnRow& row : listColumns) {
        wxMenuItem* const item = menu.AppendCheckItem(wxID_ANY, toWx(texts_.get(row.caption)));
        item->Check(layout_.isShown(row.column));
        menu.Bind(
            wxEVT_MENU,
            [=, this](wxCommandEvent&) {
                change([&] { layout_.show(row.column, !layout_.isShown(row.column)); });
            },
            item->GetId());
    }
    PopupMenu(&menu);
}

void FileListCtrl::onContextMenu(wxContextMenuEvent&) {
    static constexpr std::array commands{
        Command::Play,         Command::Enqueue,      Command::Info,
        Command::CopyTags,     Command::PasteTags,    Command::Rename,
        Command::CopyToTarget, Command::ShowInFolder, Command::Delete};
    const DeskState state = events_.state();
    wxMenu menu;
    for (const tavlo::Command command : commands) {
        const CommandRow& row = commandRow(command);
        wxMenuItem* const item = menu.Append(wxID_ANY, toWx(texts_.get(row.caption)));
        item->Enable(row.isPossible(state));
        menu.Bind(
            wxEVT_MENU, [=, this](wxCommandEvent&) { events_.command(command); }, item->GetId());
    }
    PopupMenu(&menu);
}

}  // namespace tavlo
