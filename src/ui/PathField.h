#pragma once

#include <wx/button.h>
#include <wx/combobox.h>
#include <wx/stattext.h>

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

 private:
    std::string shown_;
    std::vector<std::string> history_;
};

}  // namespace tavlo
