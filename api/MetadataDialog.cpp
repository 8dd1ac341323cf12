#include "api/MetadataDialog.h"

#include "api/ApiError.h"
#include "api/Lifecycle.h"

#include <kivcore/Dir.h>
#include <kivcore/PropList.h>
#include <kivcore/StringConversion.h>
#include <kivmetadata/Provider.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivui/Theme.h>

#include <memory>

namespace kivmetadataapi {

namespace {

using kivcore::filesupport::Dir;
using kivcore::filesupport::File;
using kivcore::proplist::PropList;

constexpr kivcore::UStringView kPreferencesName = u"MetadataDialogPrefs.xml";

// The host's XMP object as the dialog sees it. Saving is the host's part, so nothing is done when
// changes were written.
class DialogMetadataProvider : public kivmetadata::TypicalProviderImpl {
public:
    explicit DialogMetadataProvider(__XMPMeta__* meta) : TypicalProviderImpl(meta) {}
    ~DialogMetadataProvider() override = default;

    bool CanWriteChanges() const override { return true; }
    void ChangesWritten() override {}
};

File PreferencesFile()
{
    return File(Dir::PrefDir(), kPreferencesName);
}

// Preferences are a convenience: whatever is wrong with them, the dialog opens.
void LoadPreferences(PropList& list) noexcept
{
    try {
        const File file = PreferencesFile();
        if (file.Exists()) {
            kivcore::proplist::utils::LoadPropList(file.FullPath(), list, false);
        }
    } catch (...) {
    }
}

void SavePreferences(const PropList& list) noexcept
{
    try {
        const File file = PreferencesFile();
        file.Create(false);
        kivcore::proplist::utils::SavePropList(file, list);
    } catch (...) {
    }
}

}  // namespace

bool RunMetadataDialog(__XMPMeta__* meta, const MetadataDialogRequest& request)
{
    if (meta == nullptr) {
        throw kivmetadataapi_error("There is no XMP object to show");
    }
    if (!IsFrameworkUp()) {
        throw kivmetadataapi_error("The library is not initialized");
    }
    const auto provider = std::make_shared<DialogMetadataProvider>(meta);
    kivmetadataui::MetadataDialogParameters parameters;
    if (request.text != nullptr) {
        parameters.title = kivcore::string::UTF8to16(request.text);
    }
    PropList preferences;
    LoadPreferences(preferences);
    parameters.preferences = &preferences;
    kivui::ui::Theme::Get().SetBrightness(
        static_cast<float>(static_cast<float>(request.brightnessPercent) / 100.0));
    parameters.flags = request.flags & (kivmetadataui::kReadOnly | kivmetadataui::kPlain);
    const bool isConfirmed =
        kivmetadataui::DoMetadataDialog(provider, request.parentWindow, parameters);
    SavePreferences(preferences);
    return isConfirmed;
}

}  // namespace kivmetadataapi
