#include "framework/kivtoolkit/src/DialogWindow.h"

#include "framework/kivtoolkit/src/Artwork.h"
#include "framework/kivtoolkit/src/DriverSurface.h"
#include "framework/kivtoolkit/src/NativeText.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <wx/app.h>
#include <wx/display.h>
#include <wx/weakref.h>

#include <kivcore/Locale.h>
#include <kivui/NodeManager.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace kivtoolkit {

namespace ui = kivui::ui;
using kivmetadataui::DialogResult;
using kivmetadataui::DialogView;
using kivmetadataui::Field;
using kivmetadataui::SearchHit;
using kivmetadataui::WindowPlace;

namespace {

// Design units.
constexpr int kWidth = 880;
constexpr int kHeight = 640;
constexpr int kLeastWidth = 640;
constexpr int kLeastHeight = 440;
constexpr double kEdgeWidth = 6;
// What the system's own frame and title bar may take, in pixels of the screen.
constexpr int kFrameRoom = 8;
constexpr int kTitleRoom = 40;
constexpr int kMostCatchUps = 8;

std::string_view IconOf(const DialogView& view)
{
    return view.HasErrors() ? ui::icons::kError : ViewIcon(view.icon);
}

std::unique_ptr<Look> NewLook(kivmetadataui::ShownDialog& dialog)
{
    const ScreenScale screen = ScaleOfScreen();
    const ui::UI_NodeManager* manager = ui::UI_NodeManager::Get(/*mayBeNull=*/true);
    const double scale = manager != nullptr
                             ? manager->DrawingScale(static_cast<float>(screen.wanted))
                             : std::clamp(screen.wanted, 0.5, 4.0);
    const bool mirrored = kivcore::Locale::IsRightToLeft(kivcore::Locale::ApplicationLanguage());
    return std::make_unique<Look>(dialog, scale / screen.toolkit, mirrored);
}

bool IsDark(const ui::Theme& theme)
{
    const ui::ColorRGBA ground = theme.Color(ui::kGround);
    return ground.red + ground.green + ground.blue < 1.5F;
}

}  // namespace

DialogWindow::DialogWindow(kivmetadataui::ShownDialog& dialog, HWND host)
    : dialog_(dialog), model_(dialog.Model()), look_(NewLook(dialog))
{
    RegisterArtwork();
    const bool isDark = IsDark(look_->Theme());
    darkSide_ = std::make_unique<DarkSide>(isDark);
    if (!Create(nullptr, wxID_ANY, ToWx(model_.WindowTitle()), wxDefaultPosition, wxDefaultSize,
                DialogStyle())) {
        throw std::runtime_error(Utf8Text(
            "$$$/Kiv/Dialog/Failure/NoWindow=The system did not give the dialog a window."));
    }
    DressDialog(*this, isDark);
    sideWidth_ = model_.NavigationWidth();
    SetPlace(host);
    Build();
    AttachToHost(*this, host);
    model_.SetObserver(this);
    look_->SetAfterCallback([this] { CatchUp(); });
    CatchUp();
}

void DialogWindow::Abandon()
{
    if (stopWaiting_) {
        std::exchange(stopWaiting_, {})();
    }
    model_.SetObserver(nullptr);
    look_->Detach();
    isClosing_ = true;
}

DialogWindow::~DialogWindow()
{
    if (stopWaiting_) {
        stopWaiting_();
    }
    ClosePopup();
    model_.SetObserver(nullptr);
    look_->SetAfterCallback({});
    // The windows hold on to the look and the pages' parts: they go first.
    DestroyChildren();
}

