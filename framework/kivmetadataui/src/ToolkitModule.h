// What lies between this library and the private toolkit module: the module shows a dialog's model
// in a window and runs its loop. Both are built together; the version guards against a stray file.

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "framework/kivmetadataui/src/DialogModel.h"

#include <kivcore/Handles.h>
#include <kivcore/UString.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivmetadataui/Export.h>

namespace kivmetadataui {

/// Counts up with every change to a class that the module sees.
constexpr std::uint32_t kToolkitVersion = 2;

enum class DialogButton { kOk, kCancel };

/// What part of a field a driver's step types into.
struct FieldPart {
    enum class Kind {
        kWhole,     ///< the field's one text control
        kLanguage,  ///< the text in `language`, which is shown first, and added where missing
        kItem,      ///< the chip `index`, taken into edit; Enter ends it
        kNewItem,   ///< the entry behind the last chip; Enter adds it
    };
    Kind kind = Kind::kWhole;
    std::string language;
    std::size_t index = 0;
};

/// The dialog's window as a driver uses it. Everything is done as events to the window's own
/// controls, and has been handled when the call returns. A call that cannot be done throws
/// std::runtime_error.
class DialogSurface {
public:
    virtual ~DialogSurface() = default;
    /// Clicks a view in the list of views.
    virtual void ChooseView(std::size_t view) = 0;
    /// Brings the field of the current view into sight, focuses the part, selects all and types
    /// `text`; an empty text deletes. Enter follows for kItem and kNewItem. Text, language, list,
    /// date, number, URI and open choice fields.
    virtual void TypeInto(Field& field, const FieldPart& part, const kivcore::UString& text) = 0;
    /// Clicks the cross of a chip.
    virtual void RemoveItem(Field& field, std::size_t index) = 0;
    /// Picks a choice by mouse or keys; none empties the field. The index is that of
    /// ChoiceField::Choices; for yes/no 1 is yes and 0 no; for a rating it is the number of stars.
    virtual void Choose(Field& field, std::optional<std::size_t> index) = 0;
    /// Types where the keyboard focus is; a character without a key is committed as an input method
    /// would.
    virtual void TypeText(const kivcore::UString& text) = 0;
    virtual void PressKey(const DriverKeyPress& press) = 0;
    /// Writes a PNG of the window's content; `path` is UTF-8.
    virtual void Screenshot(const std::string& path) = 0;
    virtual void PressButton(DialogButton button) = 0;
};

/// One dialog, from the module's side: the model, the door for callbacks, the driver's script. It
/// lives until RunDialog has returned, and so does the theme that was in force when it began: a
/// host's last terminate from within a callback ends the framework's theme while windows are open.
class KIVMETADATAUI_API ShownDialog {
public:
    virtual ~ShownDialog() = default;

    virtual DialogModel& Model() noexcept = 0;

    /// Runs a callback of the toolkit (event handlers, timers, painting) so that nothing is thrown
    /// through the toolkit's frames. False if it threw: the text is then the model's message, and
    /// the dialog stays open.
    virtual bool Run(const std::function<void()>& callback) noexcept = 0;

    /// OK was pressed, and what was being typed has been handed over. True if the changes are
    /// written: the dialog closes. False if it stays open: the model's message says why, and
    /// FirstError() where to look.
    virtual bool Confirm() noexcept = 0;

    /// True while a driver's script is under way.
    virtual bool HasScript() const noexcept = 0;
    /// To be called each time the window is painted and idle: does the next step of the script. On
    /// false the script is over, and the dialog is to close as cancelled unless it is closing.
    virtual bool RunScriptStep(DialogSurface& surface) noexcept = 0;
};

enum class DialogResult { kConfirmed, kCancelled };

/// The module. The object lives as long as the process.
class ToolkitModule {
public:
    virtual ~ToolkitModule() = default;
    /// Brings the toolkit up, or takes the one that the host runs. Throws std::runtime_error with
    /// the reason (no display, another generation of the toolkit in the process); nothing is left
    /// behind then, and a later call tries again. A second call does nothing.
    virtual void Start() = 0;
    /// Shows the dialog and returns when its window is gone. Requires Start(). `parent` may be
    /// null, and counts as null where there is no such window. Throws std::runtime_error where the
    /// window cannot be made.
    virtual DialogResult RunDialog(ShownDialog& dialog, HWND parent) = 0;
    /// From within RunDialog, so from a callback: ends its loop as cancelled, soon. The dialog
    /// stays valid until RunDialog has returned. Without a dialog nothing happens.
    virtual void CancelDialog() noexcept = 0;
    /// Ends what Start began; never while RunDialog runs. Without a start nothing happens.
    virtual void Stop() noexcept = 0;
};

/// The module's one entry point, "KivToolkitOpen": null if `version` is not its own.
using ToolkitOpenFunction = ToolkitModule* (*)(std::uint32_t version);

}  // namespace kivmetadataui
