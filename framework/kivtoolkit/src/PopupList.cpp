#include "framework/kivtoolkit/src/PopupList.h"

#include "framework/kivtoolkit/src/Accessible.h"
#include "framework/kivtoolkit/src/SystemWindow.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

// Design units.
constexpr double kItemHeight = 28;
constexpr double kPadding = 4;
constexpr double kTextIndent = 28;
constexpr double kTextEnd = 16;
constexpr double kSmallestWidth = 120;
constexpr double kGapToAnchor = 3;

}  // namespace

PopupList::PopupList(Look& look, wxWindow& parent, std::vector<PopupItem> items,
                     std::function<void(std::optional<std::size_t>)> closed)
    : look_(look), items_(std::move(items)), closed_(std::move(closed))
{
    Create(&parent, wxID_ANY, wxDefaultPosition, wxSize(1, 1), wxBORDER_NONE);
    DescribeControl(*this, AccessibleRole::kMenu, {}, {});
    BindPainting(look_, *this, ui::kFieldGround,
                 [this](const ui::Drawing& drawing, const ui::Rect& area) { Draw(drawing, area); });
    BindContained(look_, *this, wxEVT_MOTION, [this](wxMouseEvent& event) {
        SetCurrent(ItemAt(event.GetPosition()), /*isRevealed=*/false);
    });
    BindContained(look_, *this, wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
        if (const auto item = ItemAt(event.GetPosition())) {
            closed_(item);
        }
    });
    BindContained(look_, *this, wxEVT_MOUSEWHEEL, [this](wxMouseEvent& event) {
        SetOffset(offset_ - event.GetWheelRotation() * look_.Px(kItemHeight) / 60);
    });
    const auto checked = std::find_if(items_.begin(), items_.end(),
                                      [](const PopupItem& item) { return item.isChecked; });
    if (checked != items_.end()) {
        current_ = static_cast<std::size_t>(checked - items_.begin());
    }
}

int PopupList::ContentHeight() const
{
    return static_cast<int>(items_.size()) * look_.Px(kItemHeight) + 2 * look_.Px(kPadding);
}

void PopupList::PlaceAt(const wxRect& anchor)
{
    const ui::Drawing drawing = look_.Measuring();
    double text = 0;
    for (const PopupItem& item : items_) {
        text = std::max(
            text,
            drawing.painter.MeasureText(item.label, ui::StyleOfText(drawing, ui::TextRole::kBody))
                .width);
    }
    const wxSize room = GetParent()->GetClientSize();
    const int gap = look_.Px(kGapToAnchor);
    const int wanted = static_cast<int>(std::ceil(text)) + look_.Px(kTextIndent + kTextEnd);
    const int width = std::clamp(std::max({wanted, anchor.width, look_.Px(kSmallestWidth)}), 1,
                                 std::max(1, room.x - 2 * gap));
    const int below = room.y - (anchor.y + anchor.height) - 2 * gap;
    const int above = anchor.y - 2 * gap;
    // Whole items, so that none is cut.
    const int item = look_.Px(kItemHeight);
    const int frame = 2 * look_.Px(kPadding);
    const int height = std::min(
        ContentHeight(), std::max(1, (std::max(above, below) - frame) / item) * item + frame);
    const bool isBelow = ContentHeight() <= below || below >= above;
    int x = look_.IsMirrored() ? anchor.x + anchor.width - width : anchor.x;
    x = std::clamp(x, gap, std::max(gap, room.x - width - gap));
    const int y = isBelow ? anchor.y + anchor.height + gap : anchor.y - gap - height;
    SetSize(x, y, width, height);
    LayOverSiblings(*this);
    if (current_) {
        ShowItem(*current_);
    }
}

wxRect PopupList::ItemRect(std::size_t index) const
{
    const int height = look_.Px(kItemHeight);
    const int padding = look_.Px(kPadding);
    return {padding, padding + static_cast<int>(index) * height - offset_,
            GetClientSize().x - 2 * padding, height};
}

std::optional<std::size_t> PopupList::ItemAt(const wxPoint& at) const
{
    const int inside = at.y - look_.Px(kPadding) + offset_;
    if (inside < 0 || !GetClientRect().Contains(at)) {
        return std::nullopt;
    }
    const auto index = static_cast<std::size_t>(inside / look_.Px(kItemHeight));
    return index < items_.size() ? std::optional(index) : std::nullopt;
}

