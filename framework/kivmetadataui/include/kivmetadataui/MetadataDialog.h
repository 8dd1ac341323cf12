// The metadata dialog and the life of the module that shows it.

#pragma once

#include <cstdint>
#include <memory>

#include <kivcore/Handles.h>
#include <kivcore/PropList.h>
#include <kivcore/UString.h>
#include <kivmetadata/Provider.h>
#include <kivmetadataui/Export.h>
#include <kivui/ModuleInfo.h>

namespace kivmetadataui {

class KIVMETADATAUI_API ModuleInfo {
public:
    ModuleInfo() = delete;
    static const kivui::ui::ModuleInfo& Get();
};

/// Bits of MetadataDialogParameters::flags.
enum MetadataDialogFlags : std::uint32_t {
    kReadOnly = 1,  ///< fields can be selected and copied, OK is off
    kPlain = 2,     ///< the camera view and the list of all properties are left out
};

struct MetadataDialogParameters {
    kivcore::UString title;         ///< as a rule the photo's file name
    kivcore::UString heading;       ///< not used by this dialog
    kivcore::UString confirmLabel;  ///< label of the confirming button; empty for "OK"
    kivcore::proplist::PropList* preferences =
        nullptr;  ///< read and changed; not owned, may be null
    std::uint32_t flags = 0;
};

/// Makes the module ready; opens no window. Throws where the framework is not up.
KIVMETADATAUI_API void Initialize();

/// Ends the toolkit if a dialog had started it, drops the definitions, and cancels a dialog that is
/// still open: what that one uses lives until its loop has returned. Silent when nothing was
/// started.
KIVMETADATAUI_API void Terminate() noexcept;

KIVMETADATAUI_API bool IsInitialized() noexcept;

/// Shows the dialog over the provider's object, modal to `parent` (may be null, and counts as null
/// if there is no such window), and returns when it is closed: true if the user confirmed. The
/// provider's object then holds the changes; on false it is as it was. False at once, with the
/// reason as the last failure's text, where there is no display, no object, no Initialize, or a
/// dialog already.
KIVMETADATAUI_API bool DoMetadataDialog(std::shared_ptr<kivmetadata::MetaDataProvider> provider,
                                        HWND parent, const MetadataDialogParameters& parameters);

}  // namespace kivmetadataui
