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
#include <utility>

namespace kivtoolkit {

namespace {

constinit wxAssertHandler_t hostAssertHandler = nullptr;
constinit wxLog* hostLogTarget = nullptr;

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

void PutHooks()
{
    hostAssertHandler = wxSetAssertHandler(OnAssertion);
    hostLogTarget = wxLog::SetActiveTarget(new TraceLog);
}

void TakeHooksBack()
{
    // Ours, unless the toolkit's end has deleted it already.
    delete wxLog::SetActiveTarget(std::exchange(hostLogTarget, nullptr));
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
    PutHooks();
    wxApp::SetInstance(new GuestApp);
    int argumentCount = 0;
    char* arguments[] = {nullptr};
    const bool started = wxEntryStart(argumentCount, arguments);
    guard.Reinstall();
    if (!started || !wxTheApp->CallOnInit()) {
        if (started) {
            wxEntryCleanup();
        }
        TakeHooksBack();
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
    wxEntryCleanup();
    TakeHooksBack();
}

}  // namespace kivtoolkit