void DialogWindow::Build()
{
    SidePanel::Actions actions;
    actions.searched = [this](const kivcore::UString& text) { Search(text); };
    actions.chosen = [this](std::size_t view) { ShowView(view); };
    actions.found = [this] {
        if (wxWindow* stop = pages_->Current()->NextStop(nullptr, /*backwards=*/false)) {
            stop->SetFocus();
        }
    };
    side_ = new SidePanel(*look_, *this, std::move(actions));
    edge_ = new SideEdge(*look_, *this, [this](int distance, bool isOver) {
        const double units = (look_->IsMirrored() ? -distance : distance) / look_->Scale();
        sideWidth_ = std::clamp(model_.NavigationWidth() + static_cast<int>(units), 160, 320);
        Arrange();
        if (isOver) {
            model_.SetNavigationWidth(sideWidth_);
        }
    });
    pages_ = std::make_unique<PageStack>(*look_, *this, *this);
    bar_ = new BottomBar(
        *look_, *this, [this] { Confirm(); }, [this] { Cancel(); });

    BindPainting(*look_, *this, ui::kGround, [](const ui::Drawing&, const ui::Rect&) {});
    BindContained(*look_, *this, wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        // The system tells the same size more than once, and an open list would not survive it.
        if (GetClientSize() != arrangedSize_) {
            Arrange();
        }
    });
    BindContained(*look_, *this, wxEVT_CHAR_HOOK, [this](wxKeyEvent& key) { HandleKey(key); });
    BindContained(*look_, *this, wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { Cancel(); });
    BindContained(*look_, *this, wxEVT_INIT_DIALOG, [](wxInitDialogEvent&) {});
    Arrange();
    pages_->ShowView(model_.CurrentView());
    BindContained(*look_, *pages_->Current(), wxEVT_PAINT, [this](wxPaintEvent& event) {
        event.Skip();
        BeginScript();
    });
}

void DialogWindow::SetPlace(HWND host)
{
    const std::optional<WindowPlace> place = model_.RememberedPlace();
    const std::optional<wxRect> parent = RectOfHost(host);
    // The screen that the window comes to: where it was, else the parent's, else the first.
    int screen = wxNOT_FOUND;
    if (place) {
        screen = wxDisplay::GetFromPoint(wxPoint(place->x + kTitleRoom, place->y + kTitleRoom / 2));
    }
    const bool keepsPosition = place && screen != wxNOT_FOUND;
    if (screen == wxNOT_FOUND && parent) {
        screen = wxDisplay::GetFromPoint(
            wxPoint(parent->x + parent->width / 2, parent->y + parent->height / 2));
    }
    const wxRect area = wxDisplay(static_cast<unsigned>(std::max(0, screen))).GetClientArea();
    const wxSize most(std::max(1, area.width - kFrameRoom), std::max(1, area.height - kTitleRoom));
    const auto sizeOf = [&](int width, int height) {
        return wxSize(std::min(look_->Px(width), most.x), std::min(look_->Px(height), most.y));
    };
    wxSize size = place ? sizeOf(place->width, place->height) : sizeOf(kWidth, kHeight);
    const wxSize least = sizeOf(kLeastWidth, kLeastHeight);
    size.IncTo(least);
    SetMinClientSize(least);
    SetClientSize(size);
    wxPoint corner;
    if (keepsPosition) {
        corner = wxPoint(place->x, place->y);
    } else {
        const wxRect over = parent.value_or(area);
        corner = wxPoint(over.x + (over.width - size.x) / 2, over.y + (over.height - size.y) / 2);
    }
    corner.x = std::clamp(corner.x, area.x, std::max(area.x, area.x + most.x - size.x));
    corner.y = std::clamp(corner.y, area.y, std::max(area.y, area.y + most.y - size.y));
    Move(corner);
    if (place && place->isMaximized) {
        Maximize();
    }
}

void DialogWindow::RememberPlace()
{
    WindowPlace place = model_.RememberedPlace().value_or(WindowPlace{});
    place.isMaximized = IsMaximized();
    if (!place.isMaximized || place.width == 0) {
        const wxPoint corner = GetPosition();
        const wxSize size = GetClientSize();
        place.x = corner.x;
        place.y = corner.y;
        place.width = static_cast<int>(std::lround(size.x / look_->Scale()));
        place.height = static_cast<int>(std::lround(size.y / look_->Scale()));
    }
    model_.RememberPlace(place);
}

