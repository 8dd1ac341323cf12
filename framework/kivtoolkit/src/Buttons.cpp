#include "framework/kivtoolkit/src/Buttons.h"

#include <cmath>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

constexpr double kSmallGlyph = 12;

}  // namespace

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
    const int glyph = glyph_ == ui::Glyph::kNone ? 0 : look_.Px(kSmallGlyph + 4);
    return {static_cast<int>(size.width) + glyph, static_cast<int>(size.height)};
}

void PushButton::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    if (glyph_ == ui::Glyph::kNone) {
        ui::DrawButton(drawing, rect, label_, kind_, state_);
        return;
    }
    ui::DrawButton(drawing, rect, {}, kind_, state_);
    const double glyph = look_.Px(kSmallGlyph);
    const double gap = look_.Px(4);
    const double padding = look_.Px(ui::metrics::kSmallButtonPadding);
    ui::Rect label{rect.x + padding, rect.y, rect.width - 2 * padding - glyph - gap, rect.height};
    ui::Rect sign{label.x + label.width + gap, rect.y + std::floor((rect.height - glyph) / 2),
                  glyph, glyph};
    if (drawing.mirrored) {
        label = ui::MirrorRect(label, rect);
        sign = ui::MirrorRect(sign, rect);
    }
    ui::DrawTextLine(drawing, label_, label, ui::TextRole::kLink, ui::TextAlign::kStart,
                     state_.disabled);
    ui::DrawGlyph(drawing, glyph_, sign, drawing.Color(ui::kLink));
}

void PushButton::Click(const wxPoint&)
{
    clicked_();
}

IconButton::IconButton(Look& look, wxWindow& parent, ui::ThemeColor ground, ui::Glyph glyph,
                       const kivcore::UString& name, std::function<void()> clicked)
    : OwnControl(look, parent, AccessibleRole::kButton, ground),
      glyph_(glyph),
      clicked_(std::move(clicked))
{
    SetWords(name);
    ShowNameAsTooltip();
}

void IconButton::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    ui::DrawIconButton(drawing, rect, glyph_, state_);
}

void IconButton::Click(const wxPoint&)
{
    clicked_();
}

}  // namespace kivtoolkit
