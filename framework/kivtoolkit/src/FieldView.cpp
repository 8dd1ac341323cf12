#include "framework/kivtoolkit/src/FieldView.h"

#include "framework/kivtoolkit/src/NativeText.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <algorithm>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

// Design units.
constexpr double kLabelGap = 4;
constexpr double kDotRoom = 12;
constexpr double kMarkGap = 8;
constexpr double kMarkOverhang = 24;  // into what parts the fields of a row; their dots have room

}  // namespace

FieldView::FieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::Field& field)
    : look_(look), page_(page), popups_(popups), field_(field)
{
}

FieldView::~FieldView()
{
    for (wxWindow* window : windows_) {
        DeleteSoon(window);
    }
}

void FieldView::Drop(wxWindow* window)
{
    std::erase(windows_, window);
    DeleteSoon(window);
}

ui::MessageKind FieldView::Kind() const
{
    return field_.HasError() ? ui::MessageKind::kError : ui::MessageKind::kHint;
}

std::vector<kivcore::UString> FieldView::MessageLines(int width)
{
    const kivcore::UString* text = &field_.Hint();
    if (field_.HasError()) {
        text = &field_.Error();
    } else if (!field_.Explanation().empty()) {
        text = &field_.Explanation();
    }
    if (text->empty()) {
        return {};
    }
    const double indent = ui::MessageIndent(look_.Measuring(), Kind());
    return WrapText(look_.Font(ui::TextRole::kHint), *text, width - static_cast<int>(indent));
}

int FieldView::BodyWidth(int width) const
{
    const double wanted = WantedWidth(field_);
    return wanted > 0 ? std::min(width, look_.Px(wanted)) : width;
}

int FieldView::Measure(int width)
{
    const int gap = look_.Px(kLabelGap);
    int height = look_.LineHeight(ui::TextRole::kLabel) + gap + MeasureBody(BodyWidth(width));
    messages_ = MessageLines(width);
    if (!messages_.empty()) {
        height += gap + static_cast<int>(messages_.size()) * look_.LineHeight(ui::TextRole::kHint);
    }
    return height;
}

void FieldView::Create()
{
    isCreated_ = true;
    CreateBody();
    UpdateBody();
    ShowBody(true);
    if (!field_.IsReadOnly()) {
        revert_ = Keep(new IconButton(look_, page_, ui::kGround, ui::icons::kRevert,
                                      Text("$$$/Kiv/Dialog/Field/Revert=Revert to the saved value"),
                                      [this] { Revert(); }));
        revert_->Hide();
    }
    if (!field_.Source().mark.empty()) {
        mark_ = Keep(new QuietWords(look_, page_, ui::kGround, QuietWords::Shape::kMark));
        mark_->SetText(field_.Source().mark, field_.Source().detail);
        mark_->Hide();
    }
    isShown_ = true;
}

// The revert button is for what was changed, the mark for what was not.
void FieldView::ShowSigns()
{
    if (revert_ != nullptr) {
        revert_->Show(field_.IsChanged() && isShown_);
    }
    if (mark_ != nullptr) {
        mark_->Show(field_.IsDerived() && isShown_);
    }
}

wxRect FieldView::LabelRect()
{
    wxRect label = area_;
    label.height = look_.LineHeight(ui::TextRole::kLabel);
    if (mark_ == nullptr || !field_.IsDerived()) {
        return label;
    }
    const ui::Drawing drawing = look_.Measuring();
    const ui::TextStyle style = ui::StyleOfText(drawing, ui::TextRole::kLabel);
    const int words =
        static_cast<int>(drawing.painter.MeasureText(field_.Label(), style).width) + 1;
    const int room =
        area_.width + look_.Px(kMarkOverhang) - mark_->WantedSize().x - look_.Px(kMarkGap);
    label.width = std::clamp(words, 0, std::max(area_.width / 2, std::min(area_.width, room)));
    label.x = look_.IsMirrored() ? area_.x + area_.width - label.width : area_.x;
    return label;
}

void FieldView::PlaceMark()
{
    const wxRect label = LabelRect();
    const int gap = look_.Px(kMarkGap);
    const wxSize wanted = mark_->WantedSize();
    const int room = area_.width + look_.Px(kMarkOverhang) - label.width - gap;
    const int width = std::clamp(wanted.x, 1, std::max(1, room));
    const int x = look_.IsMirrored() ? label.x - gap - width : label.x + label.width + gap;
    mark_->Place(wxRect(x, label.y, width, std::min(wanted.y, label.height)));
}

void FieldView::Revert()
{
    field_.Revert();
    // The button goes; the field's own part takes the focus.
    std::vector<wxWindow*> stops;
    CollectBodyStops(stops);
    if (!stops.empty()) {
        stops.front()->SetFocus();
    }
}

