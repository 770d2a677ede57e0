#pragma once

#include <wx/listctrl.h>
#include <wx/textctrl.h>

#include <functional>
#include <optional>
#include <vector>

#include "core/Texts.h"
#include "desk/ColumnLayout.h"
#include "desk/FileDesk.h"

namespace tavlo {

/// What the list asks its window for.
struct FileListEvents {
    std::function<void()> selectionChanged;
    std::function<void(ListColumn)> columnClicked;
    std::function<void(Command)> command;
    std::function<DeskState()> state;  ///< decides what a menu offers
    std::function<void(RowId, const std::string& name)> renamed;
    std::function<void()> columnsChanged;
    std::function<void()> columnResized;  ///< by a person
    std::function<void()> activated;
};

/// The main list. It holds no row: it asks the desk for what it paints.
class FileListCtrl : public wxListCtrl {
 public:
    FileListCtrl(wxWindow* parent, FileDesk& desk, ColumnLayout& layout, const Texts& texts,
                 FileListEvents events);
    FileListCtrl(const FileListCtrl&) = delete;
    FileListCtrl& operator=(const FileListCtrl&) = delete;
    /// The control goes on telling of itself while it is destroyed.
    ~FileListCtrl() override { SetEvtHandlerEnabled(false); }

    /// Makes the columns anew, after another layout or language.
    void makeColumns();
    void showSortMark();
    /// As wide as what the rows on the screen hold.
    void fitColumns();

    /// The number of rows or their order has changed: the selection moves with its rows.
    void rowsMoved();
    /// Rows came behind those that are there.
    void rowsCame();
    void rowsRepainted();
    /// What is typed for the selected files is not theirs yet.
    void markTyped(bool hasTyped);
    /// Brings the row that has the keyboard into sight.
    void showFocus();

    [[nodiscard]] std::vector<RowId> selectedRows() const;
    void selectAll();
    void invertSelection();
    [[nodiscard]] bool hasKeyboard() const;
    /// The arrow keys begin at the first row.
    void focusFirst();
    /// Other rows are to come: none of those that are known now will be meant again.
    void forgetRows();
    /// Opens the name of a row for typing.
    void editName(RowId row);

 private:
    wxString OnGetItemText(long item, long column) const override;
    wxItemAttr* OnGetItemAttr(long item) const override;
    [[nodiscard]] bool isUnsaved(long item, RowId row) const;

    void watchSelection();
    void onPress(wxMouseEvent& event);
    void onArrow(wxKeyEvent& event);
    void onSelection();
    void extendTo(long item, bool keepsOthers);
    void dropStraySelection();
    void focusOn(long item);
    void showSelected();
    void keepFocus();
    void select(const std::vector<bool>& wanted);
    [[nodiscard]] std::vector<bool> selectedPlaces() const;
    [[nodiscard]] std::optional<RowId> rowAt(long item) const;
    [[nodiscard]] std::optional<long> itemOf(std::optional<RowId> row) const;

    void onKey(wxKeyEvent& event);
    void onColumnMenu(wxListEvent& event);
    void onContextMenu(wxContextMenuEvent& event);
    void keepWidths();
    void endEdit(bool isAccepted);
    [[nodiscard]] wxRect nameCell(long item) const;

    FileDesk& desk_;
    ColumnLayout& layout_;
    const Texts& texts_;
    FileListEvents events_;
    std::vector<ListColumn> columns_;
    mutable wxItemAttr unsaved_, failed_, readOnly_;
    std::optional<RowId> focus_;   // has the keyboard
    std::optional<RowId> anchor_;  // where a range begins
    bool hasTyped_ = false;
    bool isRestoring_ = false;
    bool isSelectionDirty_ = false;
    wxTextCtrl* nameField_ = nullptr;
    RowId nameRow_ = 0;
};

}  // namespace tavlo
