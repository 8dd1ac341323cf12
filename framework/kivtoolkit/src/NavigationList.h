// The list of views at the side: one tab stop, in which arrows move.

#pragma once

#include "framework/kivtoolkit/src/OwnControl.h"

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace kivtoolkit {

class NavigationList : public OwnControl {
public:
    struct Item {
        kivcore::UString name;
        std::string_view icon;  // a name in the icon cache
        bool isChanged = false;
        bool hasErrors = false;
        bool operator==(const Item&) const = default;
    };

    NavigationList(Look& look, wxWindow& parent, std::function<void(std::size_t)> chosen);

    /// `current` behind the last item marks none.
    void SetItems(std::vector<Item> items, std::size_t current);
    /// Brings an item into sight and gives its middle, in the list's pixels.
    wxPoint ShowItem(std::size_t index);

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;
    void Point(const wxPoint& at, bool inside) override;
    bool PressKey(const wxKeyEvent& key) override;

private:
    void ShowCurrent();
    int ItemTop(std::size_t index) const;
    bool FindItem(const wxPoint& at, std::size_t& index) const;
    void SetOffset(int offset);

    std::vector<Item> items_;
    std::size_t current_ = 0;
    std::size_t hovered_ = 0;  // one past the last for none
    int offset_ = 0;
    std::function<void(std::size_t)> chosen_;
};

}  // namespace kivtoolkit
