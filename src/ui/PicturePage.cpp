#include "ui/PicturePage.h"

#include <wx/dcbuffer.h>
#include <wx/filedlg.h>
#include <wx/msgdlg.h>
#include <wx/settings.h>
#include <wx/sizer.h>

#include <algorithm>

#include "desk/FileDetails.h"
#include "desk/StreamFacts.h"
#include "platform/FileTransfer.h"
#include "ui/WxText.h"

namespace tavlo {

// --- PictureView ---------------------------------------------------------------------------------

PictureView::PictureView(wxWindow* parent)
    : wxPanel(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
              wxTAB_TRAVERSAL | wxFULL_REPAINT_ON_RESIZE) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    SetBackgroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOW));
    SetForegroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT));
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { paint(); });
}

void PictureView::show(const wxImage& image, const wxString& otherwise) {
    image_ = image;
    otherwise_ = otherwise;
    scaledFor_ = {};
    Refresh();
}

// Never larger than the picture is.
void PictureView::scaleTo(wxSize room) {
    const double dots = GetContentScaleFactor();
    const double across = room.x * dots / image_.GetWidth();
    const double down = room.y * dots / image_.GetHeight();
    const double scale = std::min({1.0, across, down});
    const int width = std::max(1, static_cast<int>(image_.GetWidth() * scale));
    const int height = std::max(1, static_cast<int>(image_.GetHeight() * scale));
    scaled_ = wxBitmap(image_.Scale(width, height, wxIMAGE_QUALITY_HIGH), -1, dots);
    scaledFor_ = room;
}

void PictureView::paint() {
    wxAutoBufferedPaintDC dc(this);
    dc.SetBackground(wxBrush(GetBackgroundColour()));
    dc.Clear();
    const wxRect room = GetClientRect();
    if (!image_.IsOk()) {
        dc.SetFont(GetFont());
        dc.SetTextForeground(GetForegroundColour());
        dc.DrawLabel(otherwise_, room, wxALIGN_CENTRE);
        return;
    }
    if (scaledFor_ != room.GetSize()) scaleTo(room.GetSize());
    const wxSize size = scaled_.GetLogicalSize();
    dc.DrawBitmap(scaled_, (room.width - size.x) / 2, (room.height - size.y) / 2, true);
}

// --- PicturePage ---------------------------------------------------------------------------------

PicturePage::PicturePage(wxWindow* parent, const Texts& texts) : wxPanel(parent), texts_(texts) {
    build();
    cmbPictures_->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) { showChosen(); });
    cmdExport_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { save(); });
}

void PicturePage::build() {
    const auto text = [this](Text number) { return toWx(texts_.get(number)); };
    view_ = new PictureView(this);
    lblPictures_ = new wxStaticText(this, wxID_ANY, text(Text::InfoPictures));
    cmbPictures_ = new wxChoice(this, wxID_ANY);
    cmbPictures_->SetToolTip(text(Text::InfoPictureTip));
    cmdExport_ = new wxButton(this, wxID_ANY, text(Text::InfoExport));
    cmdExport_->SetToolTip(text(Text::InfoExportTip));
    lblFacts_ = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                 wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    const auto centred = wxSizerFlags().Centre().Border(wxRIGHT, FromDIP(6));
    row->Add(lblPictures_, centred);
    row->Add(cmbPictures_, wxSizerFlags(1).Centre().Border(wxRIGHT, FromDIP(6)));
    row->Add(cmdExport_, wxSizerFlags().Centre());
    auto* all = new wxBoxSizer(wxVERTICAL);
    all->Add(view_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(6)));
    all->Add(lblFacts_, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, FromDIP(6)));
    all->Add(row, wxSizerFlags().Expand().Border(wxALL, FromDIP(6)));
    SetSizer(all);
}

void PicturePage::fill(const std::string& path, std::vector<TagPicture> pictures,
                       const std::vector<std::string>& tagNames) {
    path_ = path;
    pictures_ = std::make_shared<std::vector<TagPicture>>(std::move(pictures));
    cmbPictures_->Clear();
    for (std::size_t i = 0; i < pictures_->size(); ++i) {
        const Text type = pictureTypeText((*pictures_)[i].art.PictureType);
        cmbPictures_->Append(toWx(tagNames[i] + ": " + texts_.get(type)));
    }
    if (!pictures_->empty()) cmbPictures_->SetSelection(0);
    cmbPictures_->Enable(!pictures_->empty());
    cmdExport_->Enable(!pictures_->empty());
    isStale_ = true;
    loader_.forget();
}

void PicturePage::see() {
    if (isStale_) showChosen();
}

const TagPicture* PicturePage::chosen() const {
    const int at = cmbPictures_->GetSelection();
    return at == wxNOT_FOUND ? nullptr : &(*pictures_)[static_cast<std::size_t>(at)];
}

void PicturePage::showChosen() {
    isStale_ = false;
    const TagPicture* picture = chosen();
    lblFacts_->SetLabelText(wxString());
    if (picture == nullptr) return view_->show({}, toWx(texts_.get(Text::InfoNoPicture)));
    describe(*picture);
    view_->show({}, toWx(texts_.get(Text::InfoPictureLoading)));
    const PictureBytes bytes(pictures_, &picture->art.Data);
    loader_.load(bytes, [this](const ShownPicture& shown) { showDecoded(shown); });
}

void PicturePage::showDecoded(const ShownPicture& shown) {
    view_->show(shown.image, toWx(texts_.get(Text::InfoPictureBroken)));
}

void PicturePage::describe(const TagPicture& picture) {
    std::string facts = describePicture(picture.art);
    for (const std::string& more :
         {wholeSizeText(picture.art.Data.size(), texts_), picture.art.Description}) {
        if (more.empty()) continue;
        if (!facts.empty()) facts += ", ";
        facts += more;
    }
    lblFacts_->SetLabelText(toWx(facts));
}

void PicturePage::save() {
    const TagPicture* picture = chosen();
    if (picture == nullptr) return;
    wxFileDialog dialog(this, toWx(texts_.get(Text::InfoExportTip)), wxString(),
                        toWx(pictureFileName(path_, picture->art)),
                        toWx(texts_.get(Text::InfoAllFiles)) + "|*",
                        wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() != wxID_OK) return;
    const std::string target = fromWx(dialog.GetPath());
    if (replaceFile(target, textOf(picture->art.Data))) return;
    wxMessageBox(toWx(texts_.get(Text::FileNotCreated, target)), toWx(texts_.get(Text::InfoTitle)),
                 wxOK | wxICON_ERROR, this);
}

}  // namespace tavlo
