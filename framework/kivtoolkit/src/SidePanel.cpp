#include "framework/kivtoolkit/src/SidePanel.h"

#include "framework/kivtoolkit/src/Artwork.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <wx/cursor.h>
#include <wx/utils.h>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

// Design units.
constexpr double kMargin = 12;
constexpr double kGap = 12;

}  // namespace

SidePanel::SidePanel(Look& look, wxWindow& parent, Actions actions)
    : wxWindow(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_NONE),
      look_(look),
      actions_(std::move(actions))
{
    TextEntry::Actions search;
    search.typed = [this](const kivcore::UString&) { Searched(); };
    search.committed = [this] { actions_.found(); };
    search.entered = [this] { Refresh(); };
    search.left = [this] { Refresh(); };
    search.composing = [this] { Refresh(); };
    search.key = [this](const wxKeyEvent& key) {
        if (key.GetKeyCode() == WXK_DOWN && !key.HasAnyModifiers()) {
            list_->SetFocus();
            return true;
        }
        return false;
    };
    search_ = std::make_unique<TextEntry>(look_, *this, TextShape::kLine, std::move(search));
    search_->Describe(Text("$$$/Kiv/Dialog/Search/Name=Search"), {});
    clear_ = new IconButton(look_, *this, ui::kFieldGround, ui::icons::kCross,
                            Text("$$$/Kiv/Dialog/Search/Clear=Clear the search"),
                            [this] { ClearSearch(); });
    clear_->SetTakesFocus(false);  // Esc does the same
    clear_->Hide();
    list_ = new NavigationList(look_, *this, [this](std::size_t view) { actions_.chosen(view); });
    BindPainting(look_, *this, ui::kRaisedGround,
                 [this](const ui::Drawing& drawing, const ui::Rect&) {
                     const ui::Rect frame = FromWx(FrameRect());
                     ui::ControlState state;
                     state.focused = search_->HasFocus();
                     ui::DrawFieldFrame(drawing, frame, state);
                     ui::Rect text = ui::FieldTextRect(drawing, frame);
                     const double side = look_.Px(ui::metrics::kSign);
                     const ui::Rect sign{look_.IsMirrored() ? text.x + text.width - side : text.x,
                                         text.y + (text.height - side) / 2, side, side};
                     ui::DrawIcon(drawing, icons::kSearch, ui::SnapRect(sign));
                     if (search_->IsBlank()) {
                         const double indent = side + look_.Px(6);
                         text.width -= indent;
                         text.x += look_.IsMirrored() ? 0 : indent;
                         ui::DrawTextLine(drawing, Text("$$$/Kiv/Dialog/Search/Placeholder=Search"),
                                          text, ui::TextRole::kPlaceholder);
                     }
                 });
    BindContained(look_, *this, wxEVT_SIZE, [this](wxSizeEvent&) { Arrange(); });
}

void SidePanel::Searched()
{
    clear_->Show(IsSearching());
    Refresh();
    actions_.searched(search_->Text());
}

void SidePanel::ClearSearch()
{
    search_->SetText({});
    Searched();
}

wxRect SidePanel::FrameRect() const
{
    const int margin = look_.Px(kMargin);
    return {margin, margin, GetClientSize().x - 2 * margin, look_.Px(ui::metrics::kFieldHeight)};
}

void SidePanel::Arrange()
{
    const wxSize client = GetClientSize();
    const wxRect frame = FrameRect();
    wxRect text = ToWx(ui::FieldTextRect(look_.Measuring(), FromWx(frame)));
    const int indent = look_.Px(ui::metrics::kSign + 6);
    const int inset = look_.Px(4);  // clear of the frame's round corners
    const int side = frame.height - 2 * inset;
    text.width -= indent + side - look_.Px(ui::metrics::kFieldPadding) / 2;
    wxRect clear(frame.x + frame.width - inset - side, frame.y + inset, side, side);
    text.x += indent;
    if (look_.IsMirrored()) {
        text.x = client.x - text.x - text.width;
        clear.x = client.x - clear.x - clear.width;
    }
    search_->Place(text);
    clear_->Place(clear);
    const int top = frame.y + frame.height + look_.Px(kGap);
    list_->SetSize(0, top, client.x, std::max(1, client.y - top));
}

SideEdge::SideEdge(Look& look, wxWindow& parent, std::function<void(int, bool)> dragged)
    : wxWindow(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_NONE),
      look_(look),
      dragged_(std::move(dragged))
{
    SetCursor(wxCursor(wxCURSOR_SIZEWE));
    BindPainting(
        look_, *this, ui::kGround, [this](const ui::Drawing& drawing, const ui::Rect& all) {
            ui::Rect line = all;
            line.x = look_.IsMirrored() ? all.width - look_.Px(ui::metrics::kFrameWidth) : 0;
            ui::DrawHairline(drawing, line, ui::HairlineDirection::kUpright);
        });
    BindContained(look_, *this, wxEVT_LEFT_DOWN, [this](wxMouseEvent&) {
        isDragging_ = true;
        start_ = wxGetMousePosition().x;
        CaptureMouse();
    });
    BindContained(look_, *this, wxEVT_MOTION, [this](wxMouseEvent&) {
        if (isDragging_) {
            dragged_(wxGetMousePosition().x - start_, false);
        }
    });
    BindContained(look_, *this, wxEVT_LEFT_UP, [this](wxMouseEvent&) {
        if (isDragging_) {
            isDragging_ = false;
            ReleaseMouse();
            dragged_(wxGetMousePosition().x - start_, true);
        }
    });
    BindContained(look_, *this, wxEVT_MOUSE_CAPTURE_LOST,
                  [this](wxMouseCaptureLostEvent&) { isDragging_ = false; });
}

}  // namespace kivtoolkit
