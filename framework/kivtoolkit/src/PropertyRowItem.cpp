#include "framework/kivtoolkit/src/PropertyRowItem.h"

#include "framework/kivtoolkit/src/NativeText.h"

#include <kivcore/StringConversion.h>

#include <algorithm>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

// Design units.
constexpr double kPathWidth = 220;
constexpr double kGap = 16;
constexpr double kInset = 4;  // above and below the texts

}  // namespace

PropertyRowItem::PropertyRowItem(Look& look, Page& page, const kivmetadataui::PropertyRow& row)
    : look_(look), page_(page), row_(row), path_(kivcore::string::UTF8to16(row.path))
{
}

PropertyRowItem::~PropertyRowItem()
{
    DropWindows();
}

int PropertyRowItem::PathWidth(int width) const
{
    return std::min(width / 2, look_.Px(kPathWidth));
}

int PropertyRowItem::MarkRoom()
{
    if (row_.source.mark.empty()) {
        return 0;
    }
    return static_cast<int>(ui::MeasureMark(look_.Measuring(), row_.source.mark).width) +
           look_.Px(kGap);
}

wxRect PropertyRowItem::ValueRect(const wxRect& area)
{
    const int taken = PathWidth(area.width) + look_.Px(kGap);
    const int markRoom = MarkRoom();
    wxRect value(area.x + taken, area.y + look_.Px(kInset),
                 std::max(1, area.width - taken - markRoom), area.height - 2 * look_.Px(kInset));
    if (look_.IsMirrored()) {
        value.x = area.x + markRoom;
    }
    return value;
}

int PropertyRowItem::Measure(int width)
{
    if (width == measuredWidth_) {
        return measuredHeight_;
    }
    const wxFont& font = look_.Font(ui::TextRole::kBody);
    pathLines_ = WrapText(look_.Font(ui::TextRole::kHint), path_, PathWidth(width));
    const int valueWidth = ValueRect(wxRect(0, 0, width, 0)).width;
    const int value = NativeTextHeight(font, row_.value, valueWidth, kAllLines);
    const int path = static_cast<int>(pathLines_.size()) * look_.LineHeight(ui::TextRole::kHint);
    measuredWidth_ = width;
    measuredHeight_ = std::max(value, path) + 2 * look_.Px(kInset);
    return measuredHeight_;
}

void PropertyRowItem::Place(const wxRect& area)
{
    area_ = area;
    if (!value_) {
        CreateWindows();
    }
    value_->Show(true);
    value_->Place(ValueRect(area));
    if (mark_ != nullptr) {
        const wxSize size = mark_->WantedSize();
        const int x = look_.IsMirrored() ? area.x : area.x + area.width - size.x;
        mark_->Place(wxRect(x, area.y + look_.Px(kInset), size.x, size.y));
    }
}

void PropertyRowItem::CreateWindows()
{
    TextEntry::Actions actions;
    actions.entered = [this] {
        page_.Refresh();
        page_.Reveal(area_);
    };
    actions.left = [this] { page_.Refresh(); };
    actions.wheel = [this](wxMouseEvent& event) { page_.HandleWheel(event); };
    value_ =
        std::make_unique<TextEntry>(look_, page_, TextShape::kReadOnlyLines, std::move(actions));
    value_->Describe(path_, row_.source.detail);
    value_->SetText(row_.value);
    if (!row_.source.mark.empty()) {
        mark_ = new QuietWords(look_, page_, ui::kGround, QuietWords::Shape::kMark);
        mark_->SetText(row_.source.mark, row_.source.detail);
    }
}

void PropertyRowItem::DropWindows()
{
    value_.reset();
    if (mark_ != nullptr) {
        DeleteSoon(mark_);
        mark_ = nullptr;
    }
}

void PropertyRowItem::Hide()
{
    // Far pages of a long list keep no windows.
    if (value_ && !value_->HasFocus()) {
        DropWindows();
    }
}

void PropertyRowItem::Draw(const ui::Drawing& drawing)
{
    if (!value_) {
        return;
    }
    wxRect path(area_.x, area_.y + look_.Px(kInset), PathWidth(area_.width), area_.height);
    if (look_.IsMirrored()) {
        path.x = area_.x + area_.width - path.width;
    }
    DrawLines(drawing, pathLines_, FromWx(path), ui::TextRole::kHint);
    if (value_->HasFocus()) {
        wxRect ring = ValueRect(area_);
        ui::DrawFocusRing(drawing, FromWx(ring.Inflate(look_.Px(2), 0)),
                          ui::metrics::kCornerRadius);
    }
}

void PropertyRowItem::CollectStops(std::vector<wxWindow*>& stops)
{
    if (value_) {
        stops.push_back(&value_->Control());
    }
}

}  // namespace kivtoolkit
