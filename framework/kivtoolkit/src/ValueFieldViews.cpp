#include "framework/kivtoolkit/src/ValueFieldViews.h"

#include "framework/kivtoolkit/src/ListFieldView.h"
#include "framework/kivtoolkit/src/TextFieldViews.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <algorithm>

namespace kivtoolkit {

namespace ui = kivui::ui;
using kivmetadataui::ChoiceField;
using kivmetadataui::DateField;
using kivmetadataui::Field;
using kivmetadataui::FieldKind;
using kivmetadataui::FieldWidth;
using kivmetadataui::LanguageField;
using kivmetadataui::ListField;
using kivmetadataui::NumberField;
using kivmetadataui::RatingField;
using kivmetadataui::TextField;
using kivmetadataui::YesNoField;

namespace {

// Design units.
constexpr double kShortWidth = 200;
constexpr double kDateWidth = 240;
constexpr double kMediumWidth = 320;
constexpr double kWordGap = 12;
constexpr int kLongTextLines = 3;
constexpr int kMostLines = 8;

}  // namespace

ClosedChoiceFieldView::ClosedChoiceFieldView(Look& look, Page& page, PopupHost& popups,
                                             ChoiceField& field)
    : FieldView(look, page, popups, field), choice_(field)
{
}

int ClosedChoiceFieldView::MeasureBody(int)
{
    return look_.Px(ui::metrics::kFieldHeight);
}

void ClosedChoiceFieldView::CreateBody()
{
    drop_ = Keep(new DropControl(look_, page_, [this] { OpenList(); }));
}

void ClosedChoiceFieldView::PlaceBody(const wxRect& body)
{
    drop_->Place(body);
}

void ClosedChoiceFieldView::ShowBody(bool isShown)
{
    drop_->Show(isShown);
}

void ClosedChoiceFieldView::UpdateBody()
{
    drop_->SetValue(choice_.Text(), choice_.Placeholder());
    drop_->SetError(choice_.HasError());
    drop_->SetWords(choice_.AccessibleName(), SpokenValue(choice_.Text()));
}

void ClosedChoiceFieldView::CollectBodyStops(std::vector<wxWindow*>& stops)
{
    stops.push_back(drop_);
}

void ClosedChoiceFieldView::OpenList()
{
    // The first entry empties the field.
    std::vector<PopupItem> items;
    items.push_back({Text("$$$/Kiv/Dialog/Field/NoChoice=None"), choice_.IsEmpty(), false});
    for (const kivmetadataui::FieldChoice& choice : choice_.Choices()) {
        items.push_back({choice.label, choice_.Selected() == items.size() - 1, items.size() == 1});
    }
    popups_.OpenPopup(*drop_, drop_->VisibleRect(), std::move(items), [this](std::size_t index) {
        choice_.Select(index == 0 ? std::nullopt : std::optional(index - 1));
        choice_.EndEdit();
    });
}

RatingFieldView::RatingFieldView(Look& look, Page& page, PopupHost& popups, RatingField& field)
    : FieldView(look, page, popups, field), rating_(field)
{
}

int RatingFieldView::MeasureBody(int)
{
    return look_.Px(ui::metrics::kStar);
}

void RatingFieldView::CreateBody()
{
    stars_ = Keep(
        new StarsControl(look_, page_, RatingField::kMostStars, [this](std::optional<int> stars) {
            rating_.SetStars(stars);
            rating_.EndEdit();
        }));
}

void RatingFieldView::PlaceBody(const wxRect& body)
{
    const int width = std::min(body.width, stars_->WantedSize().x);
    // A star is smaller than its place: the first one's edge stands where other fields begin.
    const int shift = look_.Px((ui::metrics::kStar - ui::metrics::kSign) / 2);
    const int x = look_.IsMirrored() ? body.x + body.width - width + shift : body.x - shift;
    stars_->Place(wxRect(x, body.y, width, body.height));
}

void RatingFieldView::ShowBody(bool isShown)
{
    stars_->Show(isShown);
}

wxRect RatingFieldView::UsedArea(const wxRect& body)
{
    return rating_.Stars() == RatingField::kRejected ? body : stars_->VisibleRect();
}

void RatingFieldView::DrawBody(const ui::Drawing& drawing, const wxRect& body)
{
    // What stars cannot say: that a photo was rejected.
    if (rating_.Stars() != RatingField::kRejected) {
        return;
    }
    ui::Rect words = FromWx(body);
    const double stars = stars_->WantedSize().x + look_.Px(kWordGap);
    words.width -= stars;
    words.x += look_.IsMirrored() ? 0 : stars;
    ui::DrawTextLine(drawing, rating_.DisplayText(), words, ui::TextRole::kBody);
}

void RatingFieldView::UpdateBody()
{
    stars_->SetValue(rating_.Stars());
    stars_->SetWords(rating_.AccessibleName(), SpokenValue(rating_.DisplayText()));
}

void RatingFieldView::CollectBodyStops(std::vector<wxWindow*>& stops)
{
    stops.push_back(stars_);
}

YesNoFieldView::YesNoFieldView(Look& look, Page& page, PopupHost& popups, YesNoField& field)
    : FieldView(look, page, popups, field), yesNo_(field)
{
}

int YesNoFieldView::MeasureBody(int)
{
    return look_.Px(ui::metrics::kIconButton);
}

void YesNoFieldView::CreateBody()
{
    check_ = Keep(new CheckControl(look_, page_, [this](std::optional<bool> value) {
        yesNo_.SetValue(value);
        yesNo_.EndEdit();
    }));
}

void YesNoFieldView::PlaceBody(const wxRect& body)
{
    const int width = std::min(body.width, check_->WantedSize().x);
    const int x = look_.IsMirrored() ? body.x + body.width - width : body.x;
    check_->Place(wxRect(x, body.y, width, body.height));
}

void YesNoFieldView::ShowBody(bool isShown)
{
    check_->Show(isShown);
}

void YesNoFieldView::UpdateBody()
{
    const kivcore::UString label =
        yesNo_.Value() ? yesNo_.DisplayText() : Text("$$$/Kiv/Dialog/YesNo/Unset=Not set");
    check_->SetValue(yesNo_.Value(), label);
    check_->SetWords(yesNo_.AccessibleName(), SpokenValue(label));
}

void YesNoFieldView::CollectBodyStops(std::vector<wxWindow*>& stops)
{
    stops.push_back(check_);
}

std::unique_ptr<FieldView> NewFieldView(Look& look, Page& page, PopupHost& popups, Field& field)
{
    if (field.IsReadOnly()) {
        return std::make_unique<DisplayFieldView>(look, page, popups, field);
    }
    const auto typed = [&](auto& kind, int fewest, int most) {
        return std::make_unique<TextFieldView>(
            look, page, popups, field,
            TextFieldView::Binding{[&kind] { return kind.Text(); },
                                   [&kind](kivcore::UStringView text) { kind.SetText(text); },
                                   fewest, most});
    };
    switch (field.Kind()) {
        case FieldKind::kText:
        case FieldKind::kUri:
            return typed(static_cast<TextField&>(field), 1, 1);
        case FieldKind::kLongText:
            return typed(static_cast<TextField&>(field), kLongTextLines, kMostLines);
        case FieldKind::kDate:
            return typed(static_cast<DateField&>(field), 1, 1);
        case FieldKind::kNumber:
            return std::make_unique<NumberFieldView>(look, page, popups,
                                                     static_cast<NumberField&>(field));
        case FieldKind::kLanguageAlternative:
            return std::make_unique<LanguageFieldView>(look, page, popups,
                                                       static_cast<LanguageField&>(field));
        case FieldKind::kList:
            return std::make_unique<ListFieldView>(look, page, popups,
                                                   static_cast<ListField&>(field));
        case FieldKind::kChoice: {
            auto& choice = static_cast<ChoiceField&>(field);
            if (choice.IsClosed()) {
                return std::make_unique<ClosedChoiceFieldView>(look, page, popups, choice);
            }
            return std::make_unique<OpenChoiceFieldView>(look, page, popups, choice);
        }
        case FieldKind::kRating:
            return std::make_unique<RatingFieldView>(look, page, popups,
                                                     static_cast<RatingField&>(field));
        case FieldKind::kYesNo:
            return std::make_unique<YesNoFieldView>(look, page, popups,
                                                    static_cast<YesNoField&>(field));
        case FieldKind::kDisplay:
            break;
    }
    return std::make_unique<DisplayFieldView>(look, page, popups, field);
}

double WantedWidth(const Field& field)
{
    if (field.Kind() == FieldKind::kDate && !field.IsReadOnly()) {
        return kDateWidth;
    }
    switch (field.Width()) {
        case FieldWidth::kShort:
            return kShortWidth;
        case FieldWidth::kMedium:
            return kMediumWidth;
        case FieldWidth::kFull:
            break;
    }
    return 0;
}

}  // namespace kivtoolkit
