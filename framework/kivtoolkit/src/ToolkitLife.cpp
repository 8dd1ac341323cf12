// wxWidgets keeps its log target and its assertion handler process-wide: ours are in force only
// while the toolkit is ours. Its end deletes the log target.

#include "framework/kivtoolkit/src/ToolkitLife.h"

#include "framework/kivtoolkit/src/Guest.h"
#include "framework/kivtoolkit/src/Texts.h"
#include "framework/kivtoolkit/src/Tracing.h"

#include <wx/app.h>
#include <wx/debug.h>
#include <wx/init.h>
#include <wx/log.h>

#include <memory>
#include <stdexcept>

namespace kivtoolkit {

namespace {

constinit wxAssertHandler_t hostAssertHandler = nullptr;

class TraceLog : public wxLog {
protected:
    void DoLogText(const wxString& message) override
    {
        const wxScopedCharBuffer utf8 = message.utf8_str();
        Trace(std::string_view(utf8.data(), utf8.length()));
    }
};

void OnAssertion(const wxString& file, int line, const wxString& function,
                 const wxString& condition, const wxString& message)
{
    const wxString text =
        wxString::Format("%s:%d: %s: %s %s", file, line, function, condition, message);
    const wxScopedCharBuffer utf8 = text.utf8_str();
    Trace(std::string_view(utf8.data(), utf8.length()));
}

// No handler of ours lets anything out; this is the net under the toolkit's own code.
class GuestApp : public wxApp {
public:
    bool OnInit() override { return true; }
    bool OnExceptionInMainLoop() override
    {
        Trace("an exception reached the toolkit's loop");
        return true;
    }
    void OnUnhandledException() override { Trace("an exception left the toolkit's loop"); }
    void OnFatalException() override {}
};

void EndToolkit() noexcept
{
    wxEntryCleanup();
    wxSetAssertHandler(hostAssertHandler);
}

}  // namespace

void ToolkitLife::Start()
{
    const std::shared_ptr<void> probe = RequireDisplay();
    if (isOurs_) {
        return;
    }
    if (wxAppConsole* running = wxAppConsole::GetInstance(); running != nullptr) {
        if (dynamic_cast<wxApp*>(running) == nullptr) {
            throw std::runtime_error(Utf8Text(
                "$$$/Kiv/Dialog/Failure/ConsoleToolkit=This program runs wxWidgets without "
                "windows, so that no dialog can be shown."));
        }
        return;
    }
    const StartGuard environment;
    GuestGuard guard;
    PrepareToolkitStart();
    hostAssertHandler = wxSetAssertHandler(OnAssertion);
    delete wxLog::SetActiveTarget(new TraceLog);
    wxApp::SetInstance(new GuestApp);
    int argumentCount = 0;
    char* arguments[] = {nullptr};
    const bool started = wxEntryStart(argumentCount, arguments);
    guard.Reinstall();
    if (!started || !wxTheApp->CallOnInit()) {
        // A start that failed has cleaned up after itself, but for the hooks.
        if (started) {
            EndToolkit();
        } else {
            delete wxLog::SetActiveTarget(nullptr);
            wxSetAssertHandler(hostAssertHandler);
        }
        throw std::runtime_error(Utf8Text(
            "$$$/Kiv/Dialog/Failure/ToolkitStart=The system's windows could not be started."));
    }
    wxTheApp->SetExitOnFrameDelete(false);
    isOurs_ = true;
}

void ToolkitLife::Stop() noexcept
{
    if (!isOurs_) {
        return;
    }
    if (IsConnectionLost()) {
        return;  // what is left of the toolkit stays as it is
    }
    isOurs_ = false;
    GuestGuard guard;
    wxTheApp->OnExit();
    EndToolkit();
}

}  // namespace kivtoolkit
