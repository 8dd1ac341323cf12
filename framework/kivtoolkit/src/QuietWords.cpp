#include "framework/kivtoolkit/src/QuietWords.h"

#include "framework/kivtoolkit/src/Texts.h"

#include <wx/tooltip.h>

#include <cmath>

namespace kivtoolkit {

namespace ui = kivui::ui;

QuietWords::QuietWords(Look& look, wxWindow& parent, ui::ThemeColor ground, Shape shape)
    : OwnControl(look, parent, AccessibleRole::kLabel, ground), shape_(shape)
{
    SetTakesFocus(false);
}

void QuietWords::SetText(const kivcore::UString& text, const kivcore::UString& detail)
{
    if (text_ != text) {
        text_ = text;
        Refresh();
    }
    SetWords(text, detail);
    SetToolTip(ToWx(detail));
}

wxSize QuietWords::WantedSize()
{
    const ui::Drawing drawing = look_.Measuring();
    if (shape_ == Shape::kMark) {
        const ui::Size size = ui::MeasureMark(drawing, text_);
        return {static_cast<int>(size.width), static_cast<int>(size.height)};
    }
    const ui::TextStyle style = ui::StyleOfText(drawing, ui::TextRole::kHint);
    return {static_cast<int>(std::ceil(drawing.painter.MeasureText(text_, style).width)),
            look_.LineHeight(ui::TextRole::kHint)};
}

void QuietWords::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    if (shape_ == Shape::kMark) {
        ui::DrawMark(drawing, rect, text_);
    } else {
        ui::DrawTextLine(drawing, text_, rect, ui::TextRole::kHint);
    }
}

}  // namespace kivtoolkit
