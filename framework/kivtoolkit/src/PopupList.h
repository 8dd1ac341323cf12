// A list that opens over the dialog: choices, languages. It is a child of the dialog's window, so
// it takes no grabs, is part of screenshots, and cannot outlive the dialog.

#pragma once

#include "framework/kivtoolkit/src/Look.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include <wx/window.h>

#include <kivcore/UString.h>

namespace kivtoolkit {

struct PopupItem {
    kivcore::UString label;
    bool isChecked = false;
    bool beginsGroup = false;  ///< a line above it
    std::string_view icon{};   ///< of what does something instead of being chosen
};

/// Opens lists; the dialog's window does.
class PopupHost {
public:
    virtual ~PopupHost() = default;
    /// Opens a list below (or above) `anchor`, a part of `owner`, which gets the focus back when
    /// the list closes. `chosen` gets the index of the item picked, and is not called otherwise.
    virtual void OpenPopup(wxWindow& owner, const wxRect& anchor, std::vector<PopupItem> items,
                           std::function<void(std::size_t)> chosen) = 0;
};

class PopupList : public wxWindow {
public:
    PopupList(Look& look, wxWindow& parent, std::vector<PopupItem> items,
              std::function<void(std::optional<std::size_t>)> closed);

    /// Below `anchor` where there is more room, both in pixels of the parent.
    void PlaceAt(const wxRect& anchor);
    /// True if the key was used.
    bool PressKey(const wxKeyEvent& key);
    std::size_t Count() const noexcept { return items_.size(); }
    /// Brings an item into sight and gives its middle, in the list's pixels.
    wxPoint ShowItem(std::size_t index);

    bool AcceptsFocus() const override { return false; }

private:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& area);
    wxRect ItemRect(std::size_t index) const;
    std::optional<std::size_t> ItemAt(const wxPoint& at) const;
    void SetCurrent(std::optional<std::size_t> index, bool isRevealed);
    void SetOffset(int offset);
    int ContentHeight() const;

    Look& look_;
    std::vector<PopupItem> items_;
    std::function<void(std::optional<std::size_t>)> closed_;
    std::optional<std::size_t> current_;
    int offset_ = 0;
};

}  // namespace kivtoolkit
