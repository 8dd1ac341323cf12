// One scrolling column: a heading and the pieces below it. Only what is in sight, or about to be,
// has windows; so a page of any length opens at once and no window grows past the system's limits.

#pragma once

#include "framework/kivtoolkit/src/Look.h"
#include "framework/kivtoolkit/src/PageItem.h"

#include <cstddef>
#include <memory>
#include <vector>

#include <wx/window.h>

namespace kivtoolkit {

/// Where a piece stands in the column.
struct PageSlot {
    std::unique_ptr<PageItem> item;
    double gapBefore = 0;    ///< design units
    double wantedWidth = 0;  ///< design units; 0 for all there is
    bool sharesRow = false;  ///< the next piece stands beside this one
    wxRect place;            ///< in pixels from the top of the column
};

class Page : public wxWindow {
public:
    Page(Look& look, wxWindow& parent);
    ~Page() override;

    /// Takes the place of all pieces.
    void SetSlots(std::vector<PageSlot> slots);
    const std::vector<PageSlot>& Slots() const noexcept { return slots_; }

    /// The height of a piece may have changed: the page is laid out anew by the next UpdateLayout.
    void RequestLayout() noexcept { needsLayout_ = true; }
    void UpdateLayout();

    void ScrollBy(int pixels);
    void ScrollToTop();
    /// Scrolls as little as needed to show `area`, in pixels of the page.
    void Reveal(const wxRect& area);
    /// Brings a piece into sight and gives it its windows.
    void RevealItem(std::size_t index);
    /// A screen's height, for the page keys.
    int ViewHeight() const { return GetClientSize().y; }

    /// The window behind `current` (null: the first one) that takes the focus; null at the end.
    /// Brings it into sight.
    wxWindow* NextStop(const wxWindow* current, bool backwards);
    void HandleWheel(wxMouseEvent& event);

    bool AcceptsFocus() const override { return false; }

private:
    int Column(int& width) const;
    void PlaceItems();
    void Draw(const kivui::ui::Drawing& drawing);
    void LayOutRow(std::size_t first, std::size_t end, int left, int width, int& y);
    wxRect ThumbRect() const;
    int HighestOffset() const;
    void SetOffset(int offset);
    std::vector<wxWindow*> StopsOf(std::size_t index, bool backwards) const;
    wxRect PlaceOf(const PageSlot& slot) const;
    void PressBar(const wxPoint& at);

    Look& look_;
    std::vector<PageSlot> slots_;
    int contentHeight_ = 0;
    int offset_ = 0;
    bool needsLayout_ = true;
    bool isDragging_ = false;
    bool isBarHovered_ = false;
    int dragStart_ = 0;
    int dragOffset_ = 0;
    int wheelRest_ = 0;
};

}  // namespace kivtoolkit
