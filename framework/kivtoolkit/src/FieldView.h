// One field on a page: label, mark of the source, changed dot, revert button and the words below
// are the same for all; what lies between is each kind's own.

#pragma once

#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/ToolkitModule.h"
#include "framework/kivtoolkit/src/Buttons.h"
#include "framework/kivtoolkit/src/Page.h"
#include "framework/kivtoolkit/src/PageItem.h"
#include "framework/kivtoolkit/src/PopupList.h"
#include "framework/kivtoolkit/src/QuietWords.h"
#include "framework/kivtoolkit/src/TextEntry.h"

#include <memory>
#include <vector>

namespace kivtoolkit {

class FieldView : public PageItem {
public:
    FieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::Field& field);
    FieldView(const FieldView&) = delete;
    FieldView& operator=(const FieldView&) = delete;
    ~FieldView() override;

    kivmetadataui::Field& GetField() noexcept { return field_; }

    int Measure(int width) override;
    void Place(const wxRect& area) override;
    void Hide() override;
    void Draw(const kivui::ui::Drawing& drawing) override;
    void CollectStops(std::vector<wxWindow*>& stops) override;

    /// The field changed: shows what it holds now.
    void Update();
    /// The text control to type into for `part`; null where the kind has none, or no such part. The
    /// part is brought to where it can be typed into. Requires a Place.
    virtual TextEntry* EntryFor(const kivmetadataui::FieldPart&) { return nullptr; }
    /// Hands what is being typed to the field.
    void FinishTyping();
    /// True while Esc ends something within the field.
    virtual bool WantsEscape() const { return false; }
    /// True if `window` is a part of this field.
    bool Owns(const wxWindow* window);

protected:
    /// Height of what lies between label and words, for its width.
    virtual int MeasureBody(int width) = 0;
    virtual void CreateBody() = 0;
    virtual void PlaceBody(const wxRect& body) = 0;
    virtual void ShowBody(bool isShown) = 0;
    virtual void DrawBody(const kivui::ui::Drawing& drawing, const wxRect& body) = 0;
    virtual void UpdateBody() = 0;
    virtual void FinishBody() {}
    /// The part of the body that is in use; the revert button stands behind it.
    virtual wxRect UsedArea(const wxRect& body) { return body; }
    virtual void CollectBodyStops(std::vector<wxWindow*>& stops) = 0;
    /// True for windows of the field that are no tab stops.
    virtual bool OwnsPart(const wxWindow*) const { return false; }

    /// A window made for this field: it goes with the view.
    template <class Window>
    Window* Keep(Window* window)
    {
        windows_.push_back(window);
        return window;
    }
    /// Lets a window go before the view does.
    void Drop(wxWindow* window);
    /// What assistive technology hears of a control that shows `value`: that, and the field's
    /// state.
    kivcore::UString SpokenValue(const kivcore::UString& value) const;
    /// Height may have changed.
    void RequestLayout() { page_.RequestLayout(); }
    void RefreshAll();
    /// The usual actions of a text that edits the field.
    TextEntry::Actions UsualActions();
    /// Draws frame, focus ring and (where `entry` is blank) the placeholder.
    void DrawEntryFrame(const kivui::ui::Drawing& drawing, const wxRect& frame,
                        const TextEntry* entry, const wxRect& text);
    const wxRect& Body() const noexcept { return body_; }
    /// Where text stands in a frame of one line.
    wxRect TextRectOf(const wxRect& frame);

    Look& look_;
    Page& page_;
    PopupHost& popups_;

private:
    void Create();
    void Revert();
    void ShowSigns();
    void PlaceMark();
    /// The label's line, without the mark's part of it.
    wxRect LabelRect();
    /// A short field is short also where its words below may be long.
    int BodyWidth(int width) const;
    std::vector<kivcore::UString> MessageLines(int width);
    kivui::ui::MessageKind Kind() const;

    kivmetadataui::Field& field_;
    bool isCreated_ = false;
    bool isShown_ = false;
    wxRect body_;
    std::vector<kivcore::UString> messages_;
    std::vector<wxWindow*> windows_;  // owned by the page's window
    IconButton* revert_ = nullptr;
    QuietWords* mark_ = nullptr;  // null where the packet itself holds the value
};

/// The view for a field, by its kind; read-only ones show their text.
std::unique_ptr<FieldView> NewFieldView(Look& look, Page& page, PopupHost& popups,
                                        kivmetadataui::Field& field);
/// The width a field wants, in design units; 0 for all there is.
double WantedWidth(const kivmetadataui::Field& field);

}  // namespace kivtoolkit
