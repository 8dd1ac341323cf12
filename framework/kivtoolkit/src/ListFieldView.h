// A list of texts as chips, with the entry behind the last one. A chip can be taken into edit,
// moved and removed; long lists fold.

#pragma once

#include "framework/kivtoolkit/src/FieldView.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kivtoolkit {

/// One entry. Its cross removes it.
class ChipControl : public OwnControl {
public:
    struct Actions {
        std::function<void()> edited;
        std::function<void()> removed;
        std::function<bool(const wxKeyEvent&)> key;
    };
    ChipControl(Look& look, wxWindow& parent, Actions actions);

    void SetText(const kivcore::UString& text);
    wxSize WantedSize();
    /// The middle of the cross, in the control's pixels.
    wxPoint CrossCenter();

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;
    void Point(const wxPoint& at, bool inside) override;
    bool PressKey(const wxKeyEvent& key) override;

private:
    Actions actions_;
    kivcore::UString text_;
    bool isCrossHovered_ = false;
};

class ListFieldView : public FieldView {
public:
    ListFieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::ListField& field);
    ~ListFieldView() override;

    TextEntry* EntryFor(const kivmetadataui::FieldPart& part) override;
    /// The chip `index`, unfolding the list if need be; null where there is none. Requires a Place.
    ChipControl* ChipAt(std::size_t index);
    bool WantsEscape() const override { return edited_.has_value(); }

protected:
    int MeasureBody(int width) override;
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    void DrawBody(const kivui::ui::Drawing& drawing, const wxRect& body) override;
    void UpdateBody() override;
    void CollectBodyStops(std::vector<wxWindow*>& stops) override;
    bool OwnsPart(const wxWindow* window) const override;
    void FinishBody() override { EndEntry(); }

private:
    // Where everything stands, from the upper left corner of the body on.
    struct Flow {
        std::vector<wxRect> chips;  // those that are shown
        wxRect entry;
        wxRect more;  // "12 more"; empty where nothing is folded
        std::size_t hidden = 0;
        int height = 0;
    };
    Flow FlowFor(int width);
    void TakeIntoEdit(std::size_t index);
    /// Hands what the entry holds to the field.
    void EndEntry();
    void SplitTyped(const kivcore::UString& text);
    bool EntryKey(const wxKeyEvent& key);
    bool ChipKey(std::size_t index, const wxKeyEvent& key);
    void FocusChip(std::size_t index);
    void Remove(std::size_t index);
    wxSize ChipSize(const kivcore::UString& text);
    wxRect OnPage(const wxRect& inBody) const;
    void Unfold(std::size_t count);
    /// Returns the chips that are no longer needed, to be dropped when all others stand.
    std::vector<ChipControl*> UpdateChips(std::size_t count);
    kivcore::UString MoreText(std::size_t hidden) const;

    kivmetadataui::ListField& list_;
    std::unique_ptr<TextEntry> entry_;
    std::vector<ChipControl*> chips_;  // of the entries that are shown
    PushButton* more_ = nullptr;
    std::optional<std::size_t> edited_;
    std::size_t unfolded_ = 0;  // chips that show; 0 for as many as fit into the folded rows
    bool isShown_ = true;
};

}  // namespace kivtoolkit
