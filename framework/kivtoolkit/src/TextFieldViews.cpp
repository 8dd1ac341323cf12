#include "framework/kivtoolkit/src/TextFieldViews.h"

#include "framework/kivtoolkit/src/Artwork.h"
#include "framework/kivtoolkit/src/NativeText.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <kivcore/StringConversion.h>

#include <algorithm>
#include <string>
#include <utility>

namespace kivtoolkit {

namespace ui = kivui::ui;
using kivmetadataui::ChoiceField;
using kivmetadataui::FieldPart;
using kivmetadataui::LanguageField;
using kivmetadataui::LanguageName;
using kivmetadataui::NumberField;

namespace {

// Design units.
constexpr double kUnitGap = 8;
constexpr double kButtonInset = 4;  // a button's window keeps clear of the frame's round corners

}  // namespace

TextFieldView::TextFieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::Field& field,
                             Binding binding)
    : FieldView(look, page, popups, field), binding_(std::move(binding))
{
}

TextEntry* TextFieldView::EntryFor(const FieldPart& part)
{
    return part.kind == FieldPart::Kind::kWhole ? entry_.get() : nullptr;
}

int TextFieldView::MeasureBody(int width)
{
    const int line = look_.Px(ui::metrics::kFieldHeight);
    if (!HasLines()) {
        return line;
    }
    const wxFont& font = look_.Font(ui::TextRole::kBody);
    const wxRect text = TextRectOf(FrameOf(wxRect(0, 0, width, line)));
    const int breadth = text.width - TrailingRoom();
    const kivcore::UString shown = entry_ ? entry_->Text() : binding_.text();
    const int needed = NativeLineCount(font, shown, breadth);
    hasMoreLines_ = needed > binding_.mostLines;
    // One line is as high as a field of one line; each further one adds its own height.
    return line - NativeLinesHeight(font, 1) +
           std::max(NativeTextHeight(font, shown, breadth, binding_.mostLines),
                    NativeLinesHeight(font, binding_.fewestLines));
}

void TextFieldView::CreateBody()
{
    TextEntry::Actions actions = UsualActions();
    actions.typed = [this](const kivcore::UString& text) {
        binding_.setText(text);
        shownText_ = binding_.text();
    };
    actions.committed = [this] {
        GetField().EndEdit();
        entry_->SetText(binding_.text());
    };
    actions.left = [this, left = std::move(actions.left)] {
        left();
        entry_->SetText(binding_.text());
    };
    actions.key = [this](const wxKeyEvent& key) { return PressKey(key); };
    actions.wheel = [this](wxMouseEvent& event) {
        if (hasMoreLines_ && entry_->HasFocus()) {
            event.Skip();  // the text itself scrolls
        } else {
            page_.HandleWheel(event);
        }
    };
    entry_ = std::make_unique<TextEntry>(
        look_, page_, HasLines() ? TextShape::kLines : TextShape::kLine, std::move(actions));
}

wxRect TextFieldView::EntryRect(const wxRect& frame)
{
    wxRect text = TextRectOf(frame);
    const int room = TrailingRoom();
    text.width -= room;
    if (look_.IsMirrored()) {
        text.x += room;
    }
    if (HasLines()) {
        const int line = NativeLinesHeight(look_.Font(ui::TextRole::kBody), 1);
        const int inset = std::max(0, (look_.Px(ui::metrics::kFieldHeight) -
                                       2 * look_.Px(ui::metrics::kFrameWidth) - line) /
                                          2);
        text.y += inset;
        text.height -= inset;
    }
    return text;
}

void TextFieldView::PlaceBody(const wxRect& body)
{
    entry_->Place(EntryRect(FrameOf(body)));
}

void TextFieldView::ShowBody(bool isShown)
{
    entry_->Show(isShown);
}

void TextFieldView::DrawBody(const ui::Drawing& drawing, const wxRect& body)
{
    const wxRect frame = FrameOf(body);
    wxRect text = TextRectOf(frame);
    const int room = TrailingRoom();
    text.width -= room;
    text.x += look_.IsMirrored() ? room : 0;
    DrawEntryFrame(drawing, frame, entry_.get(), text);
}

void TextFieldView::UpdateBody()
{
    entry_->Describe(GetField().AccessibleName(), GetField().AccessibleState());
    // What typing itself brought about is left as it was typed until the edit ends.
    kivcore::UString text = binding_.text();
    if (text != shownText_) {
        entry_->SetText(text);
        shownText_ = std::move(text);
    }
}

void TextFieldView::CollectBodyStops(std::vector<wxWindow*>& stops)
{
    stops.push_back(&entry_->Control());
}

