#pragma once

#include <wx/button.h>
#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/notebook.h>
#include <wx/stattext.h>

#include <functional>
#include <string>
#include <vector>

#include "core/StartUp.h"
#include "desk/FileDetails.h"
#include "ui/PicturePage.h"
#include "ui/ReportPage.h"

namespace tavlo {

/// The tags of a file side by side, with a button that carries one over to all of them.
class TagsPage : public ReportPage {
 public:
    TagsPage(wxWindow* parent, const Texts& texts, std::function<void(std::size_t layer)> carry);

    void fill(const FileDetails& info, const TagSettings& settings);
    /// What came of carrying over; stays until another file is shown.
    void tell(const std::string& line);

 private:
    void build();
    [[nodiscard]] ReportRow rowOf(const LayerRow& field, const std::vector<TagLayer>& layers) const;
    [[nodiscard]] ReportRow sizesOf(const std::vector<TagLayer>& layers) const;
    [[nodiscard]] std::string summaryOf(const FileDetails& info, const TagSettings& settings) const;
    [[nodiscard]] std::string agreementOf(const FileDetails& info) const;

    const Texts& texts_;
    std::function<void(std::size_t)> carry_;
    wxStaticText *lblSummary_ = nullptr, *lblResult_ = nullptr;
    wxChoice* cmbLayers_ = nullptr;
    wxButton* cmdCarry_ = nullptr;
};

/// All about one file of several; the others are a key away.
class FileInfoDialog : public wxDialog {
 public:
    /// Begins with the path at `at`, which must be one of them; `fileChanged` is called for every
    /// file that was written.
    FileInfoDialog(wxWindow* parent, Services& services, std::vector<std::string> paths,
                   std::size_t at, std::function<void(const std::string& path)> fileChanged);
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
    void carry(std::size_t layer);
    void keepPlace();
    [[nodiscard]] std::string layerName(TagKind kind) const;
    [[nodiscard]] wxString text(Text number) const;

    Services& services_;
    const CodePage ansi_;
    std::vector<std::string> paths_;
    std::size_t at_;
    std::function<void(const std::string&)> fileChanged_;
    FileDetails info_;
    wxStaticText* lblName_ = nullptr;
    wxNotebook* pages_ = nullptr;
    TagsPage* tags_ = nullptr;
    ReportPage *parts_ = nullptr, *stream_ = nullptr;
    PicturePage* picture_ = nullptr;
    wxButton *cmdPrevious_ = nullptr, *cmdNext_ = nullptr, *cmdClose_ = nullptr;
};

}  // namespace tavlo
