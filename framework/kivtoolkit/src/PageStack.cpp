#include "framework/kivtoolkit/src/PageStack.h"

#include "framework/kivtoolkit/src/PropertyRowItem.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <optional>
#include <utility>

namespace kivtoolkit {

namespace ui = kivui::ui;
using kivmetadataui::DialogView;
using kivmetadataui::Field;
using kivmetadataui::FieldGroup;
using kivmetadataui::FieldPlacement;
using kivmetadataui::SearchHit;

namespace {

// Design units.
constexpr double kBelowTitle = 20;
constexpr double kBetweenGroups = 28;
constexpr double kBelowHeading = 12;
constexpr double kBetweenFields = 16;

PageSlot NewSlot(std::unique_ptr<PageItem> item, double gapBefore)
{
    PageSlot slot;
    slot.item = std::move(item);
    slot.gapBefore = gapBefore;
    return slot;
}

}  // namespace

PageStack::PageStack(Look& look, wxWindow& parent, PopupHost& popups)
    : look_(look), parent_(parent), popups_(popups)
{
}

void PageStack::Show(Page* page)
{
    page->SetSize(area_);
    page->UpdateLayout();
    page->Show();
    if (current_ != nullptr && current_ != page) {
        current_->Hide();
    }
    current_ = page;
}

std::vector<PageSlot> PageStack::SlotsFor(Page& page, const DialogView& view)
{
    std::vector<PageSlot> slots;
    slots.push_back(
        NewSlot(std::make_unique<HeadingItem>(look_, view.label, ui::TextRole::kTitle), 0));
    double gap = kBelowTitle;
    for (const FieldGroup& group : view.groups) {
        if (!group.heading.empty()) {
            slots.push_back(NewSlot(
                std::make_unique<HeadingItem>(look_, group.heading, ui::TextRole::kGroupHeading),
                gap));
            gap = kBelowHeading;
        }
        for (const FieldPlacement& placement : group.fields) {
            PageSlot slot = NewSlot(NewFieldView(look_, page, popups_, *placement.field), gap);
            slot.sharesRow = placement.sharesRowWithNext;
            if (slot.sharesRow || slots.back().sharesRow) {
                slot.wantedWidth = WantedWidth(*placement.field);
            }
            slots.push_back(std::move(slot));
            gap = kBetweenFields;
        }
        gap = kBetweenGroups;
    }
    gap = kBelowTitle;
    for (const kivmetadataui::PropertyRow& row : view.rows) {
        slots.push_back(NewSlot(std::make_unique<PropertyRowItem>(look_, page, row), gap));
        gap = 0;
    }
    if (!view.emptyText.empty()) {
        slots.push_back(NewSlot(std::make_unique<NoteItem>(look_, view.emptyText), kBelowTitle));
    }
    return slots;
}

void PageStack::ShowView(std::size_t view)
{
    Page*& page = pages_[view];
    if (page == nullptr) {
        page = new Page(look_, parent_);
        page->SetSize(area_);
        if (view < look_.Model().Views().size()) {
            page->SetSlots(SlotsFor(*page, look_.Model().Views()[view]));
        }
    }
    Show(page);
}

void PageStack::ShowHits(const std::vector<SearchHit>& hits)
{
    if (search_ == nullptr) {
        search_ = new Page(look_, parent_);
        search_->SetSize(area_);
    }
    const std::vector<DialogView>& views = look_.Model().Views();
    std::vector<PageSlot> slots;
    slots.push_back(NewSlot(
        std::make_unique<HeadingItem>(look_, Text("$$$/Kiv/Dialog/Search/Found=Search results"),
                                      ui::TextRole::kTitle),
        0));
    std::optional<std::size_t> view;
    for (const SearchHit& hit : hits) {
        double gap = kBetweenFields;
        if (view != hit.view) {
            slots.push_back(NewSlot(std::make_unique<HeadingItem>(look_, views[hit.view].label,
                                                                  ui::TextRole::kGroupHeading),
                                    view ? kBetweenGroups : kBelowTitle));
            view = hit.view;
            gap = kBelowHeading;
        }
        if (hit.field == nullptr) {
            slots.push_back(NewSlot(
                std::make_unique<PropertyRowItem>(look_, *search_, views[hit.view].rows[hit.row]),
                gap == kBelowHeading ? gap : 0));
            continue;
        }
        slots.push_back(NewSlot(NewFieldView(look_, *search_, popups_, *hit.field), gap));
    }
    if (hits.empty()) {
        slots.push_back(NewSlot(
            std::make_unique<NoteItem>(
                look_, Text("$$$/Kiv/Dialog/Search/Nothing=No field contains all these words.")),
            kBelowTitle));
    }
    search_->SetSlots(std::move(slots));
    Show(search_);
}

void PageStack::Place(const wxRect& area)
{
    area_ = area;
    if (current_ != nullptr) {
        current_->SetSize(area);
    }
}

void PageStack::ForEachField(Page& page, const std::function<void(FieldView&)>& visit)
{
    for (const PageSlot& slot : page.Slots()) {
        if (auto* view = dynamic_cast<FieldView*>(slot.item.get()); view != nullptr) {
            visit(*view);
        }
    }
}

void PageStack::FieldChanged(Field& field)
{
    const auto update = [&](FieldView& view) {
        if (&view.GetField() == &field) {
            view.Update();
        }
    };
    for (const auto& [index, page] : pages_) {
        ForEachField(*page, update);
    }
    if (search_ != nullptr) {
        ForEachField(*search_, update);
    }
}

FieldView* PageStack::Reveal(const Field& field)
{
    if (current_ == nullptr) {
        return nullptr;
    }
    for (std::size_t i = 0; i < current_->Slots().size(); ++i) {
        auto* view = dynamic_cast<FieldView*>(current_->Slots()[i].item.get());
        if (view != nullptr && &view->GetField() == &field) {
            current_->RevealItem(i);
            return view;
        }
    }
    return nullptr;
}

void PageStack::RevealRow(std::size_t row)
{
    if (current_ == nullptr) {
        return;
    }
    std::size_t rows = 0;
    for (std::size_t i = 0; i < current_->Slots().size(); ++i) {
        if (dynamic_cast<PropertyRowItem*>(current_->Slots()[i].item.get()) != nullptr &&
            rows++ == row) {
            current_->RevealItem(i);
            return;
        }
    }
}

FieldView* PageStack::OwnerOf(const wxWindow* window)
{
    FieldView* owner = nullptr;
    if (current_ != nullptr && window != nullptr) {
        ForEachField(*current_, [&](FieldView& view) {
            if (view.Owns(window)) {
                owner = &view;
            }
        });
    }
    return owner;
}

void PageStack::FinishTyping()
{
    for (const auto& [index, page] : pages_) {
        ForEachField(*page, [](FieldView& view) { view.FinishTyping(); });
    }
    if (search_ != nullptr) {
        ForEachField(*search_, [](FieldView& view) { view.FinishTyping(); });
    }
}

}  // namespace kivtoolkit