NumberFieldView::NumberFieldView(Look& look, Page& page, PopupHost& popups, NumberField& field)
    : TextFieldView(look, page, popups, field,
                    {[&field] { return field.Text(); },
                     [&field](kivcore::UStringView text) { field.SetText(text); }}),
      number_(field)
{
}

wxRect NumberFieldView::FrameOf(const wxRect& body)
{
    if (number_.Unit().empty()) {
        return body;
    }
    const ui::Drawing drawing = look_.Measuring();
    const auto unit = static_cast<int>(
        drawing.painter.MeasureText(number_.Unit(), ui::StyleOfText(drawing, ui::TextRole::kBody))
            .width +
        1);
    wxRect frame = body;
    frame.width -= std::min(body.width / 2, unit + look_.Px(kUnitGap));
    if (look_.IsMirrored()) {
        frame.x = body.x + body.width - frame.width;
    }
    return frame;
}

void NumberFieldView::DrawBody(const ui::Drawing& drawing, const wxRect& body)
{
    TextFieldView::DrawBody(drawing, body);
    const wxRect frame = FrameOf(body);
    ui::Rect unit = FromWx(body);
    unit.width = body.width - frame.width - look_.Px(kUnitGap);
    unit.x = look_.IsMirrored() ? body.x : body.x + body.width - unit.width;
    ui::DrawTextLine(drawing, number_.Unit(), unit, ui::TextRole::kBody);
}

OpenChoiceFieldView::OpenChoiceFieldView(Look& look, Page& page, PopupHost& popups,
                                         ChoiceField& field)
    : TextFieldView(look, page, popups, field,
                    {[&field] { return field.Text(); },
                     [&field](kivcore::UStringView text) { field.SetText(text); }}),
      choice_(field)
{
}

int OpenChoiceFieldView::TrailingRoom()
{
    return look_.Px(ui::metrics::kIconButton);
}

void OpenChoiceFieldView::CreateBody()
{
    TextFieldView::CreateBody();
    open_ = Keep(new IconButton(look_, page_, ui::kFieldGround, icons::kChevronDown,
                                Text("$$$/Kiv/Dialog/Field/OpenList=Open the list"),
                                [this] { OpenList(); }));
    open_->SetTakesFocus(false);  // the arrow keys open the list too
}

void OpenChoiceFieldView::PlaceBody(const wxRect& body)
{
    TextFieldView::PlaceBody(body);
    const int inset = look_.Px(kButtonInset);
    const int side = body.height - 2 * inset;
    const int x = look_.IsMirrored() ? body.x + inset : body.x + body.width - inset - side;
    open_->Place(wxRect(x, body.y + inset, side, side));
}

void OpenChoiceFieldView::ShowBody(bool isShown)
{
    TextFieldView::ShowBody(isShown);
    open_->Show(isShown);
}

bool OpenChoiceFieldView::PressKey(const wxKeyEvent& key)
{
    if (key.GetKeyCode() != WXK_DOWN || key.HasAnyModifiers()) {
        return false;
    }
    OpenList();
    return true;
}

void OpenChoiceFieldView::OpenList()
{
    std::vector<PopupItem> items;
    for (const kivmetadataui::FieldChoice& choice : choice_.Choices()) {
        items.push_back({choice.label, choice_.Selected() == items.size(), false});
    }
    if (!items.empty()) {
        popups_.OpenPopup(Entry()->Control(), Body(), std::move(items),
                          [this](std::size_t index) { choice_.Select(index); });
    }
}

LanguageFieldView::LanguageFieldView(Look& look, Page& page, PopupHost& popups,
                                     LanguageField& field)
    : TextFieldView(look, page, popups, field,
                    {[&field] { return field.Text(); },
                     [&field](kivcore::UStringView text) { field.SetText(text); },
                     field.IsMultiline() ? 3 : 1, field.IsMultiline() ? 8 : 1}),
      languages_(field)
{
}

TextEntry* LanguageFieldView::EntryFor(const FieldPart& part)
{
    if (part.kind == FieldPart::Kind::kLanguage) {
        languages_.AddLanguage(part.language);  // one at hand is shown
        if (languages_.CurrentLanguage() != part.language) {
            return nullptr;
        }
        Update();
        return Entry();
    }
    return TextFieldView::EntryFor(part);
}

kivcore::UString LanguageFieldView::ButtonText() const
{
    kivcore::UString text = languages_.CurrentLanguageName().label;
    const std::size_t others = languages_.OtherLanguageCount();
    if (others > 0) {
        text += u" +";
        text += kivcore::string::UTF8to16(std::to_string(others));
    }
    return text;
}

