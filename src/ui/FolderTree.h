#pragma once

#include <wx/defs.h>
#include <wx/dirctrl.h>

#include <functional>
#include <string>

namespace tavlo {

/// The tree of folders beside the list.
class FolderTree : public wxGenericDirCtrl {
 public:
    FolderTree(wxWindow* parent, std::function<void(const std::string&)> chosen);

    /// Shows where a folder lies, without telling that it was chosen.
    void follow(const std::string& folder);

 private:
    bool isFollowing_ = false;
};

}  // namespace tavlo
