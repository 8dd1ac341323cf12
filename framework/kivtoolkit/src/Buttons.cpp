#include "framework/kivtoolkit/src/Buttons.h"

#include <cmath>

namespace kivtoolkit {

namespace ui = kivui::ui;

PushButton::PushButton(Look& look, wxWindow& parent, ui::ThemeColor ground, ui::ButtonKind kind,
                       std::function<void()> clicked)
    : OwnControl(look, parent, AccessibleRole::kButton, ground),
      kind_(kind),
      clicked_(std::move(clicked))
{
}

void PushButton::SetLabelText(const kivcore::UString& label)
{
    if (label_ != label) {
        label_ = label;
        SetWords(label);
        Refresh();
    }
}

wxSize PushButton::WantedSize()
{
    const ui::Size size = ui::MeasureButton(look_.Measuring(), label_, kind_);
    const int sign = icon_.empty() ? 0 : look_.Px(ui::metrics::kSign);
    return {static_cast<int>(size.width) + sign, static_cast<int>(size.height)};
}

void PushButton::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    if (icon_.empty()) {
        ui::DrawButton(drawing, rect, label_, kind_, state_);
        return;
    }
    ui::DrawButton(drawing, rect, {}, kind_, state_);
    const double side = look_.Px(ui::metrics::kSign);
    const double padding = look_.Px(ui::metrics::kSmallButtonPadding);
    ui::Rect label{rect.x + padding, rect.y, rect.width - 2 * padding - side, rect.height};
    // The sign keeps clear of its own edges: so it stands as far from the label as from the end.
    ui::Rect sign{label.x + label.width + look_.Px(2),
                  rect.y + std::floor((rect.height - side) / 2), side, side};
    if (drawing.mirrored) {
        label = ui::MirrorRect(label, rect);
        sign = ui::MirrorRect(sign, rect);
    }
    ui::DrawTextLine(drawing, label_, label, ui::TextRole::kLink, ui::TextAlign::kStart,
                     state_.disabled);
    ui::DrawIcon(drawing, icon_, sign, state_.disabled ? ui::kDisabledText : ui::kLink);
}

void PushButton::Click(const wxPoint&)
{
    clicked_();
}

IconButton::IconButton(Look& look, wxWindow& parent, ui::ThemeColor ground, std::string_view icon,
                       const kivcore::UString& name, std::function<void()> clicked)
    : OwnControl(look, parent, AccessibleRole::kButton, ground),
      icon_(icon),
      clicked_(std::move(clicked))
{
    SetWords(name);
    ShowNameAsTooltip();
}

void IconButton::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    ui::DrawIconButton(drawing, rect, icon_, state_);
}

void IconButton::Click(const wxPoint&)
{
    clicked_();
}

}  // namespace kivtoolkit