void DialogWindow::Arrange()
{
    const wxSize client = GetClientSize();
    if (bar_ == nullptr || client.x <= 1) {
        return;
    }
    ClosePopup();
    arrangedSize_ = client;
    const int bar = bar_->WantedHeight(client.x);
    const int height = std::max(1, client.y - bar);
    const int side = std::min(look_->Px(sideWidth_), client.x / 2);
    const int edge = look_->Px(kEdgeWidth);
    const auto place = [&](wxRect rect) {
        if (look_->IsMirrored()) {
            rect.x = client.x - rect.x - rect.width;
        }
        return rect;
    };
    side_->SetSize(place(wxRect(0, 0, side, height)));
    edge_->SetSize(place(wxRect(side, 0, edge, height)));
    pages_->Place(place(wxRect(side + edge, 0, std::max(1, client.x - side - edge), height)));
    bar_->SetSize(0, height, client.x, bar);
}

void DialogWindow::FieldChanged(Field& field)
{
    if (std::find(changedFields_.begin(), changedFields_.end(), &field) == changedFields_.end()) {
        changedFields_.push_back(&field);
    }
}

void DialogWindow::ModelChanged()
{
    hasModelChanged_ = true;
}

void DialogWindow::CatchUp()
{
    if (isCatchingUp_ || isClosing_) {
        return;
    }
    isCatchingUp_ = true;
    for (int round = 0; round < kMostCatchUps; ++round) {
        const std::vector<Field*> fields = std::exchange(changedFields_, {});
        for (Field* field : fields) {
            pages_->FieldChanged(*field);
        }
        if (std::exchange(hasModelChanged_, false)) {
            UpdateWords();
        }
        pages_->Current()->UpdateLayout();
        if (changedFields_.empty() && !hasModelChanged_) {
            break;
        }
    }
    isCatchingUp_ = false;
}

void DialogWindow::UpdateWords()
{
    const wxString title = ToWx(model_.WindowTitle());
    if (GetTitle() != title) {
        SetTitle(title);
    }
    std::vector<NavigationList::Item> items;
    for (const DialogView& view : model_.Views()) {
        items.push_back({view.label, IconOf(view), view.HasChanges(), view.HasErrors()});
    }
    const std::size_t none = items.size();
    side_->List().SetItems(std::move(items), pages_->IsSearchShown() ? none : model_.CurrentView());
    bar_->UpdateWords();
    if (bar_->WantedHeight(GetClientSize().x) != bar_->GetSize().y) {
        Arrange();
    }
}

void DialogWindow::Search(const kivcore::UString& text)
{
    ClosePopup();
    if (text.empty()) {
        const wxWindow* focus = FindFocus();
        const bool focusGoes = focus != nullptr && focus->GetParent() == pages_->Current();
        pages_->ShowView(model_.CurrentView());
        if (focusGoes) {
            side_->Search().SetFocus();
        }
    } else {
        pages_->ShowHits(model_.Search(text));
    }
    hasModelChanged_ = true;
}

void DialogWindow::ShowView(std::size_t view)
{
    if (view >= model_.Views().size()) {
        return;
    }
    ClosePopup();
    const wxWindow* focus = FindFocus();
    const bool focusWasOnPage =
        focus != nullptr && pages_->Current() != nullptr && focus->GetParent() == pages_->Current();
    model_.SetCurrentView(view);
    if (side_->IsSearching()) {
        side_->ClearSearch();
    }
    pages_->ShowView(view);
    if (focusWasOnPage) {
        wxWindow* stop = pages_->Current()->NextStop(nullptr, /*backwards=*/false);
        (stop != nullptr ? stop : &side_->List())->SetFocus();
    }
}

