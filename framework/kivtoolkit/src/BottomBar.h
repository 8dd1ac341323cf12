// The bar at the bottom of the dialog: the summary and the note on the photo, or a failure's
// message, and the buttons.

#pragma once

#include "framework/kivtoolkit/src/Buttons.h"
#include "framework/kivtoolkit/src/QuietWords.h"

#include <functional>
#include <vector>

#include <wx/window.h>

namespace kivtoolkit {

class BottomBar : public wxWindow {
public:
    BottomBar(Look& look, wxWindow& parent, std::function<void()> confirmed,
              std::function<void()> cancelled);

    /// Shows what the model says now.
    void UpdateWords();
    /// The height that the bar needs for its width: a long message has several lines.
    int WantedHeight(int width);
    PushButton& Ok() { return *ok_; }
    PushButton& Cancel() { return *cancel_; }

    bool AcceptsFocus() const override { return false; }

private:
    void Arrange();
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& area);
    void PlaceNote();
    /// The room for words, not mirrored.
    kivui::ui::Rect WordsRect(const kivui::ui::Rect& area);
    int ButtonsWidth();

    Look& look_;
    PushButton* ok_;  // owned by this window
    PushButton* cancel_;
    QuietWords* note_ = nullptr;  // null where there is none
    std::vector<kivcore::UString> lines_;
};

}  // namespace kivtoolkit
