// The leading side of the dialog: the search field on top, the list of views below it.

#pragma once

#include "framework/kivtoolkit/src/Buttons.h"
#include "framework/kivtoolkit/src/NavigationList.h"
#include "framework/kivtoolkit/src/TextEntry.h"

#include <functional>
#include <memory>

#include <wx/window.h>

namespace kivtoolkit {

class SidePanel : public wxWindow {
public:
    struct Actions {
        std::function<void(const kivcore::UString& text)> searched;
        std::function<void(std::size_t view)> chosen;
        std::function<void()> found;  ///< Enter in the search field
    };
    SidePanel(Look& look, wxWindow& parent, Actions actions);

    NavigationList& List() { return *list_; }
    TextEntry& Search() { return *search_; }
    bool IsSearching() const { return !search_->Text().empty(); }
    /// Empties the search field and tells of it.
    void ClearSearch();

    bool AcceptsFocus() const override { return false; }

private:
    void Arrange();
    wxRect FrameRect() const;
    void Searched();

    Look& look_;
    Actions actions_;
    NavigationList* list_;  // owned by this window
    std::unique_ptr<TextEntry> search_;
    IconButton* clear_;
};

/// The edge between the panel and the page; dragging it makes the panel wider or narrower.
class SideEdge : public wxWindow {
public:
    /// `dragged` gets the distance in pixels from where the drag began, and whether it is over.
    SideEdge(Look& look, wxWindow& parent, std::function<void(int distance, bool isOver)> dragged);
    bool AcceptsFocus() const override { return false; }

private:
    Look& look_;
    std::function<void(int, bool)> dragged_;
    bool isDragging_ = false;
    int start_ = 0;  // on the screen: the edge itself moves
};

}  // namespace kivtoolkit
