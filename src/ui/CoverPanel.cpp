#include "ui/CoverPanel.h"

#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/dcbuffer.h>
#include <wx/dnd.h>
#include <wx/filedlg.h>
#include <wx/menu.h>
#include <wx/msgdlg.h>
#include <wx/settings.h>

#include <algorithm>

#include "desk/PictureHead.h"
#include "platform/File.h"
#include "platform/FileTransfer.h"
#include "platform/PlainText.h"
#include "tags/AudioFile.h"
#include "tags/Picture.h"
#include "tags/UpdateTags.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr int height = 130;                  // pixels at 96 an inch
constexpr int pause = 90;                    // milliseconds that a selection stands still
constexpr std::size_t largest = 16U << 20U;  // bytes; a tag of ID3v2 holds less than 256 MB

class DropTarget final : public wxFileDropTarget {
 public:
    explicit DropTarget(CoverPanel& panel) : panel_(panel) {}

    // What is told about a drop must not hold up the program that it comes from.
    bool OnDropFiles(wxCoord, wxCoord, const wxArrayString& files) override {
        if (files.size() != 1) return false;
        panel_.CallAfter([panel = &panel_, path = fromWx(files[0])] { panel->take(path); });
        return true;
    }

 private:
    CoverPanel& panel_;
};
}  // namespace

CoverPanel::CoverPanel(wxWindow* parent, Services& services, std::function<void(Command)> command,
                       std::function<void(NewPicture)> changed)
    : wxPanel(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
              wxBORDER_THEME | wxWANTS_CHARS | wxFULL_REPAINT_ON_RESIZE),
      services_(services),
      command_(std::move(command)),
      changed_(std::move(changed)),
      timer_(this) {
    SetMinSize({-1, FromDIP(height)});
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    SetDropTarget(new DropTarget(*this));
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { onPaint(); });
    Bind(wxEVT_TIMER, [this](wxTimerEvent&) { load(); });
    Bind(wxEVT_CONTEXT_MENU, [this](wxContextMenuEvent&) { onMenu(); });
    Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        scaled_ = wxBitmap();
        event.Skip();
    });
}

void CoverPanel::speak() {
    SetToolTip(toWx(services_.texts.get(Text::CoverTip)));
    Refresh();
}

void CoverPanel::onPaint() {
    wxAutoBufferedPaintDC dc(this);
    dc.SetBackground(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOW));
    dc.Clear();
    const wxSize room = GetClientSize();
    if (!image_.IsOk()) {
        dc.SetFont(GetFont());
        dc.SetTextForeground(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT));
        dc.DrawLabel(toWx(services_.texts.get(note_)), wxRect(room), wxALIGN_CENTER);
        return;
    }
    if (!scaled_.IsOk()) {
        const double scale = std::min({1.0, static_cast<double>(room.x) / image_.GetWidth(),
                                       static_cast<double>(room.y) / image_.GetHeight()});
        const auto side = [&](int length) { return std::max(1, static_cast<int>(length * scale)); };
        scaled_ = wxBitmap(
            image_.Scale(side(image_.GetWidth()), side(image_.GetHeight()), wxIMAGE_QUALITY_HIGH));
    }
    dc.DrawBitmap(scaled_, (room.x - scaled_.GetWidth()) / 2, (room.y - scaled_.GetHeight()) / 2,
                  true);
}

void CoverPanel::onMenu() {
    static constexpr std::array commands{Command::PickCover, Command::PasteCover,
                                         Command::ExportCover, Command::RemoveCover};
    wxMenu menu;
    for (const Command command : commands) {
        const CommandRow& row = commandRow(command);
        const int id = menu.Append(wxID_ANY, toWx(services_.texts.get(row.caption)))->GetId();
        menu.Bind(
            wxEVT_MENU, [=, this](wxCommandEvent&) { command_(command); }, id);
    }
    PopupMenu(&menu);
}

// Of several files the first one's cover stands for all when they have the same size.
void CoverPanel::show(const FileDesk& desk) {
    const std::vector<RowId>& rows = desk.selected();
    const FileTable& table = desk.table();
    loader_.forget();
    timer_.Stop();
    const auto newCover = [&](RowId row) {
        const auto edits = desk.edits().of(row);
        return edits ? edits->picture : nullptr;
    };
    const auto isSame = [&](RowId row) {
        return table.row(row).pictureSize == table.row(rows.front()).pictureSize &&
               newCover(row) == newCover(rows.front());
    };
    if (rows.empty() || !std::ranges::all_of(rows, isSame)) {
        note_ = rows.empty() ? Text::NoCover : Text::DifferentCovers;
        return showBytes(nullptr);
    }
    if (const NewPicture picture = newCover(rows.front())) return showNew(picture);
    note_ = hasWriter(table.row(rows.front()).type) ? Text::NoCover : Text::TagsNotReadYet;
    if (table.row(rows.front()).pictureSize == 0) return showBytes(nullptr);
    path_ = table.row(rows.front()).path();
    timer_.StartOnce(pause);
}

