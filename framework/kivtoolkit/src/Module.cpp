// The module's entry point, and the object behind it.

#include "framework/kivmetadataui/src/ToolkitModule.h"
#include "framework/kivtoolkit/src/DialogWindow.h"
#include "framework/kivtoolkit/src/Guest.h"
#include "framework/kivtoolkit/src/NativeText.h"
#include "framework/kivtoolkit/src/Texts.h"
#include "framework/kivtoolkit/src/ToolkitLife.h"
#include "framework/kivtoolkit/src/WxPainter.h"

#include <wx/app.h>

#include <memory>
#include <stdexcept>

#ifdef _WIN32
#define KIVTOOLKIT_ENTRY __declspec(dllexport)
#else
#define KIVTOOLKIT_ENTRY __attribute__((visibility("default")))
#endif

namespace kivtoolkit {

namespace {

constinit DialogWindow* running = nullptr;

class Module : public kivmetadataui::ToolkitModule {
public:
    void Start() override { life_.Start(); }

    kivmetadataui::DialogResult RunDialog(kivmetadataui::ShownDialog& dialog, HWND parent) override
    {
        const std::shared_ptr<void> display = RequireDisplay();  // it may have gone meanwhile
        const GuestGuard guard;
        auto window = std::make_unique<DialogWindow>(dialog, parent);
        running = window.get();
        SetEndingHandler([] {
            if (running != nullptr) {
                running->CancelSoon();
            }
        });
        const kivmetadataui::DialogResult result = window->RunModal();
        running = nullptr;
        SetEndingHandler(nullptr);
        if (IsConnectionLost()) {
            // The toolkit would wait for answers that never come.
            window.release()->Abandon();
            throw std::runtime_error(Utf8Text(
                "$$$/Kiv/Dialog/Failure/DisplayLost=The connection to the display was lost."));
        }
        ReleaseClipboard();
        window.reset();
        // What was left for later would otherwise wait for the next dialog.
        wxTheApp->ProcessPendingEvents();
        return result;
    }

    void CancelDialog() noexcept override
    {
        if (running != nullptr) {
            running->CancelSoon();
        }
    }

    void Stop() noexcept override
    {
        ForgetFonts();
        ForgetNativeStyles();
        life_.Stop();
    }

private:
    ToolkitLife life_;
};

}  // namespace

}  // namespace kivtoolkit

extern "C" KIVTOOLKIT_ENTRY kivmetadataui::ToolkitModule* KivToolkitOpen(std::uint32_t version)
{
    static auto& module = *new kivtoolkit::Module;
    return version == kivmetadataui::kToolkitVersion ? &module : nullptr;
}
