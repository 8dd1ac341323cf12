// Start-up of the framework's user interface.

#pragma once

#include <kivcore/Handles.h>
#include <kivui/Export.h>

namespace kivui::ui {

class KIVUI_API OS_Window {
public:
    OS_Window() = delete;

    /// Notes the host's module instance; may be null. Opens nothing: the toolkit starts at the
    /// first window.
    static void UI_Initialize(HINSTANCE instance) noexcept;
    /// The instance noted last, null before.
    static HINSTANCE Instance() noexcept;
};

}  // namespace kivui::ui
