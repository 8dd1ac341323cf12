// The keys that work everywhere in the dialog, and the way of the focus through it.

#include "framework/kivtoolkit/src/DialogWindow.h"
#include "framework/kivtoolkit/src/NativeText.h"

#include <wx/textctrl.h>

#include <algorithm>
#include <array>

namespace kivtoolkit {

namespace ui = kivui::ui;
using kivmetadataui::Field;

void DialogWindow::FocusFirst()
{
    wxWindow* first = nullptr;
    if (const Field* field = model_.FirstFocus(); field != nullptr) {
        if (FieldView* view = pages_->Reveal(*field); view != nullptr) {
            std::vector<wxWindow*> stops;
            view->CollectStops(stops);
            first = stops.empty() ? nullptr : stops.front();
        }
    }
    (first != nullptr ? first : &side_->Search().Control())->SetFocus();
}

void DialogWindow::MoveFocus(bool backwards)
{
    // Reading order: search, list of views, page, Cancel, OK.
    wxWindow* search = &side_->Search().Control();
    wxWindow* list = &side_->List();
    std::array<wxWindow*, 2> buttons = {&bar_->Cancel(), &bar_->Ok()};
    if (!ConfirmingButtonStandsLast()) {
        std::reverse(buttons.begin(), buttons.end());
    }
    std::vector<wxWindow*> before = {search, list};
    std::vector<wxWindow*> behind;
    for (wxWindow* button : buttons) {
        if (button->AcceptsFocus()) {
            behind.push_back(button);
        }
    }
    wxWindow* focus = FindFocus();
    const auto isIn = [&](const std::vector<wxWindow*>& stops) {
        return std::find(stops.begin(), stops.end(), focus) != stops.end();
    };
    if (backwards) {
        std::reverse(before.begin(), before.end());
        std::reverse(behind.begin(), behind.end());
        std::swap(before, behind);
    }
    // From the one side over the page to the other, and around.
    if (isIn(before)) {
        const auto at = std::find(before.begin(), before.end(), focus);
        if (at + 1 != before.end()) {
            (*(at + 1))->SetFocus();
            return;
        }
        focus = nullptr;
    } else if (isIn(behind)) {
        const auto at = std::find(behind.begin(), behind.end(), focus);
        (at + 1 != behind.end() ? *(at + 1) : before.front())->SetFocus();
        return;
    } else if (FieldView* owner = pages_->OwnerOf(focus); owner != nullptr) {
        // From a chip the way goes on from its field.
        std::vector<wxWindow*> stops;
        owner->CollectStops(stops);
        if (!isIn(stops) && !stops.empty()) {
            focus = backwards ? stops.front() : stops.back();
        }
    }
    wxWindow* next = pages_->Current()->NextStop(focus, backwards);
    (next != nullptr ? next : behind.front())->SetFocus();
}

void DialogWindow::TurnViews(bool backwards)
{
    const std::size_t count = model_.Views().size();
    if (count > 0) {
        ShowView((model_.CurrentView() + (backwards ? count - 1 : 1)) % count);
    }
}

void DialogWindow::UndoOrRedo(bool isUndo)
{
    FieldView* view = pages_->OwnerOf(FindFocus());
    if (view == nullptr) {
        return;
    }
    Field& field = view->GetField();
    field.EndEdit();
    if (isUndo) {
        field.Undo();
    } else {
        field.Redo();
    }
}

bool DialogWindow::HandleControlKey(const wxKeyEvent& key)
{
    const int code = key.GetKeyCode();
    if (key.AltDown()) {
        return false;
    }
    if (code >= '1' && code <= '9') {
        ShowView(static_cast<std::size_t>(code - '1'));
        return true;
    }
    switch (code) {
        case WXK_RETURN:
        case WXK_NUMPAD_ENTER:
            Confirm();
            return true;
        case WXK_TAB:
            TurnViews(key.ShiftDown());
            return true;
        case WXK_PAGEDOWN:
        case WXK_PAGEUP:
            TurnViews(code == WXK_PAGEUP);
            return true;
        case 'F':
            side_->Search().SetFocus();
            side_->Search().Control().SelectAll();
            return true;
        case 'Z':
        case 'Y':
            // In the search field there is nothing to undo that is not quicker typed.
            if (pages_->OwnerOf(FindFocus()) == nullptr) {
                return false;
            }
            UndoOrRedo(code == 'Z' && !key.ShiftDown());
            return true;
        default:
            return false;
    }
}

void DialogWindow::HandleKey(wxKeyEvent& key)
{
    wxWindow* focus = FindFocus();
    auto* text = dynamic_cast<wxTextCtrl*>(focus);
    if (text != nullptr && IsComposing(*text)) {
        key.Skip();
        return;
    }
    if (popup_ != nullptr && popup_->PressKey(key)) {
        return;
    }
    const int code = key.GetKeyCode();
    if (key.ControlDown() && HandleControlKey(key)) {
        return;
    }
    const bool isPlain = !key.HasAnyModifiers();
    if (code == WXK_TAB && !key.ControlDown() && !key.AltDown()) {
        MoveFocus(key.ShiftDown());
    } else if (code == WXK_ESCAPE && isPlain) {
        const FieldView* owner = pages_->OwnerOf(focus);
        if (popup_ != nullptr) {
            ClosePopup();
        } else if (side_->IsSearching()) {
            side_->ClearSearch();
        } else if (owner != nullptr && owner->WantsEscape()) {
            key.Skip();
        } else {
            Cancel();
        }
    } else if ((code == WXK_PAGEDOWN || code == WXK_PAGEUP) && isPlain &&
               (text == nullptr || !text->IsMultiLine())) {
        const int height = pages_->Current()->ViewHeight();
        pages_->Current()->ScrollBy(code == WXK_PAGEDOWN ? height : -height);
    } else {
        key.Skip();
    }
}

}  // namespace kivtoolkit
