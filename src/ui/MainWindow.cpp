#include "ui/MainWindow.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/init.h>
#include <wx/log.h>

#include "collection/JobFiles.h"
#include "ui/MainFrame.h"
#include "ui/Messages.h"
#include "ui/OptionsDialog.h"
#include "ui/Splash.h"
#include "ui/WxText.h"

namespace tavlo {

namespace {
constexpr int noWindows = 1;  // exit code
const auto processStart = std::chrono::steady_clock::now();

class DeskApp final : public wxApp {
 public:
    bool OnInit() override {
        SetAppName("tavlo");
        SetAppDisplayName("Tavlo Audio Desk");
        // What the toolkit has to say is told in the program's own words, where it matters.
        wxLog::EnableLogging(false);
        return true;
    }
};

// Runs with the toolkit made ready; nothing when it cannot open windows.
template <class Work>
int withWindows(Work work) {
    wxApp::SetInstance(new DeskApp);
    int argc = 0;
    char** const argv = nullptr;
    wxDISABLE_DEBUG_SUPPORT();
    if (!wxEntryStart(argc, argv)) return noWindows;
    wxTheApp->OnInit();
    const int code = work();
    wxTheApp->OnExit();
    wxEntryCleanup();
    return code;
}
}  // namespace

int openMainWindow(Services& services, KeptLines& told) {
    return withWindows([&] {
        Trace trace;
        Splash splash(services.texts, processStart);
        splash.look();
        auto* const frame = new MainFrame(services, told, trace, [&] { splash.look(); });
        frame->Show();
        trace.note("shown");
        frame->CallAfter([frame, &services] { frame->open(wantedPaths(services)); });
        wxTheApp->SetTopWindow(frame);
        splash.end();
        return wxTheApp->OnRun();
    });
}

int openSetup(Services& services, KeptLines& told) {
    return withWindows([&] {
        showOptions(nullptr, services);
        showFailures(nullptr, services.texts, told.lines);
        return services.errors.exitCode();
    });
}

void openHelp(const std::string& page, const Texts& texts) {
    withWindows([&] {
        showPage(nullptr, texts, Text::CommandHelpTitle, page);
        return 0;
    });
}

void openMessages(const std::vector<std::string>& lines, const Texts& texts) {
    withWindows([&] {
        std::string page;
        for (const std::string& line : lines) page += line + "\n";
        showPage(nullptr, texts, Text::ProgramTitle, page);
        return 0;
    });
}

}  // namespace tavlo
