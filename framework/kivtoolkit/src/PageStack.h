// The pages of the dialog, one a view, made when they are first shown, and the page of what a
// search found.

#pragma once

#include "framework/kivtoolkit/src/FieldView.h"
#include "framework/kivtoolkit/src/Page.h"

#include <cstddef>
#include <functional>
#include <map>
#include <vector>

namespace kivtoolkit {

class PageStack {
public:
    PageStack(Look& look, wxWindow& parent, PopupHost& popups);

    void ShowView(std::size_t view);
    void ShowHits(const std::vector<kivmetadataui::SearchHit>& hits);
    bool IsSearchShown() const noexcept { return current_ != nullptr && current_ == search_; }
    /// The page in sight; null before the first Show.
    Page* Current() noexcept { return current_; }
    void Place(const wxRect& area);

    void FieldChanged(kivmetadataui::Field& field);
    /// The view of `field` on the page in sight, scrolled into sight; null where there is none.
    FieldView* Reveal(const kivmetadataui::Field& field);
    void RevealRow(std::size_t row);
    /// The field on the page in sight that `window` belongs to; null where it belongs to none.
    FieldView* OwnerOf(const wxWindow* window);
    /// Hands what is being typed anywhere to its field.
    void FinishTyping();

private:
    void Show(Page* page);
    std::vector<PageSlot> SlotsFor(Page& page, const kivmetadataui::DialogView& view);
    void ForEachField(Page& page, const std::function<void(FieldView&)>& visit);

    Look& look_;
    wxWindow& parent_;
    PopupHost& popups_;
    wxRect area_;
    std::map<std::size_t, Page*> pages_;  // by view; owned by the parent window
    Page* search_ = nullptr;
    Page* current_ = nullptr;
};

}  // namespace kivtoolkit
