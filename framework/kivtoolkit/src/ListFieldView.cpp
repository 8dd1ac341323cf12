// The chips stand in a frame like a text field's. Only the entry is a tab stop: Backspace or an
// arrow at its beginning goes to the last chip, arrows move among the chips.

#include "framework/kivtoolkit/src/ListFieldView.h"

#include "framework/kivtoolkit/src/Artwork.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <kivcore/StringConversion.h>

#include <algorithm>
#include <string>
#include <utility>

namespace kivtoolkit {

namespace ui = kivui::ui;
using kivmetadataui::FieldPart;

namespace {

// Design units.
constexpr double kChipGap = 6;
constexpr double kRowGap = 4;
constexpr double kFrameInset = 3;    // between frame and chips: a focus ring fits
constexpr double kEntryWidth = 120;  // what an entry needs at least
constexpr double kEditWidth = 200;
constexpr int kFoldedRows = 3;
constexpr std::size_t kUnfoldStep = 200;  // each is a window

}  // namespace

ChipControl::ChipControl(Look& look, wxWindow& parent, Actions actions)
    : OwnControl(look, parent, AccessibleRole::kListItem, ui::kFieldGround),
      actions_(std::move(actions))
{
}

void ChipControl::SetText(const kivcore::UString& text)
{
    if (text_ != text) {
        text_ = text;
        SetWords(text);
        Refresh();
    }
}

wxSize ChipControl::WantedSize()
{
    const ui::Size size = ui::MeasureChip(look_.Measuring(), text_);
    return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

wxPoint ChipControl::CrossCenter()
{
    const wxRect cross = ToWx(ui::ChipCrossRect(look_.Measuring(), DrawnRect()));
    return {cross.x + cross.width / 2, cross.y + cross.height / 2};
}

void ChipControl::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    ui::DrawChip(drawing, rect, text_, state_, isCrossHovered_);
}

void ChipControl::Click(const wxPoint& at)
{
    const wxRect cross = ToWx(ui::ChipCrossRect(look_.Measuring(), DrawnRect()));
    if (cross.Contains(at)) {
        actions_.removed();
    } else {
        actions_.edited();
    }
}

void ChipControl::Point(const wxPoint& at, bool inside)
{
    const bool hovers =
        inside && ToWx(ui::ChipCrossRect(look_.Measuring(), DrawnRect())).Contains(at);
    if (hovers != isCrossHovered_) {
        isCrossHovered_ = hovers;
        Refresh();
    }
}

bool ChipControl::PressKey(const wxKeyEvent& key)
{
    return actions_.key(key);
}

ListFieldView::ListFieldView(Look& look, Page& page, PopupHost& popups,
                             kivmetadataui::ListField& field)
    : FieldView(look, page, popups, field), list_(field)
{
}

ListFieldView::~ListFieldView() = default;

wxSize ListFieldView::ChipSize(const kivcore::UString& text)
{
    const ui::Size size = ui::MeasureChip(look_.Measuring(), text);
    return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

kivcore::UString ListFieldView::MoreText(std::size_t hidden) const
{
    return Text("$$$/Kiv/Dialog/Field/More=^0 more",
                kivcore::string::UTF8to16(std::to_string(hidden)));
}

ListFieldView::Flow ListFieldView::FlowFor(int width)
{
    const int height = look_.Px(ui::metrics::kChipHeight);
    // Chips need room for their focus rings; without any the list is as high as other fields.
    const int top = list_.Items().empty()
                        ? (look_.Px(ui::metrics::kFieldHeight) - height) / 2
                        : look_.Px(ui::metrics::kFrameWidth) + look_.Px(ui::metrics::kFocusWidth);
    const int step = height + look_.Px(kRowGap);
    const int gap = look_.Px(kChipGap);
    const int left = look_.Px(ui::metrics::kFrameWidth) + look_.Px(kFrameInset);
    const int right = width - left;
    Flow flow;
    int x = left;
    int row = 0;
    int lastRow = 0;  // with a chip in it
    const auto put = [&](int wanted) {
        const int taken = std::clamp(wanted, 1, std::max(1, right - left));
        if (x > left && x + taken > right) {
            x = left;
            ++row;
        }
        const wxRect place(x, top + row * step, taken, height);
        x += taken + gap;
        return place;
    };
    const kivmetadataui::FieldItems& items = list_.Items();
    for (std::size_t i = 0; i < items.size(); ++i) {
        const int wanted = edited_ == i ? look_.Px(kEditWidth) : ChipSize(items[i].text).x;
        const wxRect place = put(wanted);
        if (unfolded_ == 0 ? row >= kFoldedRows : i >= unfolded_) {
            flow.hidden = items.size() - i;
            row = flow.chips.empty() ? 0 : lastRow;
            break;
        }
        lastRow = row;
        flow.chips.push_back(place);
        if (edited_ == i) {
            flow.entry = place;
        }
    }
    if (flow.hidden > 0) {
        x = left;
        ++row;
        const ui::Size more =
            ui::MeasureButton(look_.Measuring(), MoreText(flow.hidden), ui::ButtonKind::kQuiet);
        flow.more = put(static_cast<int>(more.width) + look_.Px(ui::metrics::kSign));
    }
    if (!edited_) {
        flow.entry = put(look_.Px(kEntryWidth));
        flow.entry.width = right - flow.entry.x;
    }
    flow.height = 2 * top + height + row * step;
    return flow;
}

wxRect ListFieldView::OnPage(const wxRect& inBody) const
{
    wxRect rect = inBody;
    if (look_.IsMirrored()) {
        rect.x = Body().width - rect.x - rect.width;
    }
    rect.Offset(Body().GetPosition());
    return rect;
}

int ListFieldView::MeasureBody(int width)
{
    return FlowFor(width).height;
}

void ListFieldView::CreateBody()
{
    TextEntry::Actions actions = UsualActions();
    actions.typed = [this](const kivcore::UString& text) { SplitTyped(text); };
    actions.committed = [this] { EndEntry(); };
    actions.left = [this, left = std::move(actions.left)] {
        EndEntry();
        left();
    };
    actions.key = [this](const wxKeyEvent& key) { return EntryKey(key); };
    entry_ = std::make_unique<TextEntry>(look_, page_, TextShape::kLine, std::move(actions));
    more_ = Keep(new PushButton(look_, page_, ui::kFieldGround, ui::ButtonKind::kQuiet, [this] {
        Unfold(chips_.size() + kUnfoldStep);
        entry_->SetFocus();
    }));
    more_->SetIcon(icons::kChevronDown);
}

void ListFieldView::Unfold(std::size_t count)
{
    unfolded_ = std::max(unfolded_, count);
    Update();
}

std::vector<ChipControl*> ListFieldView::UpdateChips(std::size_t count)
{
    std::vector<ChipControl*> surplus;
    while (chips_.size() > count) {
        surplus.push_back(chips_.back());
        chips_.pop_back();
    }
    while (chips_.size() < count) {
        const std::size_t index = chips_.size();
        ChipControl::Actions actions;
        actions.edited = [this, index] { TakeIntoEdit(index); };
        actions.removed = [this, index] { Remove(index); };
        actions.key = [this, index](const wxKeyEvent& key) { return ChipKey(index, key); };
        chips_.push_back(Keep(new ChipControl(look_, page_, std::move(actions))));
    }
    for (std::size_t i = 0; i < count; ++i) {
        chips_[i]->SetText(list_.Items()[i].text);
    }
    return surplus;
}

void ListFieldView::PlaceBody(const wxRect& body)
{
    const Flow flow = FlowFor(body.width);
    const std::vector<ChipControl*> surplus = UpdateChips(flow.chips.size());
    for (std::size_t i = 0; i < chips_.size() && i < flow.chips.size(); ++i) {
        chips_[i]->Place(OnPage(flow.chips[i]));
        chips_[i]->Show(isShown_ && edited_ != i);
    }
    wxRect text = flow.entry;
    const int indent = look_.Px(edited_ || !list_.Items().empty() ? 4 : 6);
    text.x += indent;
    text.width -= edited_ ? 2 * indent : indent;
    entry_->Place(OnPage(text));
    more_->SetLabelText(MoreText(flow.hidden));
    more_->Place(OnPage(flow.more));
    more_->Show(isShown_ && flow.hidden > 0);
    // Last: a chip that goes moves the focus, which may change the list and place it anew.
    for (ChipControl* chip : surplus) {
        Drop(chip);
    }
}

void ListFieldView::ShowBody(bool isShown)
{
    isShown_ = isShown;
    entry_->Show(isShown);
    for (std::size_t i = 0; i < chips_.size(); ++i) {
        chips_[i]->Show(isShown && edited_ != i);
    }
    more_->Show(isShown && chips_.size() < list_.Count());
}

void ListFieldView::DrawBody(const ui::Drawing& drawing, const wxRect& body)
{
    // The placeholder speaks for the whole list, so it shows only while that is empty.
    const bool isEmpty = list_.Items().empty();
    DrawEntryFrame(drawing, body, entry_.get(), isEmpty ? TextRectOf(body) : wxRect());
    if (edited_ && *edited_ < chips_.size()) {
        const wxRect chip = OnPage(FlowFor(body.width).entry);
        drawing.painter.Frame(FromWx(chip), ui::metrics::kCornerRadius * drawing.scale,
                              look_.Px(ui::metrics::kFrameWidth), drawing.Color(ui::kFocus));
    }
}

void ListFieldView::UpdateBody()
{
    entry_->Describe(list_.AccessibleName(), list_.AccessibleState());
    if (edited_ && *edited_ >= list_.Count()) {
        edited_.reset();
    }
}

void ListFieldView::CollectBodyStops(std::vector<wxWindow*>& stops)
{
    stops.push_back(&entry_->Control());
    if (more_->IsShown()) {
        stops.push_back(more_);
    }
}

bool ListFieldView::OwnsPart(const wxWindow* window) const
{
    return std::find(chips_.begin(), chips_.end(), window) != chips_.end();
}

TextEntry* ListFieldView::EntryFor(const FieldPart& part)
{
    if (part.kind == FieldPart::Kind::kItem) {
        if (part.index >= list_.Count()) {
            return nullptr;
        }
        TakeIntoEdit(part.index);
        return entry_.get();
    }
    EndEntry();
    return part.kind == FieldPart::Kind::kNewItem ? entry_.get() : nullptr;
}

ChipControl* ListFieldView::ChipAt(std::size_t index)
{
    if (index >= list_.Count()) {
        return nullptr;
    }
    EndEntry();
    if (index >= chips_.size()) {
        Unfold(index + 1);
        page_.UpdateLayout();
    }
    return index < chips_.size() ? chips_[index] : nullptr;
}

void ListFieldView::TakeIntoEdit(std::size_t index)
{
    EndEntry();
    if (index >= list_.Count()) {
        return;
    }
    if (index >= chips_.size()) {
        Unfold(index + 1);
    }
    edited_ = index;
    entry_->SetText(list_.Items()[index].text);
    Update();
    page_.UpdateLayout();
    entry_->SetFocus();
    entry_->Control().SelectAll();
}

void ListFieldView::EndEntry()
{
    const kivcore::UString text = entry_->Text();
    entry_->SetText({});
    if (edited_) {
        const std::size_t index = *std::exchange(edited_, std::nullopt);
        list_.Replace(index, text);
        Update();
    } else if (!text.empty()) {
        const bool showedAll = chips_.size() == list_.Count();
        list_.Add(text);
        if (showedAll) {  // what was just typed stays in sight
            Unfold(list_.Count());
        }
    }
    list_.EndEdit();
}

void ListFieldView::SplitTyped(const kivcore::UString& text)
{
    // Several lines at once are several entries: a list that was pasted.
    if (!edited_ && text.find_first_of(u"\n\r") != kivcore::UString::npos) {
        EndEntry();
    }
    RefreshAll();
}

bool ListFieldView::EntryKey(const wxKeyEvent& key)
{
    const int code = key.GetKeyCode();
    const int back = look_.IsMirrored() ? WXK_RIGHT : WXK_LEFT;
    if (edited_) {
        if (code == WXK_ESCAPE) {
            entry_->SetText(list_.Items()[*edited_].text);
            EndEntry();
            return true;
        }
        return false;
    }
    if (key.HasAnyModifiers() || chips_.empty() || !entry_->IsCaretAtStart()) {
        return false;
    }
    if (code == WXK_BACK || code == back) {
        FocusChip(chips_.size() - 1);
        return true;
    }
    return false;
}

void ListFieldView::FocusChip(std::size_t index)
{
    if (index < chips_.size()) {
        chips_[index]->SetFocus();
    } else {
        entry_->SetFocus();
    }
}

void ListFieldView::Remove(std::size_t index)
{
    EndEntry();
    list_.Remove(index);
    list_.EndEdit();
    Update();
    page_.UpdateLayout();
    if (index > 0 && index >= chips_.size()) {
        --index;
    }
    FocusChip(index);
}

bool ListFieldView::ChipKey(std::size_t index, const wxKeyEvent& key)
{
    const int forward = look_.IsMirrored() ? WXK_LEFT : WXK_RIGHT;
    const int back = look_.IsMirrored() ? WXK_RIGHT : WXK_LEFT;
    const int code = key.GetKeyCode();
    const bool moves = key.AltDown() && list_.IsOrdered();
    if (code == WXK_DELETE || code == WXK_BACK) {
        Remove(index);
    } else if (code == back && index > 0) {
        if (moves) {
            list_.Move(index, index - 1);
        }
        FocusChip(index - 1);
    } else if (code == forward) {
        if (moves && index + 1 < list_.Count()) {
            list_.Move(index, index + 1);
        }
        FocusChip(index + 1);
    } else if (code == WXK_RETURN || code == WXK_NUMPAD_ENTER || code == WXK_F2 ||
               code == WXK_SPACE) {
        TakeIntoEdit(index);
    } else {
        return false;
    }
    return true;
}

}  // namespace kivtoolkit
