#include "ui/FileInfoDialog.h"

#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/utils.h>

#include <algorithm>

#include "core/PathText.h"
#include "desk/StreamFacts.h"
#include "platform/PlainText.h"
#include "ui/Messages.h"
#include "ui/WindowScreens.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr std::string_view conflictSign = "≠";

void addLine(std::string& text, const std::string& line) {
    if (!text.empty()) text += '\n';
    text += line;
}

std::string numbered(const Texts& texts, Text text, std::size_t first, std::size_t second) {
    std::string line = texts.get(text, std::to_string(first));
    replaceAll(line, "%2", std::to_string(second));
    return line;
}
}  // namespace

// --- TagsPage ------------------------------------------------------------------------------------

TagsPage::TagsPage(wxWindow* parent, const Texts& texts, Change change)
    : ReportPage(parent, 1), texts_(texts), change_(std::move(change)) {
    build();
    cmdCarry_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { this->change(LayerWish::CarryOver); });
    cmdRemove_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { this->change(LayerWish::Remove); });
}

void TagsPage::change(LayerWish wish) {
    const int chosen = cmbLayers_->GetSelection();
    if (chosen != wxNOT_FOUND) change_(info_->layers[static_cast<std::size_t>(chosen)], wish);
}

void TagsPage::build() {
    const auto text = [this](Text number) { return toWx(texts_.get(number)); };
    lblSummary_ = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                   wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
    lblResult_ = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                  wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
    auto* lblFrom = new wxStaticText(this, wxID_ANY, text(Text::InfoCarryFrom));
    cmbLayers_ = new wxChoice(this, wxID_ANY);
    cmdCarry_ = new wxButton(this, wxID_ANY, text(Text::InfoCarryOver));
    for (wxWindow* control :
         {static_cast<wxWindow*>(cmbLayers_), static_cast<wxWindow*>(cmdCarry_)}) {
        control->SetToolTip(text(Text::InfoCarryTip));
    }
    cmdRemove_ = new wxButton(this, wxID_ANY, text(Text::InfoRemove));
    cmdRemove_->SetToolTip(text(Text::InfoRemoveTip));
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    const auto centred = wxSizerFlags().Centre().Border(wxRIGHT, FromDIP(6));
    row->Add(lblFrom, centred);
    row->Add(cmbLayers_, centred);
    row->Add(cmdCarry_, centred);
    row->Add(cmdRemove_, centred);
    row->Add(lblResult_, wxSizerFlags(1).Centre());
    sizer()->Add(lblSummary_, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, FromDIP(6)));
    sizer()->Add(row, wxSizerFlags().Expand().Border(wxALL, FromDIP(6)));
}

void TagsPage::fill(const FileDetails& info, const TagSettings& settings) {
    std::vector<std::string> captions{texts_.get(Text::InfoField)};
    std::vector<ReportRow> rows;
    for (const TagLayer& layer : info.layers) captions.push_back(layer.name);
    for (const LayerRow& field : info.rows) rows.push_back(rowOf(field, info.layers));
    if (!info.layers.empty()) rows.push_back(sizesOf(info.layers));
    share(info.layers.size());
    ReportPage::fill(captions, std::move(rows));
    cmbLayers_->Clear();
    for (const TagLayer& layer : info.layers) cmbLayers_->Append(toWx(layer.name));
    if (!info.layers.empty()) cmbLayers_->SetSelection(static_cast<int>(info.layers.size()) - 1);
    info_ = &info;
    canCarry_ = !info.layers.empty() && !whyNotWritten(info, settings, texts_);
    canRemove_ = !info.layers.empty() && hasWriter(info.record.FileType);
    setBusy(false);
    lblSummary_->SetLabelText(toWx(summaryOf(info, settings)));
    tell({});
    Layout();
}

