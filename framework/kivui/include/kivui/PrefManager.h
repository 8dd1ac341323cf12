// Preferences of the user interface itself, kept in "UIPrefs.xml" in the preferences folder.

#pragma once

#include <kivcore/PropList.h>
#include <kivcore/UString.h>
#include <kivui/Export.h>

namespace kivui::ui {

class KIVUI_API PrefManager {
public:
    PrefManager() = delete;

    /// Reads the preferences of `folder`; with `reset` begins with none. A missing or broken file
    /// gives none, and the reason is traced on "kivui". Throws nothing but std::bad_alloc.
    static void Initialize(const kivcore::UString& folder, bool reset);
    static bool IsInitialized() noexcept;
    /// Writes what changed, without needing a parser or localizer, and forgets all. Silent when
    /// nothing was started; failures are traced.
    static void Finalize() noexcept;

    /// The preferences, to read and change; throws std::logic_error before Initialize.
    static kivcore::proplist::PropList& Preferences();
};

}  // namespace kivui::ui
