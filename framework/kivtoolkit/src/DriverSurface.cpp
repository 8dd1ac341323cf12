#include "framework/kivtoolkit/src/DriverSurface.h"

#include "framework/kivtoolkit/src/DialogWindow.h"
#include "framework/kivtoolkit/src/ListFieldView.h"
#include "framework/kivtoolkit/src/Texts.h"
#include "framework/kivtoolkit/src/ValueFieldViews.h"

#include <kivcore/StringConversion.h>

#include <stdexcept>

namespace kivtoolkit {

using kivmetadataui::DriverKey;
using kivmetadataui::DriverKeyPress;
using kivmetadataui::Field;
using kivmetadataui::FieldKind;
using kivmetadataui::FieldPart;

namespace {

constexpr int kYesNoStates = 3;

// The characters of UTF-16 text; a lone surrogate is U+FFFD.
std::u32string Characters(const kivcore::UString& text)
{
    std::u32string characters;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
        const bool isLow = unit >= 0xDC00 && unit < 0xE000;
        if (isHigh && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            characters +=
                static_cast<char32_t>(0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00));
            ++i;
        } else {
            characters += isHigh || isLow ? U'\uFFFD' : static_cast<char32_t>(unit);
        }
    }
    return characters;
}

}  // namespace

void DriverSurface::Refuse(const Field& field)
{
    throw std::runtime_error(
        Utf8Text("$$$/Kiv/Dialog/Failure/NotTypable=The field cannot be filled in: ^0",
                 kivcore::string::UTF8to16(field.Path())));
}

FieldView& DriverSurface::Find(Field& field)
{
    FieldView* view = window_.Pages().Reveal(field);
    if (view == nullptr) {
        Refuse(field);
    }
    return *view;
}

void DriverSurface::Press(DriverKey key)
{
    DriverKeyPress press;
    press.key = key;
    PressKey(press);
}

void DriverSurface::PressCharacter(char32_t character)
{
    TypeCharacterIn(window_, character);
}

void DriverSurface::ChooseView(std::size_t view)
{
    NavigationList& list = window_.Side().List();
    ClickAt(list, list.ShowItem(view));
    HandleWaitingEvents();
}

void DriverSurface::TypeCharacters(const kivcore::UString& text, bool hasLines)
{
    for (const char32_t character : Characters(text)) {
        // Enter would end the edit of a field of one line.
        PressCharacter(character == U'\n' && !hasLines ? U' ' : character);
    }
}

void DriverSurface::TypeInto(Field& field, const FieldPart& part, const kivcore::UString& text)
{
    if (field.IsReadOnly()) {
        Refuse(field);
    }
    TextEntry* entry = Find(field).EntryFor(part);
    if (entry == nullptr) {
        Refuse(field);
    }
    entry->SetFocus();
    HandleWaitingEvents();
    if (!entry->Text().empty()) {
        DriverKeyPress all;
        all.character = U'a';
        all.control = true;
        PressKey(all);
        if (text.empty()) {
            Press(DriverKey::kDelete);
        }
    }
    TypeCharacters(text, entry->Control().IsMultiLine());
    if (part.kind == FieldPart::Kind::kItem || part.kind == FieldPart::Kind::kNewItem) {
        Press(DriverKey::kEnter);
    }
    HandleWaitingEvents();
}

void DriverSurface::RemoveItem(Field& field, std::size_t index)
{
    auto* list = dynamic_cast<ListFieldView*>(&Find(field));
    ChipControl* chip = list != nullptr ? list->ChipAt(index) : nullptr;
    if (chip == nullptr) {
        Refuse(field);
    }
    HandleWaitingEvents();
    ClickAt(*chip, chip->CrossCenter());
    HandleWaitingEvents();
}

void DriverSurface::PickFromPopup(std::size_t index)
{
    HandleWaitingEvents();
    PopupList* popup = window_.Popup();
    if (popup == nullptr || index >= popup->Count()) {
        throw std::runtime_error("the list of choices did not open");
    }
    ClickAt(*popup, popup->ShowItem(index));
    HandleWaitingEvents();
}

void DriverSurface::Choose(Field& field, std::optional<std::size_t> index)
{
    FieldView& view = Find(field);
    HandleWaitingEvents();
    std::vector<wxWindow*> stops;
    view.CollectStops(stops);
    if (stops.empty() || field.IsReadOnly()) {
        Refuse(field);
    }
    auto* control = dynamic_cast<OwnControl*>(stops.front());
    const auto middle = [](const OwnControl& of) {
        const wxSize size = of.GetClientSize();
        return wxPoint(size.x / 2, size.y / 2);
    };
    if (auto* rating = dynamic_cast<RatingFieldView*>(&view); rating != nullptr) {
        if (index.value_or(0) > 0) {
            const auto& now = static_cast<kivmetadataui::RatingField&>(field).Stars();
            if (now != static_cast<int>(*index)) {  // a second click would take it out
                ClickAt(*rating->Stars(),
                        rating->Stars()->StarCenter(static_cast<int>(*index) - 1));
            }
        } else {
            rating->Stars()->SetFocus();
            Press(DriverKey::kDelete);
        }
    } else if (auto* yesNo = dynamic_cast<YesNoFieldView*>(&view); yesNo != nullptr) {
        const auto& answer = static_cast<kivmetadataui::YesNoField&>(field);
        const bool isYes = index.value_or(0) != 0;
        const auto isDone = [&] {
            const std::optional<bool> value = answer.Value();
            return value.has_value() == index.has_value() && value.value_or(false) == isYes;
        };
        for (int click = 0; click < kYesNoStates && !isDone(); ++click) {
            ClickAt(*control, middle(*control));
        }
    } else if (field.Kind() == FieldKind::kChoice && control != nullptr) {
        ClickAt(*control, middle(*control));
        PickFromPopup(index ? *index + 1 : 0);
    } else if (field.Kind() == FieldKind::kChoice && index) {
        stops.front()->SetFocus();
        Press(DriverKey::kDown);
        PickFromPopup(*index);
    } else if (field.Kind() == FieldKind::kChoice) {
        TypeInto(field, FieldPart{}, {});
    } else {
        Refuse(field);
    }
    HandleWaitingEvents();
}

void DriverSurface::TypeText(const kivcore::UString& text)
{
    TypeCharacters(text, /*hasLines=*/true);
    HandleWaitingEvents();
}

void DriverSurface::PressKey(const DriverKeyPress& press)
{
    PressKeyIn(window_, press);
    HandleWaitingEvents();
}

void DriverSurface::Screenshot(const std::string& path)
{
    WriteScreenshot(window_, path);
}

void DriverSurface::PressButton(kivmetadataui::DialogButton button)
{
    PushButton& pressed =
        button == kivmetadataui::DialogButton::kOk ? window_.Bar().Ok() : window_.Bar().Cancel();
    if (pressed.IsDisabled()) {
        throw std::runtime_error(Utf8Text(
            "$$$/Kiv/Dialog/Failure/ButtonOff=The button cannot be pressed: ^0", pressed.Words()));
    }
    const wxSize size = pressed.GetClientSize();
    ClickAt(pressed, wxPoint(size.x / 2, size.y / 2));
}

}  // namespace kivtoolkit