void TagsPage::setBusy(bool isBusy) {
    cmbLayers_->Enable(!isBusy && (canCarry_ || canRemove_));
    cmdCarry_->Enable(!isBusy && canCarry_);
    cmdRemove_->Enable(!isBusy && canRemove_);
}

ReportRow TagsPage::rowOf(const LayerRow& field, const std::vector<TagLayer>& layers) const {
    ReportRow row{{texts_.get(field.caption)}, field.conflicts, {}};
    if (field.conflicts) row.cells.front() += " " + std::string(conflictSign);
    for (std::size_t i = 0; i < field.values.size(); ++i) {
        row.cells.push_back(withoutControls(field.values[i]));
        if (field.values[i].empty()) continue;
        addLine(row.detail, layers[i].name + ": " + field.values[i]);
    }
    return row;
}

ReportRow TagsPage::sizesOf(const std::vector<TagLayer>& layers) const {
    ReportRow row{{texts_.get(Text::InfoTagSize)}, false, {}};
    for (const TagLayer& layer : layers) {
        const bool isDamaged = layer.kind == TagKind::ID3v2 && layer.record.ID3v2Ext.bDamaged;
        std::string size = std::to_string(layer.span.end - layer.span.begin);
        if (isDamaged) size += ", " + texts_.get(Text::InfoDamagedTag);
        addLine(row.detail, layer.name + ": " + size);
        row.cells.push_back(std::move(size));
    }
    return row;
}

std::string TagsPage::summaryOf(const FileDetails& info, const TagSettings& settings) const {
    const auto why = whyNotWritten(info, settings, texts_);
    std::string line;
    if (info.layers.size() > 1) {
        line = agreementOf(info);
    } else if (info.layers.size() == 1) {
        line = texts_.get(Text::InfoOneTag);
    } else if (!why) {  // other formats have tags that are not read
        line = texts_.get(Text::InfoNoTags);
    }
    if (!why) return line;
    if (!line.empty()) line += ' ';
    return line + *why;
}

std::string TagsPage::agreementOf(const FileDetails& info) const {
    const std::size_t conflicts = conflictCount(info);
    if (conflicts == 0) return texts_.get(Text::InfoNoConflicts);
    std::string line = texts_.get(Text::InfoConflicts, conflictSign);
    replaceAll(line, "%2", std::to_string(conflicts));
    return line;
}

void TagsPage::tell(const std::string& line) {
    lblResult_->SetLabelText(toWx(withoutControls(line)));
    lblResult_->SetToolTip(toWx(line));
}

// --- FileInfoDialog ------------------------------------------------------------------------------

FileInfoDialog::FileInfoDialog(wxWindow* parent, Services& services, FileDesk& desk,
                               std::vector<std::string> paths, std::size_t at)
    : wxDialog(parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER | wxMAXIMIZE_BOX),
      services_(services),
      desk_(desk),
      ansi_(services.ansiCodePage),
      paths_(std::move(paths)),
      at_(at) {
    build();
    bindEvents();
    read();
    placeWindow(*this, services_.settings.number(Setting::FInfoL),
                services_.settings.number(Setting::FInfoT));
}

FileInfoDialog::~FileInfoDialog() {
    services_.settings.save(Setting::FInfoL);
    services_.settings.save(Setting::FInfoT);
}

wxString FileInfoDialog::text(Text number) const {
    return toWx(services_.texts.get(number));
}

