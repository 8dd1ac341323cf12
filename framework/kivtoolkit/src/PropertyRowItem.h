// A row of the list of all properties: path and value, to be read and copied.

#pragma once

#include "framework/kivmetadataui/src/DialogModel.h"
#include "framework/kivtoolkit/src/Page.h"
#include "framework/kivtoolkit/src/PageItem.h"
#include "framework/kivtoolkit/src/QuietWords.h"
#include "framework/kivtoolkit/src/TextEntry.h"

#include <memory>
#include <vector>

namespace kivtoolkit {

class PropertyRowItem : public PageItem {
public:
    /// `row` belongs to the model and outlives the page.
    PropertyRowItem(Look& look, Page& page, const kivmetadataui::PropertyRow& row);
    PropertyRowItem(const PropertyRowItem&) = delete;
    PropertyRowItem& operator=(const PropertyRowItem&) = delete;
    ~PropertyRowItem() override;

    int Measure(int width) override;
    void Place(const wxRect& area) override;
    void Hide() override;
    void Draw(const kivui::ui::Drawing& drawing) override;
    void CollectStops(std::vector<wxWindow*>& stops) override;

private:
    void CreateWindows();
    void DropWindows();
    /// What the mark takes of the row's width, the gap before it included; 0 without a mark.
    int MarkRoom();
    wxRect ValueRect(const wxRect& area);
    int PathWidth(int width) const;

    Look& look_;
    Page& page_;
    const kivmetadataui::PropertyRow& row_;
    kivcore::UString path_;
    std::vector<kivcore::UString> pathLines_;
    int measuredWidth_ = 0;
    int measuredHeight_ = 0;
    std::unique_ptr<TextEntry> value_;
    QuietWords* mark_ = nullptr;  // owned by the page's window; only while value_ is there
};

}  // namespace kivtoolkit