void CoverPanel::showNew(const NewPicture& picture) {
    note_ = Text::NoCover;
    timer_.Stop();
    showBytes(std::make_shared<std::vector<std::uint8_t>>(picture->Data));
}

void CoverPanel::load() {
    const CodePage ansi(services_.ansiCodePage);
    ID3tag record = ReadAudioFile(path_, {ansi, ReadDepth::Full});
    showBytes(std::make_shared<std::vector<std::uint8_t>>(std::move(record.AlbumArt.Data)));
}

void CoverPanel::showBytes(PictureBytes bytes) {
    bytes_ = std::move(bytes);
    image_ = wxImage();
    scaled_ = wxBitmap();
    Refresh();
    if (!hasCover()) return;
    loader_.load(bytes_, [this](const ShownPicture& picture) {
        image_ = picture.image;
        scaled_ = wxBitmap();
        if (!image_.IsOk()) note_ = Text::CoverNotShown;
        Refresh();
    });
}

void CoverPanel::tell(Text text, std::string_view about) {
    wxMessageBox(toWx(services_.texts.get(text, about)),
                 toWx(services_.texts.get(Text::ProgramTitle)), wxOK | wxICON_WARNING, this);
}

void CoverPanel::use(std::vector<std::uint8_t> bytes, const std::string& name) {
    const wxBusyCursor busy;
    const auto head = readPictureHead(bytes);
    if (!head || isBrokenPicture(bytes)) return tell(Text::PictureNotRead, name);
    auto art = std::make_shared<cAlbumArt>();
    art->MIME = "image/" + lowerAscii(head->name);
    art->PictureType = frontCover;
    art->Size = bytes.size();
    art->Data = std::move(bytes);
    changed_(std::move(art));
}

void CoverPanel::take(const std::string& pictureFile) {
    File file;
    if (!file.open(pictureFile, Access::Read)) return tell(Text::PictureNotRead, pictureFile);
    if (file.size() > largest) return tell(Text::PictureTooLarge, pictureFile);
    const Bytes bytes = file.view(0, static_cast<std::size_t>(file.size()));
    use({bytes.begin(), bytes.end()}, pictureFile);
}

void CoverPanel::pick() {
    const Texts& texts = services_.texts;
    const wxString pictures = "*.jpg;*.jpeg;*.png;*.bmp;*.gif;*.JPG;*.JPEG;*.PNG";
    wxFileDialog dialog(this, toWx(texts.get(Text::PickCoverTip)), {}, {},
                        toWx(texts.get(Text::PictureFiles)) + "|" + pictures + "|" +
                            toWx(texts.get(Text::AllFiles)) + "|*",
                        wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    if (dialog.ShowModal() == wxID_OK) take(fromWx(dialog.GetPath()));
}

void CoverPanel::paste() {
    wxImage image;
    std::string file;
    if (wxTheClipboard->Open()) {
        wxBitmapDataObject bitmap;
        wxFileDataObject files;
        if (wxTheClipboard->GetData(bitmap) && bitmap.GetBitmap().IsOk()) {
            image = bitmap.GetBitmap().ConvertToImage();
        } else if (wxTheClipboard->GetData(files) && files.GetFilenames().size() == 1) {
            file = fromWx(files.GetFilenames()[0]);
        }
        wxTheClipboard->Close();
    }
    if (!file.empty()) return take(file);
    const std::string png = image.IsOk() ? pngOf(image) : std::string();
    if (png.empty()) return tell(Text::NoPictureThere, {});
    const Bytes bytes = bytesOfText(png);
    use({bytes.begin(), bytes.end()}, {});
}

void CoverPanel::remove() {
    changed_(std::make_shared<const cAlbumArt>());
}

void CoverPanel::exportCover() {
    if (!hasCover()) return;
    const auto head = readPictureHead(*bytes_);
    const wxString ending = head ? toWx(head->ending) : wxString("bin");
    wxFileDialog dialog(this, toWx(services_.texts.get(Text::ExportCoverTip)), {},
                        "cover." + ending, "*." + ending + "|*." + ending,
                        wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() != wxID_OK) return;
    const std::string path = fromWx(dialog.GetPath());
    if (!replaceFile(path, textOf(*bytes_))) tell(Text::PictureNotWritten, path);
}

}  // namespace tavlo
