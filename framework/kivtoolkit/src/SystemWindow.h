// What the dialog's window needs of the system besides the toolkit: the foreign parent, the moment
// when everything is painted, a picture of itself, input as if from the user.

#pragma once

#include "framework/kivtoolkit/src/Look.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <wx/gdicmn.h>
#include <wx/toplevel.h>
#include <wx/window.h>

#include <kivcore/Handles.h>
#include <kivmetadataui/DialogDriver.h>

namespace kivtoolkit {

/// The order of the buttons: true where OK stands behind Cancel.
bool ConfirmingButtonStandsLast();

/// The toolkit's style bits of a dialog that can be resized.
long DialogStyle();
/// Gives a window of that style, new and not shown yet, what the toolkit has no bits for.
/// `isDark` says on which side the theme is.
void DressDialog(wxTopLevelWindow& window, bool isDark);

/// Puts `window` over those in the same parent, which it may overlap.
void LayOverSiblings(wxWindow& window);

/// Makes `window`, which is not shown yet, stay above the host's window. False if there is no such
/// window, or none can be on this kind of display.
bool AttachToHost(wxTopLevelWindow& window, HWND host);
/// The host's window on the screen; none where there is no such window.
std::optional<wxRect> RectOfHost(HWND host);

/// While it lives the window that AttachToHost found below the dialog takes no input, where the
/// system expects that of a modal dialog.
class HostHold {
public:
    /// `lost` runs, and must not throw, when the system destroys `window` together with the host's.
    HostHold(wxTopLevelWindow& window, const std::function<void()>& lost);
    HostHold(const HostHold&) = delete;
    HostHold& operator=(const HostHold&) = delete;
    /// Gives the focus back to where it was; the dialog is hidden by now.
    ~HostHold();

    /// To be called right before the dialog is hidden: the host's window takes input again, else
    /// the system would bring another program to the front.
    void Release() noexcept;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Takes what stays the toolkit's own (menus of text fields, tooltips) to the theme's side of light
/// and dark, where no one else's windows would change with it. Back on destruction.
class DarkSide {
public:
    explicit DarkSide(bool isDark);
    DarkSide(const DarkSide&) = delete;
    DarkSide& operator=(const DarkSide&) = delete;
    ~DarkSide();

private:
    [[maybe_unused]] bool isSet_ = false;  // there is nothing to set on Windows
    [[maybe_unused]] bool before_ = false;
};

/// Runs `callback` once, contained by the caller, when everything of `window` has been painted anew
/// and the loop has turned a few times since. At the latest after a few seconds: a window that
/// somebody hid is never painted. Returns a function that takes it back.
std::function<void()> CallWhenPainted(wxWindow& window, std::function<void()> callback);

/// Handles what waits in the loop; at most a fixed number of turns.
void HandleWaitingEvents();

/// Writes what `window` shows to a PNG file, whatever lies over it on the screen. `path` is UTF-8.
/// Throws std::runtime_error.
void WriteScreenshot(wxWindow& window, const std::string& path);

/// Input to our own windows, which never passes the desktop.
/// @{
void ClickAt(wxWindow& window, const wxPoint& at);
void PressKeyIn(wxTopLevelWindow& window, const kivmetadataui::DriverKeyPress& press);
/// A character without a key is committed as an input method would.
void TypeCharacterIn(wxTopLevelWindow& window, char32_t character);
/// @}

}  // namespace kivtoolkit
