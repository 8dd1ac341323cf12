// Drives the dialog by a script: for tests, for scripts that do what a person does, and for
// screenshots. The steps run once the dialog is painted, as events to its own windows only.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <kivmetadataui/Export.h>

namespace kivmetadataui {

/// A key with a name of its own; kCharacter is any other.
enum class DriverKey {
    kCharacter,
    kEnter,
    kEscape,
    kTab,
    kBackspace,
    kDelete,
    kSpace,
    kLeft,
    kRight,
    kUp,
    kDown,
    kHome,
    kEnd,
    kPageUp,
    kPageDown,
};

/// One press of a key, with the modifiers that are held.
struct DriverKeyPress {
    DriverKey key = DriverKey::kCharacter;
    char32_t character = 0;  ///< of kCharacter
    bool control = false;
    bool shift = false;
    bool alt = false;
};

enum class DriverStepKind {
    kTypeValue,
    kTypeText,
    kPressKey,
    kChooseView,
    kWaitUntilPainted,
    kScreenshot,
    kPressOk,
    kPressCancel,
};

/// One step of a script; which members count depends on the kind.
struct DriverStep {
    DriverStepKind kind = DriverStepKind::kWaitUntilPainted;
    std::string name;  ///< path of a property, name or label of a view, or file name
    std::string text;  ///< what is typed
    DriverKeyPress press;
};

/// One property that a confirmed dialog changed.
struct DialogChange {
    std::string path;                    ///< "dc:title[@de]", "dc:subject"
    std::optional<std::string> oldJson;  ///< JSON, UTF-8; none where there was no value
    std::optional<std::string> newJson;  ///< none where the value was removed
    bool operator==(const DialogChange&) const = default;
};

/// A script for the next dialog. All texts are UTF-8; all calls come from the UI thread.
///
/// A script that ends without pressing OK or Cancel cancels the dialog. A step that cannot be done
/// (no such field, no such view, a file that cannot be written) cancels it too; the last failure's
/// text (<kivcore/LastFailure.h>) then names it, and DoMetadataDialog returns false.
class KIVMETADATAUI_API DialogDriver {
public:
    /// Puts `value` in place of the content of the field of the property at `path`:
    /// "dc:title[@de]" is one language (added where it is missing), "dc:subject[2]" one entry of a
    /// list (one past the last adds an entry), "dc:subject" the whole list, whose value is a JSON
    /// array of texts; "photoshop:City" anything else, as a person would write it. Choices take the
    /// stored value or the label; yes/no takes "true", "false" or an empty text; a rating "0" to
    /// "5". An empty text empties the field. The view that shows the field is opened first.
    DialogDriver& TypeValue(std::string path, std::string value);
    /// Types `text` character by character where the keyboard focus is.
    DialogDriver& TypeText(std::string text);
    DialogDriver& PressKey(const DriverKeyPress& press);
    /// Opens a view by its name ("com.orvan.xmp/iptc" or "iptc") or its label.
    DialogDriver& ChooseView(std::string name);
    /// Lets everything that waits to be drawn be drawn.
    DialogDriver& WaitUntilPainted();
    /// Writes what the dialog's window shows to a PNG file.
    DialogDriver& Screenshot(std::string pngPath);
    DialogDriver& PressOk();
    DialogDriver& PressCancel();

    const std::vector<DriverStep>& Steps() const noexcept { return steps_; }

    /// Leaves `driver`'s steps for the next DoMetadataDialog that opens a window, in place of what
    /// was left before. That dialog uses them up.
    static void Register(DialogDriver driver);
    /// Drops steps that no dialog has used.
    static void Unregister() noexcept;

    /// What the last dialog changed, in the order of its fields; empty after one that was
    /// cancelled. Valid until the next dialog or kivmetadataui::Terminate.
    static const std::vector<DialogChange>& LastChanges() noexcept;

private:
    DialogDriver& Add(DriverStepKind kind, std::string name = {}, std::string text = {});
    std::vector<DriverStep> steps_;
};

}  // namespace kivmetadataui
