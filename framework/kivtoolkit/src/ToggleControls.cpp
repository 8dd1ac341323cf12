#include "framework/kivtoolkit/src/ToggleControls.h"

#include "framework/kivtoolkit/src/Artwork.h"

#include <algorithm>
#include <cmath>

namespace kivtoolkit {

namespace ui = kivui::ui;

StarsControl::StarsControl(Look& look, wxWindow& parent, int count,
                           std::function<void(std::optional<int>)> chosen)
    : OwnControl(look, parent, AccessibleRole::kSlider, ui::kGround),
      count_(count),
      chosen_(std::move(chosen))
{
}

void StarsControl::SetValue(std::optional<int> stars)
{
    if (stars_ != stars) {
        stars_ = stars;
        Refresh();
    }
}

wxSize StarsControl::WantedSize()
{
    const int side = look_.Px(ui::metrics::kStar);
    return {count_ * side, side};
}

wxPoint StarsControl::StarCenter(int index)
{
    const ui::Rect star = ui::StarRect(look_.Measuring(), DrawnRect(), index);
    return {static_cast<int>(star.x + star.width / 2), static_cast<int>(star.y + star.height / 2)};
}

void StarsControl::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    ui::DrawStars(drawing, rect, count_, std::max(0, stars_.value_or(0)), hovered_, state_);
}

int StarsControl::StarAt(const wxPoint& at)
{
    for (int i = 0; i < count_; ++i) {
        if (ToWx(ui::StarRect(look_.Measuring(), DrawnRect(), i)).Contains(at)) {
            return i + 1;
        }
    }
    return 0;
}

void StarsControl::Choose(std::optional<int> stars)
{
    chosen_(stars);
}

void StarsControl::Click(const wxPoint& at)
{
    const int star = StarAt(at);
    if (star > 0) {
        Choose(stars_ == star ? std::nullopt : std::optional<int>(star));
    }
}

void StarsControl::Point(const wxPoint& at, bool inside)
{
    const int star = inside ? StarAt(at) : 0;
    if (star != hovered_) {
        hovered_ = star;
        Refresh();
    }
}

bool StarsControl::PressKey(const wxKeyEvent& key)
{
    const int code = key.GetKeyCode();
    const int now = std::max(0, stars_.value_or(0));
    const int forward = look_.IsMirrored() ? WXK_LEFT : WXK_RIGHT;
    const int back = look_.IsMirrored() ? WXK_RIGHT : WXK_LEFT;
    if (key.HasAnyModifiers()) {
        return false;
    }
    if (code >= '0' && code <= '0' + count_) {
        Choose(code == '0' ? std::nullopt : std::optional<int>(code - '0'));
    } else if (code == forward || code == WXK_UP) {
        Choose(std::min(count_, now + 1));
    } else if (code == back || code == WXK_DOWN) {
        Choose(now > 1 ? std::optional<int>(now - 1) : std::nullopt);
    } else if (code == WXK_DELETE || code == WXK_BACK) {
        Choose(std::nullopt);
    } else {
        // Space and Enter mean no star in particular.
        return code == WXK_SPACE || code == WXK_RETURN || code == WXK_NUMPAD_ENTER;
    }
    return true;
}

CheckControl::CheckControl(Look& look, wxWindow& parent,
                           std::function<void(std::optional<bool>)> chosen)
    : OwnControl(look, parent, AccessibleRole::kCheck, ui::kGround), chosen_(std::move(chosen))
{
}

void CheckControl::SetValue(std::optional<bool> value, const kivcore::UString& label)
{
    value_ = value;
    label_ = label;
    SetAccessibleChecked(*this, value.value_or(false));
    Refresh();
}

wxSize CheckControl::WantedSize()
{
    const ui::Size size = ui::MeasureCheck(look_.Measuring(), label_);
    return {static_cast<int>(std::ceil(size.width)), static_cast<int>(size.height)};
}

void CheckControl::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    ui::CheckValue shown = ui::CheckValue::kMixed;
    if (value_) {
        shown = *value_ ? ui::CheckValue::kOn : ui::CheckValue::kOff;
    }
    ui::DrawCheck(drawing, rect, label_, shown, state_);
}

void CheckControl::Click(const wxPoint&)
{
    if (!value_) {
        chosen_(true);
    } else {
        chosen_(*value_ ? std::optional<bool>(false) : std::nullopt);
    }
}

DropControl::DropControl(Look& look, wxWindow& parent, std::function<void()> opened)
    : OwnControl(look, parent, AccessibleRole::kMenu, ui::kGround), opened_(std::move(opened))
{
}

void DropControl::SetValue(const kivcore::UString& text, const kivcore::UString& placeholder)
{
    text_ = text;
    placeholder_ = placeholder;
    Refresh();
}

void DropControl::SetError(bool hasError)
{
    state_.error = hasError;
    Refresh();
}

void DropControl::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    ui::DrawFieldFrame(drawing, rect, state_);
    ui::Rect inner = ui::FieldTextRect(drawing, rect);
    const double side = look_.Px(ui::metrics::kSign);
    ui::Rect text = inner;
    text.width -= side;
    ui::Rect sign{inner.x + text.width, inner.y, side, inner.height};
    if (drawing.mirrored) {
        text = ui::MirrorRect(text, inner);
        sign = ui::MirrorRect(sign, inner);
    }
    ui::DrawTextLine(drawing, text_.empty() ? placeholder_ : text_, text,
                     text_.empty() ? ui::TextRole::kPlaceholder : ui::TextRole::kBody,
                     ui::TextAlign::kStart, state_.disabled);
    sign.y += std::floor((sign.height - side) / 2);
    sign.height = side;
    ui::DrawIcon(drawing, icons::kChevronDown, sign,
                 state_.disabled ? std::optional(ui::kDisabledText) : std::nullopt);
}

void DropControl::Click(const wxPoint&)
{
    opened_();
}

bool DropControl::PressKey(const wxKeyEvent& key)
{
    const int code = key.GetKeyCode();
    if (code != WXK_DOWN && code != WXK_UP) {
        return false;
    }
    opened_();
    return true;
}

}  // namespace kivtoolkit
