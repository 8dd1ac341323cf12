// Fields that are not typed: closed choices, ratings, yes and no.

#pragma once

#include "framework/kivtoolkit/src/FieldView.h"
#include "framework/kivtoolkit/src/ToggleControls.h"

namespace kivtoolkit {

class ClosedChoiceFieldView : public FieldView {
public:
    ClosedChoiceFieldView(Look& look, Page& page, PopupHost& popups,
                          kivmetadataui::ChoiceField& field);
    void OpenList();

protected:
    int MeasureBody(int width) override;
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    void DrawBody(const kivui::ui::Drawing&, const wxRect&) override {}
    void UpdateBody() override;
    void CollectBodyStops(std::vector<wxWindow*>& stops) override;

private:
    kivmetadataui::ChoiceField& choice_;
    DropControl* drop_ = nullptr;  // owned by the page's window
};

class RatingFieldView : public FieldView {
public:
    RatingFieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::RatingField& field);
    StarsControl* Stars() { return stars_; }

protected:
    int MeasureBody(int width) override;
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    void DrawBody(const kivui::ui::Drawing& drawing, const wxRect& body) override;
    void UpdateBody() override;
    void CollectBodyStops(std::vector<wxWindow*>& stops) override;
    wxRect UsedArea(const wxRect& body) override;

private:
    kivmetadataui::RatingField& rating_;
    StarsControl* stars_ = nullptr;  // owned by the page's window
};

class YesNoFieldView : public FieldView {
public:
    YesNoFieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::YesNoField& field);
    CheckControl* Check() { return check_; }

protected:
    int MeasureBody(int width) override;
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    void DrawBody(const kivui::ui::Drawing&, const wxRect&) override {}
    void UpdateBody() override;
    void CollectBodyStops(std::vector<wxWindow*>& stops) override;
    wxRect UsedArea(const wxRect&) override { return check_->VisibleRect(); }

private:
    kivmetadataui::YesNoField& yesNo_;
    CheckControl* check_ = nullptr;  // owned by the page's window
};

}  // namespace kivtoolkit
