#include "framework/kivtoolkit/src/NavigationList.h"

#include "framework/kivtoolkit/src/Texts.h"

#include <algorithm>

namespace kivtoolkit {

namespace ui = kivui::ui;

NavigationList::NavigationList(Look& look, wxWindow& parent,
                               std::function<void(std::size_t)> chosen)
    : OwnControl(look, parent, AccessibleRole::kList, ui::kRaisedGround), chosen_(std::move(chosen))
{
    SetWords(Text("$$$/Kiv/Dialog/Navigation/Name=Views"));
    BindContained(look_, *this, wxEVT_MOUSEWHEEL, [this](wxMouseEvent& event) {
        SetOffset(offset_ -
                  event.GetWheelRotation() * look_.Px(ui::metrics::kNavigationItemHeight) / 120);
    });
    BindContained(look_, *this, wxEVT_SIZE, [this](wxSizeEvent&) { ShowCurrent(); });
}

void NavigationList::SetItems(std::vector<Item> items, std::size_t current)
{
    if (items_ == items && current_ == current) {
        return;
    }
    const bool moved = current_ != current;
    items_ = std::move(items);
    current_ = current;
    hovered_ = std::min(hovered_, items_.size());
    if (current_ < items_.size()) {
        SetWords(Text("$$$/Kiv/Dialog/Navigation/Name=Views"), items_[current_].name);
    }
    if (moved) {
        ShowCurrent();
    }
    Refresh();
}

void NavigationList::ShowCurrent()
{
    if (current_ < items_.size()) {
        ShowItem(current_);
    }
}

int NavigationList::ItemTop(std::size_t index) const
{
    return static_cast<int>(index) * look_.Px(ui::metrics::kNavigationItemHeight) - offset_;
}

void NavigationList::SetOffset(int offset)
{
    const int height =
        static_cast<int>(items_.size()) * look_.Px(ui::metrics::kNavigationItemHeight);
    offset_ = std::clamp(offset, 0, std::max(0, height - static_cast<int>(DrawnRect().height)));
    Refresh();
}

wxPoint NavigationList::ShowItem(std::size_t index)
{
    const int height = look_.Px(ui::metrics::kNavigationItemHeight);
    const ui::Rect area = DrawnRect();
    const int top = ItemTop(index);
    if (top < 0) {
        SetOffset(offset_ + top);
    } else if (top + height > area.height) {
        SetOffset(offset_ + top + height - static_cast<int>(area.height));
    }
    return {static_cast<int>(area.x + area.width / 2),
            static_cast<int>(area.y) + ItemTop(index) + height / 2};
}

void NavigationList::Draw(const ui::Drawing& drawing, const ui::Rect& rect)
{
    const double height = look_.Px(ui::metrics::kNavigationItemHeight);
    for (std::size_t i = 0; i < items_.size(); ++i) {
        ui::ControlState state;
        state.selected = i == current_;
        state.hovered = state_.hovered && i == hovered_;
        // Where none is current, arrows begin at the first one.
        state.focused = state_.focused && i == (current_ < items_.size() ? current_ : 0);
        state.changed = items_[i].isChanged;
        // The items reach over the whole width of the list, ring room included.
        const ui::Rect item{0, rect.y + ItemTop(i), rect.x * 2 + rect.width, height};
        ui::DrawNavigationItem(drawing, item, items_[i].name, items_[i].icon, state);
    }
}

bool NavigationList::FindItem(const wxPoint& at, std::size_t& index) const
{
    const int inside = at.y - static_cast<int>(DrawnRect().y) + offset_;
    if (inside < 0) {
        return false;
    }
    index = static_cast<std::size_t>(inside / look_.Px(ui::metrics::kNavigationItemHeight));
    return index < items_.size();
}

void NavigationList::Click(const wxPoint& at)
{
    std::size_t index = 0;
    if (FindItem(at, index)) {
        chosen_(index);
    }
}

void NavigationList::Point(const wxPoint& at, bool inside)
{
    std::size_t index = 0;
    if (!inside || !FindItem(at, index)) {
        index = items_.size();
    }
    if (index != hovered_) {
        hovered_ = index;
        Refresh();
    }
}

bool NavigationList::PressKey(const wxKeyEvent& key)
{
    if (items_.empty() || key.HasAnyModifiers()) {
        return false;
    }
    std::size_t next = current_;
    switch (key.GetKeyCode()) {
        case WXK_DOWN:
            next = current_ < items_.size() ? std::min(items_.size() - 1, current_ + 1) : 0;
            break;
        case WXK_UP:
            next = current_ > 0 && current_ < items_.size() ? current_ - 1 : 0;
            break;
        case WXK_HOME:
            next = 0;
            break;
        case WXK_END:
            next = items_.size() - 1;
            break;
        case WXK_SPACE:
        case WXK_RETURN:
        case WXK_NUMPAD_ENTER:
            break;
        default:
            return false;
    }
    if (next != current_) {
        chosen_(next);
    }
    return true;
}

}  // namespace kivtoolkit
