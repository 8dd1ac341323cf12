// A native text field without a frame of its own. The native control does the typing (input
// methods, right-to-left, clipboard, screen readers); the frame around it is drawn by its page.

#pragma once

#include "framework/kivtoolkit/src/Look.h"
#include "framework/kivtoolkit/src/NativeText.h"

#include <functional>
#include <memory>

#include <wx/textctrl.h>

#include <kivcore/UString.h>

namespace kivtoolkit {

class TextEntry {
public:
    /// What happens to the field; each may be empty.
    struct Actions {
        std::function<void(const kivcore::UString& text)> typed;
        std::function<void()> committed;  ///< Enter in one line
        std::function<void()> entered;    ///< the focus came
        std::function<void()> left;       ///< the focus went, so the edit is over
        std::function<void()> composing;  ///< an input method began or ended
        /// Keys before the field sees them; true if used.
        std::function<bool(const wxKeyEvent& key)> key;
        std::function<void(wxMouseEvent& event)> wheel;
    };

    TextEntry(Look& look, wxWindow& parent, TextShape shape, Actions actions);
    TextEntry(const TextEntry&) = delete;
    TextEntry& operator=(const TextEntry&) = delete;
    /// Takes the native control out of sight and has it deleted soon: the call may come from one of
    /// its own events.
    ~TextEntry();

    /// `rect` is where the text stands, in pixels of the parent; the text of one line is in the
    /// middle of its height.
    void Place(const wxRect& rect);
    void Show(bool isShown);
    /// Replaces the text where it differs; not an edit.
    void SetText(kivcore::UStringView text);
    kivcore::UString Text() const;
    bool HasFocus() const;
    void SetFocus();
    /// Puts the caret behind the last character, or before the first one.
    void PutCaret(bool atEnd);
    bool IsCaretAtStart() const;
    /// True while there is nothing to see in the field.
    bool IsBlank() const;
    void Describe(const kivcore::UString& name, const kivcore::UString& description);

    wxTextCtrl& Control() { return *control_; }

private:
    // The native control may live a little longer than the entry; its handlers hold this.
    struct Core {
        TextShape shape = TextShape::kLine;
        Actions actions;  // empty once the entry is gone
        wxTextCtrl* control = nullptr;

        void PressKey(wxKeyEvent& event);
    };

    void BindAll();

    Look& look_;
    std::shared_ptr<Core> core_;
    wxTextCtrl* control_;  // owned by its parent
};

}  // namespace kivtoolkit
