#pragma once

#include <wx/defs.h>
#include <wx/dirctrl.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/Texts.h"

namespace tavlo {

/// The tree of folders beside the list.
class FolderTree : public wxGenericDirCtrl {
 public:
    FolderTree(wxWindow* parent, const std::function<void(const std::string&)>& chosen);

    /// Names the places at the top in the language of now.
    void speak(const Texts& texts);

    /// Looks again for what lies in the folders.
    void renew();

    /// Shows where a folder lies, without telling that it was chosen.
    void follow(const std::string& folder);

 private:
    void goTo(const wxString& path);
    void findPlaces();
    void namePlaces();

    const Texts* texts_ = nullptr;
    std::vector<std::pair<wxTreeItemId, Text>> places_;
    bool isFollowing_ = false;
};

}  // namespace tavlo
