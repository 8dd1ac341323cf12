// The buttons of the dialog: labelled ones, quiet ones, and those that show only an icon.

#pragma once

#include "framework/kivtoolkit/src/OwnControl.h"

#include <functional>

namespace kivtoolkit {

class PushButton : public OwnControl {
public:
    PushButton(Look& look, wxWindow& parent, kivui::ui::ThemeColor ground,
               kivui::ui::ButtonKind kind, std::function<void()> clicked);

    void SetLabelText(const kivcore::UString& label);
    /// The size that the label needs.
    wxSize WantedSize();
    /// A small sign behind the label: it opens something.
    void SetGlyph(kivui::ui::Glyph glyph) { glyph_ = glyph; }

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;

private:
    kivui::ui::ButtonKind kind_;
    kivui::ui::Glyph glyph_ = kivui::ui::Glyph::kNone;
    kivcore::UString label_;
    std::function<void()> clicked_;
};

class IconButton : public OwnControl {
public:
    IconButton(Look& look, wxWindow& parent, kivui::ui::ThemeColor ground, kivui::ui::Glyph glyph,
               const kivcore::UString& name, std::function<void()> clicked);

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;

private:
    kivui::ui::Glyph glyph_;
    std::function<void()> clicked_;
};

}  // namespace kivtoolkit
