#include "ui/FolderTree.h"

#include <algorithm>
#include <array>

#include "ui/WxText.h"

namespace tavlo {

namespace {
// The toolkit names these in English only.
struct PlaceName {
    const char* toolkits;
    Text ours;
};
constexpr std::array placeNames{PlaceName{"Home directory", Text::HomeFolder},
                                PlaceName{"Desktop", Text::DesktopFolder}};
}  // namespace

FolderTree::FolderTree(wxWindow* parent, const std::function<void(const std::string&)>& chosen)
    : wxGenericDirCtrl(parent, wxID_ANY, wxDirDialogDefaultFolderStr, wxDefaultPosition,
                       wxDefaultSize, static_cast<long>(wxDIRCTRL_DIR_ONLY) | wxBORDER_THEME) {
    Bind(wxEVT_DIRCTRL_SELECTIONCHANGED, [this, chosen](wxTreeEvent&) {
        if (!isFollowing_) chosen(fromWx(GetPath()));
    });
    findPlaces();
}

void FolderTree::findPlaces() {
    places_.clear();
    const wxTreeCtrl& tree = *GetTreeCtrl();
    wxTreeItemIdValue cookie{};
    for (wxTreeItemId item = tree.GetFirstChild(tree.GetRootItem(), cookie); item.IsOk();
         item = tree.GetNextSibling(item)) {
        const auto* const place =
            std::ranges::find(placeNames, tree.GetItemText(item),
                              [](const PlaceName& name) { return wxString(name.toolkits); });
        if (place != placeNames.end()) places_.emplace_back(item, place->ours);
    }
}

void FolderTree::speak(const Texts& texts) {
    texts_ = &texts;
    namePlaces();
}

void FolderTree::namePlaces() {
    if (texts_ == nullptr) return;
    for (const auto& [item, name] : places_) {
        GetTreeCtrl()->SetItemText(item, toWx(texts_->get(name)));
    }
}

void FolderTree::renew() {
    isFollowing_ = true;
    const wxString path = GetPath();
    ReCreateTree();
    findPlaces();
    namePlaces();
    isFollowing_ = false;
    if (!path.empty()) goTo(path);
}

void FolderTree::goTo(const wxString& path) {
    isFollowing_ = true;
    SetPath(path);
    isFollowing_ = false;
}

void FolderTree::follow(const std::string& folder) {
    if (folder.empty() || fromWx(GetPath()) == folder) return;
    goTo(toWx(folder));
    if (fromWx(GetPath()) == folder) return;
    // It is younger than the tree.
    renew();
    goTo(toWx(folder));
}

}  // namespace tavlo
