#include <kivmetadataui/MetadataDialog.h>

#include <exception>
#include <optional>
#include <stdexcept>
#include <utility>

#include "framework/kivmetadataui/src/DriverStore.h"
#include "framework/kivmetadataui/src/RunningDialog.h"
#include "framework/kivmetadataui/src/Texts.h"
#include "framework/kivmetadataui/src/ToolkitInForce.h"
#include "framework/kivmetadataui/src/ToolkitLoader.h"
#include "framework/kivmetadataui/src/ToolkitModule.h"

#include <kivcore/Config.h>
#include <kivcore/LastFailure.h>
#include <kivmetadata/Definitions.h>

namespace kivmetadataui {

using kivcore::UString;

namespace {

struct Module {
    bool isInitialized = false;
    ToolkitModule* toolkit = nullptr;  // null until the first dialog
    bool isToolkitStarted = false;
    bool isDialogOpen = false;
    RunningDialog* dialog = nullptr;  // while its loop runs
    bool stopsLater = false;          // Terminate was called while a dialog was open
};

Module& TheModule()
{
    static Module& module = *new Module;
    return module;
}

void StopToolkit() noexcept
{
    Module& module = TheModule();
    if (std::exchange(module.isToolkitStarted, false)) {
        module.toolkit->Stop();
    }
}

/// Marks the module as busy, and does what Terminate left to be done.
class OpenDialogMark {
public:
    OpenDialogMark() { TheModule().isDialogOpen = true; }
    OpenDialogMark(const OpenDialogMark&) = delete;
    OpenDialogMark& operator=(const OpenDialogMark&) = delete;
    ~OpenDialogMark()
    {
        Module& module = TheModule();
        module.isDialogOpen = false;
        if (std::exchange(module.stopsLater, false)) {
            StopToolkit();
        }
    }
};

bool Refuse(const UString& reason)
{
    kivcore::SetLastFailureText(Narrow(reason));
    return false;
}

void StartToolkit()
{
    Module& module = TheModule();
    if (module.toolkit == nullptr) {
        module.toolkit = &OpenToolkitModule();
    }
    if (!module.isToolkitStarted) {
        module.toolkit->Start();
        module.isToolkitStarted = true;
    }
}

void RunLoop(RunningDialog& dialog, HWND parent)
{
    Module& module = TheModule();
    struct LoopMark {
        explicit LoopMark(RunningDialog& running) { TheModule().dialog = &running; }
        ~LoopMark() { TheModule().dialog = nullptr; }
    } const mark(dialog);
    module.toolkit->RunDialog(dialog, parent);
}

// Hosts that show a dialog without having asked for the list of definitions see them all the same.
void EnsureDefinitions()
{
    const auto views = kivmetadata::CommonViewDefinitions();
    if (views == nullptr || views->empty()) {
        kivmetadata::LoadAllViewDefinitions();
    }
}

DialogOptions OptionsOf(const MetadataDialogParameters& parameters)
{
    DialogOptions options;
    options.title = parameters.title;
    options.confirmLabel = parameters.confirmLabel;
    options.isReadOnly = (parameters.flags & kReadOnly) != 0;
    options.isPlain = (parameters.flags & kPlain) != 0;
    options.clientName = kivcore::config::ClientName();
    options.preferences = parameters.preferences;
    return options;
}

}  // namespace

const kivui::ui::ModuleInfo& ModuleInfo::Get()
{
    static const kivui::ui::ModuleInfo& info =
        *new kivui::ui::ModuleInfo{"kivmetadataui", KIVMETADATAUI_VERSION};
    return info;
}

void Initialize()
{
    if (!kivcore::config::IsInitialized()) {
        throw std::runtime_error("kivmetadataui: the framework is not initialized");
    }
    TheModule().isInitialized = true;
}

void Terminate() noexcept
{
    Module& module = TheModule();
    if (!std::exchange(module.isInitialized, false)) {
        return;
    }
    SetLastChanges({});
    kivmetadata::UnloadViewDefinitions();
    if (!module.isDialogOpen) {
        StopToolkit();
        return;
    }
    module.stopsLater = true;
    if (module.dialog != nullptr) {
        module.dialog->Cancel();
        module.toolkit->CancelDialog();
    }
}

bool IsInitialized() noexcept
{
    return TheModule().isInitialized;
}

void SetToolkitModule(ToolkitModule* module) noexcept
{
    TheModule().toolkit = module;
}

bool DoMetadataDialog(std::shared_ptr<kivmetadata::MetaDataProvider> provider, HWND parent,
                      const MetadataDialogParameters& parameters)
{
    Module& module = TheModule();
    if (module.isDialogOpen) {
        return Refuse(DialogText("$$$/Kiv/Dialog/Failure/Open=A metadata dialog is open already."));
    }
    if (!module.isInitialized) {
        return Refuse(
            DialogText("$$$/Kiv/Dialog/Failure/NotInitialized=The dialog is not initialized."));
    }
    if (provider == nullptr || provider->MetaDataAccess() == nullptr) {
        return Refuse(DialogText("$$$/Kiv/Dialog/Failure/NoObject=There is no metadata to show."));
    }
    const OpenDialogMark mark;
    SetLastChanges({});
    try {
        StartToolkit();
    } catch (const std::runtime_error& error) {
        kivcore::SetLastFailureText(error.what());
        return false;
    }
    EnsureDefinitions();
    RunningDialog dialog(std::move(provider), kivmetadata::CommonViewDefinitions(),
                         kivmetadata::CommonSchemaDefinitions(), OptionsOf(parameters),
                         TakeRegisteredDriver());
    // The localizer is the host's, and may have called Terminate.
    if (module.stopsLater) {
        kivcore::SetLastFailureText({});
        return false;
    }
    try {
        RunLoop(dialog, parent);
    } catch (const std::runtime_error& error) {
        kivcore::SetLastFailureText(error.what());
        return dialog.IsConfirmed();
    }
    kivcore::SetLastFailureText(dialog.IsConfirmed() ? std::string_view()
                                                     : std::string_view(dialog.ScriptFailure()));
    return dialog.IsConfirmed();
}

}  // namespace kivmetadataui
