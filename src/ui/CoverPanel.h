#pragma once

#include <wx/bitmap.h>
#include <wx/panel.h>
#include <wx/timer.h>

#include <functional>
#include <string>

#include "core/StartUp.h"
#include "desk/FileDesk.h"
#include "ui/PictureImage.h"

namespace tavlo {

/// The cover of the selected files. Picture files may be dropped onto it.
class CoverPanel : public wxPanel {
 public:
    CoverPanel(wxWindow* parent, Services& services, std::function<void(Command)> command,
               std::function<void(NewPicture)> changed);

    /// Loads what the selected files have, once the selection has stood still for a moment.
    void show(const FileDesk& desk);
    /// A cover that no file has yet; one without data shows that there will be none.
    void showNew(const NewPicture& picture);

    /// Each hands a new cover to `changed`, or tells why it cannot.
    void pick();
    void paste();
    void take(const std::string& pictureFile);
    void remove();
    /// Writes the shown cover into a file that a person names.
    void exportCover();
    [[nodiscard]] bool hasCover() const { return bytes_ != nullptr && !bytes_->empty(); }

    void speak();

 private:
    void onPaint();
    void onMenu();
    void load();
    void showBytes(PictureBytes bytes);
    void use(std::vector<std::uint8_t> bytes, const std::string& name);
    void tell(Text text, std::string_view about);

    Services& services_;
    std::function<void(Command)> command_;
    std::function<void(NewPicture)> changed_;
    PictureLoader loader_;
    wxTimer timer_;
    std::string path_;    // of the file whose cover is to be loaded
    PictureBytes bytes_;  // of the shown cover
    wxImage image_;
    wxBitmap scaled_;
    Text note_ = Text::NoCover;
};

}  // namespace tavlo
