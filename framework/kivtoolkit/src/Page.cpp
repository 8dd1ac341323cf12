// Layout runs left to right and is mirrored at the very end, when pieces are placed.

#include "framework/kivtoolkit/src/Page.h"

#include <algorithm>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

// Design units.
constexpr double kMargin = 24;
constexpr double kTrailing = 40;  // room for a revert button and the scroll bar
constexpr double kTop = 20;
constexpr double kBottom = 24;
constexpr double kWidest = 680;
constexpr double kRowGap = 44;  // the first piece's revert button and the second one's dot
constexpr double kBarWidth = 6;
constexpr double kBarMargin = 2;
constexpr double kShortestThumb = 24;
constexpr double kWheelStep = 60;
constexpr int kWheelUnit = 120;

}  // namespace

Page::Page(Look& look, wxWindow& parent) : look_(look)
{
    Create(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_NONE);
    BindPainting(look_, *this, ui::kGround,
                 [this](const ui::Drawing& drawing, const ui::Rect&) { Draw(drawing); });
    BindContained(look_, *this, wxEVT_SIZE, [this](wxSizeEvent&) {
        RequestLayout();
        UpdateLayout();
    });
    BindContained(look_, *this, wxEVT_MOUSEWHEEL,
                  [this](wxMouseEvent& event) { HandleWheel(event); });
    const auto press = [this](wxMouseEvent& event) { PressBar(event.GetPosition()); };
    BindContained(look_, *this, wxEVT_LEFT_DOWN, press);
    BindContained(look_, *this, wxEVT_LEFT_DCLICK, press);
    BindContained(look_, *this, wxEVT_LEFT_UP, [this](wxMouseEvent&) {
        if (isDragging_) {
            isDragging_ = false;
            ReleaseMouse();
        }
    });
    BindContained(look_, *this, wxEVT_MOUSE_CAPTURE_LOST,
                  [this](wxMouseCaptureLostEvent&) { isDragging_ = false; });
    BindContained(look_, *this, wxEVT_MOTION, [this](wxMouseEvent& event) {
        if (isDragging_) {
            const int track = std::max(1, ViewHeight() - ThumbRect().height);
            SetOffset(dragOffset_ + (event.GetY() - dragStart_) * HighestOffset() / track);
            return;
        }
        const bool hovers = ThumbRect().Contains(event.GetPosition());
        if (hovers != isBarHovered_) {
            isBarHovered_ = hovers;
            Refresh();
        }
    });
    BindContained(look_, *this, wxEVT_LEAVE_WINDOW, [this](wxMouseEvent&) {
        isBarHovered_ = false;
        Refresh();
    });
}

Page::~Page() = default;

void Page::SetSlots(std::vector<PageSlot> slots)
{
    slots_ = std::move(slots);
    offset_ = 0;
    RequestLayout();
    UpdateLayout();
}

int Page::Column(int& width) const
{
    const int left = look_.Px(kMargin);
    width = std::clamp(GetClientSize().x - left - look_.Px(kTrailing), 1, look_.Px(kWidest));
    return left;
}

void Page::LayOutRow(std::size_t first, std::size_t end, int left, int width, int& y)
{
    const int gap = look_.Px(kRowGap);
    int fixed = gap * static_cast<int>(end - first - 1);
    int flexible = 0;
    for (std::size_t i = first; i < end; ++i) {
        fixed += slots_[i].wantedWidth > 0 ? look_.Px(slots_[i].wantedWidth) : 0;
        flexible += slots_[i].wantedWidth > 0 ? 0 : 1;
    }
    const int share = flexible > 0 ? std::max(1, (width - fixed) / flexible) : 0;
    int x = left;
    int height = 0;
    for (std::size_t i = first; i < end; ++i) {
        PageSlot& slot = slots_[i];
        int wanted = slot.wantedWidth > 0 ? look_.Px(slot.wantedWidth) : share;
        wanted = std::clamp(wanted, 1, std::max(1, left + width - x));
        slot.place = wxRect(x, y, wanted, slot.item->Measure(wanted));
        height = std::max(height, slot.place.height);
        x += wanted + gap;
    }
    y += height;
}

void Page::UpdateLayout()
{
    if (!needsLayout_ || GetClientSize().x <= 1) {
        return;
    }
    needsLayout_ = false;
    int width = 0;
    const int left = Column(width);
    int y = look_.Px(kTop);
    for (std::size_t first = 0; first < slots_.size();) {
        std::size_t end = first + 1;
        while (end < slots_.size() && slots_[end - 1].sharesRow) {
            ++end;
        }
        y += look_.Px(slots_[first].gapBefore);
        LayOutRow(first, end, left, width, y);
        first = end;
    }
    contentHeight_ = y + look_.Px(kBottom);
    offset_ = std::clamp(offset_, 0, HighestOffset());
    PlaceItems();
    Refresh();
}

int Page::HighestOffset() const
{
    return std::max(0, contentHeight_ - GetClientSize().y);
}

wxRect Page::PlaceOf(const PageSlot& slot) const
{
    wxRect area = slot.place;
    area.y -= offset_;
    if (look_.IsMirrored()) {
        area.x = GetClientSize().x - area.x - area.width;
    }
    return area;
}

