#pragma once

#include <wx/button.h>
#include <wx/combobox.h>
#include <wx/stattext.h>

#include <functional>
#include <string>
#include <vector>

namespace tavlo {

/// A field for a path with those that were used before. Bytes of names that are no text stay what
/// they are as long as nobody types over them.
class PathField : public wxComboBox {
 public:
    explicit PathField(wxWindow* parent);

    void setPath(const std::string& path);
    [[nodiscard]] std::string path() const;
    void setHistory(std::vector<std::string> paths);
    /// A path was picked from the list that drops down; walking through it with the arrow keys is
    /// not picking.
    void onChosen(const std::function<void()>& act);

 private:
    std::string shown_;
    std::vector<std::string> history_;
    bool isDropped_ = false;
};

}  // namespace tavlo
