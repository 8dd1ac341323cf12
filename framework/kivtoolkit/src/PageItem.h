// One piece of a page: a heading, a field, a row. Pieces measure themselves without windows, get
// their windows when they come into sight, and draw what is not a window.

#pragma once

#include "framework/kivtoolkit/src/Look.h"

#include <vector>

#include <wx/gdicmn.h>
#include <wx/window.h>

#include <kivcore/UString.h>

namespace kivtoolkit {

class PageItem {
public:
    virtual ~PageItem() = default;

    /// Height for a width, in pixels.
    virtual int Measure(int width) = 0;
    /// Puts the piece's windows to `area`, in pixels of the page; makes them first where there are
    /// none.
    virtual void Place(const wxRect& area) { area_ = area; }
    /// The piece is out of sight.
    virtual void Hide() {}
    /// Draws into the area of the last Place.
    virtual void Draw(const kivui::ui::Drawing& drawing) = 0;
    /// The windows that take the focus, in reading order; none before the first Place.
    virtual void CollectStops(std::vector<wxWindow*>&) {}

    const wxRect& Area() const noexcept { return area_; }

protected:
    wxRect area_;
};

/// Deletes a window of a piece. Not at once: the call may come from one of the window's own events.
/// Where the page goes first, the window goes with it.
void DeleteSoon(wxWindow* window);

/// A line of text: the view's name, a group's heading.
class HeadingItem : public PageItem {
public:
    HeadingItem(Look& look, kivcore::UString text, kivui::ui::TextRole role)
        : look_(look), text_(std::move(text)), role_(role)
    {
    }
    int Measure(int) override { return look_.LineHeight(role_); }
    void Draw(const kivui::ui::Drawing& drawing) override;

private:
    Look& look_;
    kivcore::UString text_;
    kivui::ui::TextRole role_;
};

/// A quiet text of several lines.
class NoteItem : public PageItem {
public:
    NoteItem(Look& look, kivcore::UString text) : look_(look), text_(std::move(text)) {}
    int Measure(int width) override;
    void Draw(const kivui::ui::Drawing& drawing) override;

private:
    Look& look_;
    kivcore::UString text_;
    std::vector<kivcore::UString> lines_;
};

/// Draws `lines` of `role` one below the other from the top of `area` on.
void DrawLines(const kivui::ui::Drawing& drawing, const std::vector<kivcore::UString>& lines,
               const kivui::ui::Rect& area, kivui::ui::TextRole role);

}  // namespace kivtoolkit