void Page::PlaceItems()
{
    const wxSize client = GetClientSize();
    // Half a screen more on either side, so that scrolling finds windows that are there already.
    const wxRect near(0, -client.y / 2, client.x, client.y * 2);
    for (PageSlot& slot : slots_) {
        const wxRect area = PlaceOf(slot);
        if (area.Intersects(near)) {
            slot.item->Place(area);
        } else {
            slot.item->Hide();
        }
    }
}

void Page::Draw(const ui::Drawing& drawing)
{
    for (const PageSlot& slot : slots_) {
        // Focus rings, dots and buttons reach a little out of a piece's own area.
        wxRect area = slot.place;
        area.y -= offset_;
        area.Inflate(GetClientSize().x, look_.Px(8));
        if (area.Intersects(look_.DrawnPart())) {
            slot.item->Draw(drawing);
        }
    }
    const wxRect thumb = ThumbRect();
    if (!thumb.IsEmpty()) {
        const bool strong = isDragging_ || isBarHovered_;
        drawing.painter.Fill(FromWx(thumb), thumb.width / 2.0,
                             drawing.Color(strong ? ui::kFieldFrameHover : ui::kFieldFrame));
    }
}

wxRect Page::ThumbRect() const
{
    const wxSize client = GetClientSize();
    if (HighestOffset() == 0) {
        return {};
    }
    const int margin = look_.Px(kBarMargin);
    const int width = look_.Px(kBarWidth);
    const int track = client.y - 2 * margin;
    const int height = std::clamp(
        static_cast<int>(static_cast<long long>(track) * client.y / std::max(1, contentHeight_)),
        std::min(track, look_.Px(kShortestThumb)), std::max(1, track));
    const int y = margin + static_cast<int>(static_cast<long long>(track - height) * offset_ /
                                            HighestOffset());
    const int x = look_.IsMirrored() ? margin : client.x - margin - width;
    return {x, y, width, height};
}

void Page::PressBar(const wxPoint& at)
{
    wxRect thumb = ThumbRect();
    if (thumb.IsEmpty()) {
        return;
    }
    thumb.Inflate(look_.Px(kBarMargin * 2), 0);
    if (at.x < thumb.x || at.x >= thumb.x + thumb.width) {
        return;
    }
    if (thumb.Contains(at)) {
        isDragging_ = true;
        dragStart_ = at.y;
        dragOffset_ = offset_;
        CaptureMouse();
    } else {
        ScrollBy(at.y < thumb.y ? -ViewHeight() : ViewHeight());
    }
}

void Page::SetOffset(int offset)
{
    const int next = std::clamp(offset, 0, HighestOffset());
    if (next != offset_) {
        offset_ = next;
        PlaceItems();
        Refresh();
    }
}

void Page::ScrollBy(int pixels)
{
    SetOffset(offset_ + pixels);
}

void Page::ScrollToTop()
{
    SetOffset(0);
}

void Page::HandleWheel(wxMouseEvent& event)
{
    if (event.GetWheelAxis() != wxMOUSE_WHEEL_VERTICAL) {
        return;
    }
    // Fine wheels send parts of a step.
    wheelRest_ += event.GetWheelRotation() * look_.Px(kWheelStep);
    const int pixels = wheelRest_ / kWheelUnit;
    wheelRest_ -= pixels * kWheelUnit;
    ScrollBy(-pixels);
}

void Page::Reveal(const wxRect& area)
{
    const int margin = look_.Px(kMargin);
    const int height = ViewHeight();
    if (area.y < margin) {
        ScrollBy(area.y - margin);
    } else if (area.y + area.height > height - margin) {
        // A piece higher than the page shows its beginning.
        ScrollBy(std::min(area.y + area.height - height + margin, area.y - margin));
    }
}

void Page::RevealItem(std::size_t index)
{
    UpdateLayout();
    wxRect area = slots_[index].place;
    area.y -= offset_;
    Reveal(area);
}

std::vector<wxWindow*> Page::StopsOf(std::size_t index, bool backwards) const
{
    std::vector<wxWindow*> stops;
    slots_[index].item->CollectStops(stops);
    if (backwards) {
        std::reverse(stops.begin(), stops.end());
    }
    return stops;
}

wxWindow* Page::NextStop(const wxWindow* current, bool backwards)
{
    UpdateLayout();
    const std::size_t count = slots_.size();
    const auto indexOf = [&](std::size_t step) { return backwards ? count - 1 - step : step; };
    std::size_t step = 0;
    if (current != nullptr) {
        for (; step < count; ++step) {
            const std::vector<wxWindow*> stops = StopsOf(indexOf(step), backwards);
            const auto found = std::find(stops.begin(), stops.end(), current);
            if (found != stops.end()) {
                if (found + 1 != stops.end()) {
                    return *(found + 1);
                }
                ++step;
                break;
            }
        }
    }
    for (; step < count; ++step) {
        const std::size_t index = indexOf(step);
        slots_[index].item->Place(PlaceOf(slots_[index]));
        const std::vector<wxWindow*> stops = StopsOf(index, backwards);
        if (!stops.empty()) {
            RevealItem(index);
            return stops.front();
        }
    }
    return nullptr;
}

}  // namespace kivtoolkit