void PopupList::SetOffset(int offset)
{
    offset_ = std::clamp(offset, 0, std::max(0, ContentHeight() - GetClientSize().y));
    Refresh();
}

wxPoint PopupList::ShowItem(std::size_t index)
{
    const int padding = look_.Px(kPadding);
    const wxRect item = ItemRect(index);
    if (item.y < padding) {
        SetOffset(offset_ + item.y - padding);
    } else if (item.y + item.height > GetClientSize().y - padding) {
        SetOffset(offset_ + item.y + item.height - GetClientSize().y + padding);
    }
    const wxRect shown = ItemRect(index);
    return {shown.x + shown.width / 2, shown.y + shown.height / 2};
}

void PopupList::SetCurrent(std::optional<std::size_t> index, bool isRevealed)
{
    if (current_ != index) {
        current_ = index;
        Refresh();
    }
    if (isRevealed && index) {
        ShowItem(*index);
    }
}

bool PopupList::PressKey(const wxKeyEvent& key)
{
    if (key.ControlDown() || key.AltDown()) {
        return false;
    }
    const std::size_t last = items_.size() - 1;
    switch (key.GetKeyCode()) {
        case WXK_DOWN:
            SetCurrent(current_ ? std::min(last, *current_ + 1) : 0, /*isRevealed=*/true);
            return true;
        case WXK_UP:
            SetCurrent(current_ && *current_ > 0 ? *current_ - 1 : 0, /*isRevealed=*/true);
            return true;
        case WXK_HOME:
        case WXK_PAGEUP:
            SetCurrent(0, /*isRevealed=*/true);
            return true;
        case WXK_END:
        case WXK_PAGEDOWN:
            SetCurrent(last, /*isRevealed=*/true);
            return true;
        case WXK_RETURN:
        case WXK_NUMPAD_ENTER:
        case WXK_SPACE:
        case WXK_TAB:
            closed_(current_);
            return true;
        case WXK_ESCAPE:
            closed_(std::nullopt);
            return true;
        default:
            break;
    }
    // A letter goes to the next item that begins with it.
    const wxChar letter = static_cast<wxChar>(wxTolower(key.GetUnicodeKey()));
    if (letter <= WXK_SPACE) {
        return false;
    }
    for (std::size_t step = 1; step <= items_.size(); ++step) {
        const std::size_t index = (current_.value_or(last) + step) % items_.size();
        const wxString label = ToWx(items_[index].label).Lower();
        if (!label.empty() && label[0] == letter) {
            SetCurrent(index, /*isRevealed=*/true);
            break;
        }
    }
    return true;
}

void PopupList::Draw(const ui::Drawing& drawing, const ui::Rect& area)
{
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const wxRect place = ItemRect(i);
        if (place.y + place.height < 0 || place.y > area.height) {
            continue;
        }
        const ui::Rect item = FromWx(place);
        if (current_ == i) {
            drawing.painter.Fill(item, ui::metrics::kCornerRadius * drawing.scale,
                                 drawing.Color(ui::kAccentTint));
        }
        if (items_[i].beginsGroup && i > 0) {
            ui::DrawHairline(drawing, item, ui::HairlineDirection::kHorizontal);
        }
        const double indent = look_.Px(kTextIndent - kPadding);
        const double side = look_.Px(ui::metrics::kSign);
        ui::Rect text{item.x + indent, item.y, item.width - indent - look_.Px(kPadding),
                      item.height};
        ui::Rect sign{item.x + std::floor((indent - side) / 2),
                      item.y + std::floor((item.height - side) / 2), side, side};
        if (drawing.mirrored) {
            text = ui::MirrorRect(text, item);
            sign = ui::MirrorRect(sign, item);
        }
        ui::DrawTextLine(drawing, items_[i].label, text, ui::TextRole::kBody);
        ui::DrawIcon(drawing, items_[i].isChecked ? ui::icons::kCheck : items_[i].icon, sign);
    }
    drawing.painter.Frame(area, 0, look_.Px(ui::metrics::kFrameWidth),
                          drawing.Color(ui::kFieldFrameHover));
}

}  // namespace kivtoolkit
