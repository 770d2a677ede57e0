#include "ui/FolderTree.h"

#include "ui/WxText.h"

namespace tavlo {

FolderTree::FolderTree(wxWindow* parent, std::function<void(const std::string&)> chosen)
    : wxGenericDirCtrl(parent, wxID_ANY, wxDirDialogDefaultFolderStr, wxDefaultPosition,
                       wxDefaultSize, static_cast<long>(wxDIRCTRL_DIR_ONLY) | wxBORDER_THEME) {
    Bind(wxEVT_DIRCTRL_SELECTIONCHANGED, [this, chosen](wxTreeEvent&) {
        if (!isFollowing_) chosen(fromWx(GetPath()));
    });
}

void FolderTree::follow(const std::string& folder) {
    if (folder.empty() || fromWx(GetPath()) == folder) return;
    isFollowing_ = true;
    SetPath(toWx(folder));
    isFollowing_ = false;
}

}  // namespace tavlo
