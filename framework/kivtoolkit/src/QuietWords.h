// Words that are looked at and explain themselves in a tooltip: the mark of a value that comes from
// elsewhere, the note on the photo. They take neither clicks nor the focus.

#pragma once

#include "framework/kivtoolkit/src/OwnControl.h"

#include <wx/gdicmn.h>

#include <kivcore/UString.h>

namespace kivtoolkit {

class QuietWords : public OwnControl {
public:
    enum class Shape {
        kMark,  ///< in a thin frame
        kLine,  ///< plain
    };

    QuietWords(Look& look, wxWindow& parent, kivui::ui::ThemeColor ground, Shape shape);

    /// `detail` is the tooltip, and what assistive technology hears besides.
    void SetText(const kivcore::UString& text, const kivcore::UString& detail);
    const kivcore::UString& Text() const noexcept { return text_; }
    wxSize WantedSize();

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint&) override {}

private:
    Shape shape_;
    kivcore::UString text_;
};

}  // namespace kivtoolkit