void FieldView::Place(const wxRect& area)
{
    if (!isCreated_) {
        Create();
    }
    area_ = area;
    const int top = look_.LineHeight(ui::TextRole::kLabel) + look_.Px(kLabelGap);
    const int width = BodyWidth(area.width);
    const int x = look_.IsMirrored() ? area.x + area.width - width : area.x;
    body_ = wxRect(x, area.y + top, width, MeasureBody(width));
    if (!isShown_) {
        isShown_ = true;
        ShowBody(true);
    }
    PlaceBody(body_);
    if (revert_ != nullptr) {
        const int side = look_.Px(ui::metrics::kIconButton);
        const int gap = look_.Px(kLabelGap);
        const int line = look_.Px(ui::metrics::kFieldHeight);
        const wxRect used = UsedArea(body_);
        const int place = look_.IsMirrored() ? used.x - gap - side : used.x + used.width + gap;
        revert_->Place(
            wxRect(place, body_.y + (std::min(line, body_.height) - side) / 2, side, side));
    }
    if (mark_ != nullptr) {
        PlaceMark();
    }
    ShowSigns();
}

void FieldView::Hide()
{
    if (!isShown_ || Owns(wxWindow::FindFocus())) {
        return;
    }
    isShown_ = false;
    ShowBody(false);
    ShowSigns();
}

void FieldView::FinishTyping()
{
    if (isCreated_) {
        FinishBody();
        field_.EndEdit();
    }
}

bool FieldView::Owns(const wxWindow* window)
{
    std::vector<wxWindow*> stops;
    CollectStops(stops);
    return window != nullptr && isCreated_ &&
           (std::find(stops.begin(), stops.end(), window) != stops.end() || OwnsPart(window));
}

void FieldView::CollectStops(std::vector<wxWindow*>& stops)
{
    if (!isCreated_) {
        return;
    }
    CollectBodyStops(stops);
    if (revert_ != nullptr && field_.IsChanged()) {
        stops.push_back(revert_);
    }
}

void FieldView::Update()
{
    if (isCreated_) {
        UpdateBody();
        ShowSigns();
    }
    RequestLayout();
    RefreshAll();
}

void FieldView::RefreshAll()
{
    wxRect area = area_;
    page_.RefreshRect(area.Inflate(look_.Px(kDotRoom * 2)));
}

void FieldView::Draw(const ui::Drawing& drawing)
{
    if (!isShown_) {
        return;
    }
    const wxSize page = page_.GetClientSize();
    ui::DrawTextLine(drawing, field_.Label(), FromWx(LabelRect()), ui::TextRole::kLabel);
    ui::Rect label = FromWx(area_);
    label.height = look_.LineHeight(ui::TextRole::kLabel);
    if (field_.IsChanged()) {
        const double room = look_.Px(kDotRoom);
        const double x = look_.IsMirrored() ? label.x + label.width : label.x - room;
        if (x >= 0 && x < page.x) {
            ui::DrawChangedDot(drawing, {x, label.y, room, label.height});
        }
    }
    DrawBody(drawing, body_);
    ui::Rect line{label.x, static_cast<double>(body_.y + body_.height + look_.Px(kLabelGap)),
                  label.width, static_cast<double>(look_.LineHeight(ui::TextRole::kHint))};
    const double indent = ui::MessageIndent(drawing, Kind());
    for (std::size_t i = 0; i < messages_.size(); ++i) {
        if (i == 0) {
            ui::DrawMessage(drawing, line, messages_[i], Kind());
        } else {
            ui::Rect rest = line;
            rest.width -= indent;
            rest.x += look_.IsMirrored() ? 0 : indent;
            ui::DrawTextLine(drawing, messages_[i], rest,
                             field_.HasError() ? ui::TextRole::kErrorText : ui::TextRole::kHint);
        }
        line.y += line.height;
    }
}

kivcore::UString FieldView::SpokenValue(const kivcore::UString& value) const
{
    const kivcore::UString state = field_.AccessibleState();
    if (value.empty() || state.empty()) {
        return value.empty() ? state : value;
    }
    return value + u", " + state;
}

TextEntry::Actions FieldView::UsualActions()
{
    TextEntry::Actions actions;
    actions.committed = [this] { field_.EndEdit(); };
    actions.entered = [this] {
        RefreshAll();
        page_.Reveal(area_);
    };
    actions.left = [this] {
        field_.EndEdit();
        RefreshAll();
    };
    actions.composing = [this] { RefreshAll(); };
    actions.wheel = [this](wxMouseEvent& event) { page_.HandleWheel(event); };
    return actions;
}

wxRect FieldView::TextRectOf(const wxRect& frame)
{
    return ToWx(ui::FieldTextRect(look_.Measuring(), FromWx(frame)));
}

void FieldView::DrawEntryFrame(const ui::Drawing& drawing, const wxRect& frame,
                               const TextEntry* entry, const wxRect& text)
{
    ui::ControlState state;
    state.focused = entry != nullptr && entry->HasFocus();
    state.error = field_.HasError();
    state.changed = field_.IsChanged();
    ui::DrawFieldFrame(drawing, FromWx(frame), state);
    if (entry == nullptr || !entry->IsBlank()) {
        return;
    }
    ui::Rect line = FromWx(text);
    line.height = std::min<double>(
        line.height, look_.Px(ui::metrics::kFieldHeight) - 2 * look_.Px(ui::metrics::kFrameWidth));
    ui::DrawTextLine(drawing, field_.Placeholder(), line, ui::TextRole::kPlaceholder);
}

}  // namespace kivtoolkit