void FileInfoDialog::build() {
    lblName_ = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                wxST_ELLIPSIZE_MIDDLE | wxST_NO_AUTORESIZE);
    lblName_->SetFont(GetFont().Bold());
    pages_ = new wxNotebook(this, wxID_ANY);
    tags_ = new TagsPage(pages_, services_.texts,
                         [this](const TagLayer& layer, LayerWish wish) { change(layer, wish); });
    parts_ = new ReportPage(pages_, 1);
    stream_ = new ReportPage(pages_, 1);
    picture_ = new PicturePage(pages_, services_.texts);
    pages_->AddPage(tags_, text(Text::InfoTagsPage), true);
    pages_->AddPage(parts_, text(Text::InfoPartsPage));
    pages_->AddPage(stream_, text(Text::InfoStreamPage));
    pages_->AddPage(picture_, text(Text::InfoPicturePage));
    auto* all = new wxBoxSizer(wxVERTICAL);
    all->Add(lblName_, wxSizerFlags().Expand().Border(wxALL, FromDIP(8)));
    all->Add(pages_, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, FromDIP(8)));
    all->Add(buildButtons(), wxSizerFlags().Expand().Border(wxALL, FromDIP(8)));
    SetSizer(all);
    SetMinClientSize(FromDIP(wxSize(480, 360)));
    SetClientSize(FromDIP(wxSize(760, 600)));
}

wxSizer* FileInfoDialog::buildButtons() {
    cmdPrevious_ = new wxButton(this, wxID_ANY, text(Text::InfoPrevious));
    cmdNext_ = new wxButton(this, wxID_ANY, text(Text::InfoNext));
    cmdClose_ = new wxButton(this, wxID_CANCEL, text(Text::InfoClose));
    cmdPrevious_->SetToolTip(text(Text::InfoPreviousTip));
    cmdNext_->SetToolTip(text(Text::InfoNextTip));
    cmdClose_->SetDefault();
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    row->Add(cmdPrevious_, wxSizerFlags().Border(wxRIGHT, FromDIP(6)));
    row->Add(cmdNext_);
    row->AddStretchSpacer();
    row->Add(cmdClose_);
    return row;
}

void FileInfoDialog::bindEvents() {
    cmdPrevious_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { go(-1); });
    cmdNext_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { go(1); });
    Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        const int key = event.GetKeyCode();
        const bool isOurs =
            event.GetModifiers() == wxMOD_ALT && (key == WXK_LEFT || key == WXK_RIGHT);
        if (!isOurs) return event.Skip();
        go(key == WXK_LEFT ? -1 : 1);
    });
    pages_->Bind(wxEVT_NOTEBOOK_PAGE_CHANGED, [this](wxBookCtrlEvent& event) {
        event.Skip();
        if (event.GetEventObject() == pages_) seePicture();
    });
    timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onTimer(); });
    // What is being written is told of here.
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
        if (isBusy_ && event.CanVeto()) return event.Veto();
        event.Skip();
    });
    Bind(wxEVT_MOVE, [this](wxMoveEvent& event) {
        event.Skip();
        keepPlace();
    });
}

void FileInfoDialog::go(int step) {
    const bool canGo = step < 0 ? at_ > 0 : at_ + 1 < paths_.size();
    if (!canGo || isBusy_) return;
    at_ = step < 0 ? at_ - 1 : at_ + 1;
    read();
}

void FileInfoDialog::read() {
    const wxBusyCursor busy;
    info_ = readFileInfo(paths_[at_], ansi_);
    showTitle();
    tags_->fill(info_, tagSettings(services_.settings));
    fillParts();
    fillStream();
    fillPictures();
}

void FileInfoDialog::showTitle() {
    const Texts& texts = services_.texts;
    const wxString name = toWx(fileNameOf(info_.path, nativePathStyle()));
    const std::string place = numbered(texts, Text::InfoPlaceInList, at_ + 1, paths_.size());
    SetTitle(name + " - " + text(Text::InfoTitle) + " (" + toWx(place) + ")");
    lblName_->SetLabelText(name);
    lblName_->SetToolTip(toWx(info_.path));
    // A button that goes out of use would take the keyboard with it.
    const bool isFirst = at_ == 0;
    const bool isLast = at_ + 1 >= paths_.size();
    if (isFirst && cmdPrevious_->HasFocus()) (isLast ? cmdClose_ : cmdNext_)->SetFocus();
    if (isLast && cmdNext_->HasFocus()) (isFirst ? cmdClose_ : cmdPrevious_)->SetFocus();
    cmdPrevious_->Enable(!isFirst);
    cmdNext_->Enable(!isLast);
}

