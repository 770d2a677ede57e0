#pragma once

#include <wx/button.h>
#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/notebook.h>
#include <wx/stattext.h>
#include <wx/timer.h>

#include <functional>
#include <string>
#include <vector>

#include "core/StartUp.h"
#include "desk/FileDesk.h"
#include "desk/FileDetails.h"
#include "ui/PicturePage.h"
#include "ui/ReportPage.h"

namespace tavlo {

/// The tags of a file side by side, with buttons that carry one over to all of them or take it off.
class TagsPage : public ReportPage {
 public:
    using Change = std::function<void(const TagLayer& layer, LayerWish wish)>;
    TagsPage(wxWindow* parent, const Texts& texts, Change change);

    /// `info` has to stay until the next one.
    void fill(const FileDetails& info, const TagSettings& settings);
    /// What came of a change; stays until another file is shown.
    void tell(const std::string& line);
    /// While a change is at work there is no other.
    void setBusy(bool isBusy);

 private:
    void build();
    [[nodiscard]] ReportRow rowOf(const LayerRow& field, const std::vector<TagLayer>& layers) const;
    [[nodiscard]] ReportRow sizesOf(const std::vector<TagLayer>& layers) const;
    [[nodiscard]] std::string summaryOf(const FileDetails& info, const TagSettings& settings) const;
    [[nodiscard]] std::string agreementOf(const FileDetails& info) const;

    void change(LayerWish wish);

    const Texts& texts_;
    const Change change_;
    const FileDetails* info_ = nullptr;
    bool canCarry_ = false, canRemove_ = false;
    wxStaticText *lblSummary_ = nullptr, *lblResult_ = nullptr;
    wxChoice* cmbLayers_ = nullptr;
    wxButton *cmdCarry_ = nullptr, *cmdRemove_ = nullptr;
};

/// All about one file of several; the others are a key away.
class FileInfoDialog : public wxDialog {
 public:
    /// Begins with the path at `at`, which must be one of them; they are the desk's, which somebody
    /// has to poll meanwhile.
    FileInfoDialog(wxWindow* parent, Services& services, FileDesk& desk,
                   std::vector<std::string> paths, std::size_t at);
    ~FileInfoDialog() override;
    FileInfoDialog(const FileInfoDialog&) = delete;
    FileInfoDialog& operator=(const FileInfoDialog&) = delete;

 private:
    void build();
    wxSizer* buildButtons();
    void bindEvents();
    void go(int step);
    void read();
    void showTitle();
    void fillParts();
    void fillStream();
    void fillPictures();
    void seePicture();
    void change(const TagLayer& layer, LayerWish wish);
    [[nodiscard]] bool isAgreed(const TagLayer& layer, LayerWish wish);
    void onTimer();
    void setBusy(bool isBusy);
    void keepPlace();
    [[nodiscard]] std::string layerName(TagKind kind) const;
    [[nodiscard]] wxString text(Text number) const;

    Services& services_;
    FileDesk& desk_;
    const CodePage ansi_;
    std::vector<std::string> paths_;
    std::size_t at_;
    wxTimer timer_;
    LayerWish wish_ = LayerWish::CarryOver;  // the last one
    bool isBusy_ = false;
    FileDetails info_;
    wxStaticText* lblName_ = nullptr;
    wxNotebook* pages_ = nullptr;
    TagsPage* tags_ = nullptr;
    ReportPage *parts_ = nullptr, *stream_ = nullptr;
    PicturePage* picture_ = nullptr;
    wxButton *cmdPrevious_ = nullptr, *cmdNext_ = nullptr, *cmdClose_ = nullptr;
};

}  // namespace tavlo