void DialogWindow::OpenPopup(wxWindow& owner, const wxRect& anchor, std::vector<PopupItem> items,
                             std::function<void(std::size_t)> chosen)
{
    ClosePopup();
    if (items.empty()) {
        return;
    }
    popupOwner_ = &owner;
    popup_ = new PopupList(*look_, *this, std::move(items),
                           [this, chosen = std::move(chosen)](std::optional<std::size_t> index) {
                               wxWindow* back = popupOwner_;
                               // A copy: closing lets go of what holds the original.
                               const std::function<void(std::size_t)> tell = chosen;
                               ClosePopup();
                               back->SetFocus();
                               if (index) {
                                   tell(*index);
                               }
                           });
    const wxPoint corner = ScreenToClient(owner.GetParent()->ClientToScreen(anchor.GetPosition()));
    popup_->PlaceAt(wxRect(corner, anchor.GetSize()));
    owner.SetFocus();
    wxEvtHandler::AddFilter(this);
}

void DialogWindow::ClosePopup()
{
    if (popup_ == nullptr) {
        return;
    }
    wxEvtHandler::RemoveFilter(this);
    PopupList* popup = std::exchange(popup_, nullptr);
    popupOwner_ = nullptr;
    popup->Hide();
    // The call may come from one of its own events.
    wxTheApp->CallAfter([gone = wxWeakRef<PopupList>(popup)] {
        if (gone) {
            gone->Destroy();
        }
    });
}

int DialogWindow::FilterEvent(wxEvent& event)
{
    if (event.GetEventType() == wxEVT_LEFT_DOWN && popup_ != nullptr &&
        event.GetEventObject() != popup_) {
        const bool onOwner = event.GetEventObject() == popupOwner_;
        look_->Contain([this] { ClosePopup(); });
        // A click on what opened the list only closes it.
        return onOwner ? Event_Processed : Event_Skip;
    }
    return Event_Skip;
}

void DialogWindow::Confirm()
{
    if (isClosing_ || !model_.CanConfirm()) {
        return;
    }
    pages_->FinishTyping();
    model_.EndEdits();
    if (dialog_.Confirm()) {
        EndWith(wxID_OK);
        return;
    }
    hasModelChanged_ = true;
    const std::optional<SearchHit> error = model_.FirstError();
    if (!error || error->field == nullptr) {
        return;
    }
    ShowView(error->view);
    if (FieldView* view = pages_->Reveal(*error->field); view != nullptr) {
        std::vector<wxWindow*> stops;
        view->CollectStops(stops);
        if (!stops.empty()) {
            stops.front()->SetFocus();
        }
    }
}

void DialogWindow::Cancel()
{
    EndWith(wxID_CANCEL);
}

void DialogWindow::EndWith(int result)
{
    if (isClosing_) {
        return;
    }
    ClosePopup();
    RememberPlace();
    isClosing_ = true;
    if (hold_ != nullptr) {
        hold_->Release();
    }
    if (IsModal()) {
        EndModal(result);
    } else {
        SetReturnCode(result);
    }
}

void DialogWindow::WindowLost()
{
    isClosing_ = true;
    if (IsModal()) {
        EndModal(wxID_CANCEL);
    }
}

void DialogWindow::CancelSoon()
{
    CallAfter([this] { look_->Contain([this] { Cancel(); }); });
}

DialogResult DialogWindow::RunModal()
{
    hold_ = std::make_unique<HostHold>(*this, [this] { WindowLost(); });
    look_->Run([this] { FocusFirst(); });
    int result = ShowModal();
    if (!isClosing_) {
        // The loop ended because the program is to end.
        look_->Contain([this] { Cancel(); });
        result = wxID_CANCEL;
    }
    Hide();
    hold_.reset();
    return result == wxID_OK ? DialogResult::kConfirmed : DialogResult::kCancelled;
}

void DialogWindow::BeginScript()
{
    if (!std::exchange(hasScriptBegun_, true) && dialog_.HasScript()) {
        WaitForScript();
    }
}

void DialogWindow::WaitForScript()
{
    stopWaiting_ = CallWhenPainted(*this, [this] {
        stopWaiting_ = {};
        bool goesOn = false;
        look_->Run([&] {
            DriverSurface surface(*this);
            goesOn = dialog_.RunScriptStep(surface);
        });
        if (isClosing_) {
            return;
        }
        look_->Contain([&] {
            if (goesOn) {
                WaitForScript();
            } else {
                Cancel();
            }
        });
    });
}

}  // namespace kivtoolkit
