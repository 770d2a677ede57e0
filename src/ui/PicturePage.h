#pragma once

#include <wx/button.h>
#include <wx/choice.h>
#include <wx/panel.h>
#include <wx/stattext.h>

#include <memory>
#include <string>
#include <vector>

#include "core/Texts.h"
#include "desk/TagParts.h"
#include "ui/PictureImage.h"

namespace tavlo {

/// Draws a picture as large as fits, or a line of text in its place.
class PictureView : public wxPanel {
 public:
    explicit PictureView(wxWindow* parent);

    void show(const wxImage& image, const wxString& otherwise);

 private:
    void paint();
    void scaleTo(wxSize room);

    wxImage image_;
    wxBitmap scaled_;
    wxSize scaledFor_;
    wxString otherwise_;
};

/// The pictures of a file, one of them shown, with a button that saves it.
class PicturePage : public wxPanel {
 public:
    PicturePage(wxWindow* parent, const Texts& texts);

    /// Takes over a file's pictures; they are decoded with the next `see`.
    void fill(const std::string& path, std::vector<TagPicture> pictures,
              const std::vector<std::string>& tagNames);
    /// The page has come to be seen, or has new pictures while it is.
    void see();

 private:
    void build();
    void showChosen();
    void showDecoded(const ShownPicture& shown);
    void describe(const TagPicture& picture);
    void save();
    [[nodiscard]] const TagPicture* chosen() const;

    const Texts& texts_;
    std::string path_;
    std::shared_ptr<std::vector<TagPicture>> pictures_;  // the loader may still read the old ones
    PictureView* view_ = nullptr;
    wxStaticText *lblPictures_ = nullptr, *lblFacts_ = nullptr;
    wxChoice* cmbPictures_ = nullptr;
    wxButton* cmdExport_ = nullptr;
    bool isStale_ = false;
    PictureLoader loader_;
};

}  // namespace tavlo