void LanguageFieldView::CreateBody()
{
    TextFieldView::CreateBody();
    button_ = Keep(new PushButton(look_, page_, ui::kFieldGround, ui::ButtonKind::kQuiet,
                                  [this] { OpenLanguages(); }));
    button_->SetIcon(icons::kChevronDown);
}

int LanguageFieldView::TrailingRoom()
{
    const ui::Drawing drawing = look_.Measuring();
    return static_cast<int>(
               ui::MeasureButton(drawing, ButtonText(), ui::ButtonKind::kQuiet).width) +
           look_.Px(ui::metrics::kSign);
}

void LanguageFieldView::PlaceBody(const wxRect& body)
{
    TextFieldView::PlaceBody(body);
    const int inset = look_.Px(kButtonInset);
    const int height = look_.Px(ui::metrics::kFieldHeight) - 2 * inset;
    const int width = button_->WantedSize().x;
    const int x = look_.IsMirrored() ? body.x + inset : body.x + body.width - inset - width;
    button_->Place(wxRect(x, body.y + inset, width, height));
}

void LanguageFieldView::ShowBody(bool isShown)
{
    TextFieldView::ShowBody(isShown);
    button_->Show(isShown);
}

void LanguageFieldView::UpdateBody()
{
    TextFieldView::UpdateBody();
    button_->SetLabelText(ButtonText());
    button_->SetWords(Text("$$$/Kiv/Dialog/Field/Language=Language: ^0", ButtonText()));
}

void LanguageFieldView::CollectBodyStops(std::vector<wxWindow*>& stops)
{
    TextFieldView::CollectBodyStops(stops);
    stops.push_back(button_);
}

void LanguageFieldView::OpenLanguages()
{
    // Languages at hand, then what can be added, then the way out of the one shown.
    std::vector<std::string> tags;
    std::vector<PopupItem> items;
    for (const LanguageName& name : languages_.Languages()) {
        tags.push_back(name.tag);
        items.push_back({name.label, name.tag == languages_.CurrentLanguage(), false});
    }
    bool beginsGroup = true;
    for (const LanguageName& name : languages_.AddableLanguages()) {
        tags.push_back(name.tag);
        items.push_back({Text("$$$/Kiv/Dialog/Field/AddLanguage=Add ^0", name.label), false,
                         std::exchange(beginsGroup, false), icons::kAdd});
    }
    const std::size_t removal = items.size();
    items.push_back({Text("$$$/Kiv/Dialog/Field/RemoveLanguage=Remove ^0",
                          languages_.CurrentLanguageName().label),
                     false, true, icons::kRemove});
    popups_.OpenPopup(*button_, button_->VisibleRect(), std::move(items),
                      [this, tags = std::move(tags), removal](std::size_t index) {
                          if (index == removal) {
                              languages_.RemoveLanguage(languages_.CurrentLanguage());
                          } else {
                              languages_.AddLanguage(tags[index]);
                          }
                          Update();
                          Entry()->SetFocus();
                      });
}

int DisplayFieldView::MeasureBody(int width)
{
    const wxFont& font = look_.Font(ui::TextRole::kBody);
    return NativeTextHeight(font, GetField().DisplayText(), width, kAllLines) + look_.Px(4);
}

void DisplayFieldView::CreateBody()
{
    entry_ = std::make_unique<TextEntry>(look_, page_, TextShape::kReadOnlyLines, UsualActions());
}

void DisplayFieldView::PlaceBody(const wxRect& body)
{
    wxRect text = body;
    text.y += look_.Px(2);
    text.height -= look_.Px(2);
    entry_->Place(text);
}

void DisplayFieldView::ShowBody(bool isShown)
{
    entry_->Show(isShown);
}

void DisplayFieldView::DrawBody(const ui::Drawing& drawing, const wxRect& body)
{
    if (entry_->IsBlank()) {
        ui::DrawTextLine(drawing, u"\u2013", FromWx(body), ui::TextRole::kPlaceholder);
    }
    if (entry_->HasFocus()) {
        // No frame, but the keyboard must find its place.
        wxRect ring = body;
        ring.Inflate(look_.Px(2), 0);
        ui::DrawFocusRing(drawing, FromWx(ring), ui::metrics::kCornerRadius);
    }
}

void DisplayFieldView::UpdateBody()
{
    entry_->Describe(GetField().AccessibleName(), GetField().AccessibleState());
    entry_->SetText(GetField().DisplayText());
}

void DisplayFieldView::CollectBodyStops(std::vector<wxWindow*>& stops)
{
    stops.push_back(&entry_->Control());
}

}  // namespace kivtoolkit
