#include "framework/kivtoolkit/src/TextEntry.h"

#include "framework/kivtoolkit/src/Accessible.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <wx/app.h>
#include <wx/weakref.h>

namespace kivtoolkit {

namespace ui = kivui::ui;

TextEntry::TextEntry(Look& look, wxWindow& parent, TextShape shape, Actions actions)
    : look_(look),
      core_(std::make_shared<Core>()),
      control_(NewNativeText(parent, shape, look.IsMirrored()))
{
    core_->shape = shape;
    core_->actions = std::move(actions);
    core_->control = control_;
    const ui::ThemeColor ground =
        shape == TextShape::kReadOnlyLines ? ui::kGround : ui::kFieldGround;
    StyleNativeText(*control_, {ui::StyleOfText(look.Measuring(), ui::TextRole::kBody),
                                look.Theme().Color(ground), look.Theme().Color(ui::kSelection),
                                look.Theme().Color(ui::kSelectionText)});
    BindAll();
}

TextEntry::~TextEntry()
{
    core_->actions = {};
    control_->Hide();
    wxTheApp->CallAfter([control = wxWeakRef<wxTextCtrl>(control_)] {
        if (control) {
            control->Destroy();
        }
    });
}

void TextEntry::Core::PressKey(wxKeyEvent& event)
{
    if (IsComposing(*control)) {
        event.Skip();
        return;
    }
    if (actions.key && actions.key(event)) {
        return;
    }
    const int key = event.GetKeyCode();
    if (shape == TextShape::kLine && (key == WXK_RETURN || key == WXK_NUMPAD_ENTER)) {
        if (actions.committed) {
            actions.committed();
        }
        return;
    }
    event.Skip();
}

void TextEntry::BindAll()
{
    BindContained(look_, *control_, wxEVT_TEXT, [core = core_](wxCommandEvent&) {
        if (core->actions.typed) {
            core->actions.typed(FromWx(core->control->GetValue()));
        }
    });
    BindContained(look_, *control_, wxEVT_SET_FOCUS, [core = core_](wxFocusEvent& event) {
        event.Skip();
        if (core->actions.entered) {
            core->actions.entered();
        }
    });
    BindContained(look_, *control_, wxEVT_KILL_FOCUS, [core = core_](wxFocusEvent& event) {
        event.Skip();
        if (core->actions.left) {
            core->actions.left();
        }
    });
    BindContained(look_, *control_, wxEVT_KEY_DOWN,
                  [core = core_](wxKeyEvent& event) { core->PressKey(event); });
    BindContained(look_, *control_, wxEVT_MOUSEWHEEL, [core = core_](wxMouseEvent& event) {
        if (core->actions.wheel) {
            core->actions.wheel(event);
        } else {
            event.Skip();
        }
    });
    WatchComposing(*control_, [look = &look_, core = core_] {
        look->Run([&] {
            if (core->actions.composing) {
                core->actions.composing();
            }
        });
    });
}

void TextEntry::Place(const wxRect& rect)
{
    const wxRect place = NativeTextRect(*control_, rect);
    if (control_->GetRect() != place) {
        control_->SetSize(place);
    }
}

void TextEntry::Show(bool isShown)
{
    if (control_->IsShown() != isShown) {
        control_->Show(isShown);
    }
}

void TextEntry::SetText(kivcore::UStringView text)
{
    if (Text() != text) {
        control_->ChangeValue(ToWx(text));
        // What is only read begins at its beginning.
        PutCaret(/*atEnd=*/core_->shape != TextShape::kReadOnlyLines);
    }
}

kivcore::UString TextEntry::Text() const
{
    return FromWx(control_->GetValue());
}

bool TextEntry::HasFocus() const
{
    return wxWindow::FindFocus() == control_;
}

void TextEntry::SetFocus()
{
    control_->SetFocus();
}

void TextEntry::PutCaret(bool atEnd)
{
    if (atEnd) {
        control_->SetInsertionPointEnd();
    } else {
        control_->SetInsertionPoint(0);
    }
}

bool TextEntry::IsCaretAtStart() const
{
    long from = 0;
    long to = 0;
    control_->GetSelection(&from, &to);
    return from == to && control_->GetInsertionPoint() == 0;
}

bool TextEntry::IsBlank() const
{
    return control_->IsEmpty() && !IsComposing(*control_);
}

void TextEntry::Describe(const kivcore::UString& name, const kivcore::UString& description)
{
    DescribeControl(*control_, AccessibleRole::kText, name, description);
}

}  // namespace kivtoolkit
