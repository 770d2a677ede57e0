// A small window to drag files from: drag_source LEFT TOP PATH...
#include <wx/app.h>
#include <wx/dataobj.h>
#include <wx/dnd.h>
#include <wx/frame.h>

#include <cstdlib>

namespace {
class Source final : public wxApp {
 public:
    bool OnInit() override {
        const wxPoint place(std::atoi(argv[1].utf8_str()), std::atoi(argv[2].utf8_str()));
        auto* const frame = new wxFrame(nullptr, wxID_ANY, "source", place, wxSize(90, 90),
                                        wxSTAY_ON_TOP | wxBORDER_NONE);
        frame->Bind(wxEVT_LEFT_DOWN, [this, frame](wxMouseEvent&) {
            wxFileDataObject files;
            for (int i = 3; i < argc; ++i) files.AddFile(argv[i]);
            wxDropSource(files, frame).DoDragDrop(wxDrag_CopyOnly);
        });
        frame->Show();
        return true;
    }
};
}  // namespace

wxIMPLEMENT_APP(Source);