std::string FileInfoDialog::layerName(TagKind kind) const {
    const auto layer = std::find_if(info_.layers.begin(), info_.layers.end(),
                                    [&](const TagLayer& each) { return each.kind == kind; });
    return layer == info_.layers.end() ? std::string() : layer->name;
}

void FileInfoDialog::fillParts() {
    const Texts& texts = services_.texts;
    std::vector<ReportRow> rows;
    for (const TagPart& part : info_.parts.parts) {
        rows.push_back({{layerName(part.tag), part.id, std::to_string(part.size), part.text},
                        false,
                        part.text});
    }
    parts_->fill({texts.get(Text::InfoTag), texts.get(Text::InfoPart), texts.get(Text::InfoTagSize),
                  texts.get(Text::InfoContent)},
                 std::move(rows));
}

void FileInfoDialog::fillStream() {
    const Texts& texts = services_.texts;
    const auto facts = info_.record.OK ? streamFacts(info_.record, texts) : std::vector<FactRow>();
    std::vector<ReportRow> rows;
    rows.reserve(facts.size());
    for (const FactRow& fact : facts) {
        rows.push_back({{texts.get(fact.caption), fact.value}, false, fact.value});
    }
    stream_->fill({texts.get(Text::InfoProperty), texts.get(Text::InfoValue)}, std::move(rows));
}

void FileInfoDialog::fillPictures() {
    std::vector<std::string> names;
    for (const TagPicture& picture : info_.parts.pictures) names.push_back(layerName(picture.tag));
    picture_->fill(info_.path, std::move(info_.parts.pictures), names);
    seePicture();
}

void FileInfoDialog::seePicture() {
    if (pages_->GetCurrentPage() == picture_) picture_->see();
}

bool FileInfoDialog::isAgreed(const TagLayer& layer, LayerWish wish) {
    const std::string question = services_.texts.get(Text::InfoAskRemove, layer.name);
    if (wish == LayerWish::Remove &&
        !confirm(this, services_.texts, question, Text::InfoRemoveYes)) {
        return false;
    }
    return !info_.record.ReadOnly ||
           wxMessageBox(text(Text::InfoClearReadOnly), text(Text::InfoTitle),
                        wxYES_NO | wxNO_DEFAULT | wxICON_QUESTION, this) == wxYES;
}

// It is done beside the window, as the list's own saving is.
void FileInfoDialog::change(const TagLayer& layer, LayerWish wish) {
    constexpr int milliseconds = 40;
    if (!isAgreed(layer, wish)) return;
    wish_ = wish;
    if (!desk_.changeLayer(info_.record, layer.kind, wish)) {
        return tags_->tell(services_.texts.get(Text::InfoBusy));
    }
    setBusy(true);
    timer_.Start(milliseconds);
}

void FileInfoDialog::onTimer() {
    const auto result = desk_.takeLayerResult();
    if (!result) return;
    timer_.Stop();
    setBusy(false);
    read();
    const Text done = wish_ == LayerWish::Remove ? Text::InfoRemoved : Text::InfoCarried;
    const Text good = result->outcome == FileOutcome::Read ? Text::InfoNothingToCarry : done;
    tags_->tell(result->message.empty() ? services_.texts.get(good) : result->message);
}

void FileInfoDialog::setBusy(bool isBusy) {
    isBusy_ = isBusy;
    tags_->setBusy(isBusy);
    cmdClose_->Enable(!isBusy);
}

void FileInfoDialog::keepPlace() {
    if (!IsShown() || IsIconized() || IsMaximized()) return;
    const wxPoint corner = GetPosition();
    services_.settings.set(Setting::FInfoL, corner.x);
    services_.settings.set(Setting::FInfoT, corner.y);
}

}  // namespace tavlo
