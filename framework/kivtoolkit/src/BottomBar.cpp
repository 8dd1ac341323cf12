#include "framework/kivtoolkit/src/BottomBar.h"

#include "framework/kivtoolkit/src/NativeText.h"
#include "framework/kivtoolkit/src/SystemWindow.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

// Design units.
constexpr double kMargin = 16;
constexpr double kButtonGap = 8;
constexpr double kWordsGap = 16;
constexpr double kShortestNote = 60;

}  // namespace

BottomBar::BottomBar(Look& look, wxWindow& parent, std::function<void()> confirmed,
                     std::function<void()> cancelled)
    : wxWindow(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_NONE), look_(look)
{
    ok_ = new PushButton(look_, *this, ui::kRaisedGround, ui::ButtonKind::kConfirming,
                         std::move(confirmed));
    cancel_ = new PushButton(look_, *this, ui::kRaisedGround, ui::ButtonKind::kPlain,
                             std::move(cancelled));
    ok_->SetLabelText(look_.Model().ConfirmLabel());
    cancel_->SetLabelText(look_.Model().CancelLabel());
    ok_->SetDisabled(!look_.Model().CanConfirm());
    const kivmetadataui::PhotoNote& note = look_.Model().Note();
    if (!note.text.empty()) {
        note_ = new QuietWords(look_, *this, ui::kRaisedGround, QuietWords::Shape::kLine);
        note_->SetText(note.text, note.detail);
    }
    BindPainting(look_, *this, ui::kRaisedGround,
                 [this](const ui::Drawing& drawing, const ui::Rect& area) { Draw(drawing, area); });
    BindContained(look_, *this, wxEVT_SIZE, [this](wxSizeEvent&) { Arrange(); });
}

void BottomBar::UpdateWords()
{
    ok_->SetDisabled(!look_.Model().CanConfirm());
    const kivcore::UString& message = look_.Model().Message();
    DescribeControl(*this, AccessibleRole::kStatus,
                    message.empty() ? look_.Model().SummaryText() : message, {});
    PlaceNote();
    Refresh();
}

ui::Rect BottomBar::WordsRect(const ui::Rect& area)
{
    const double margin = look_.Px(kMargin);
    return {margin, 0, area.width - 2 * margin - ButtonsWidth() - look_.Px(kWordsGap), area.height};
}

// Behind the summary; a failure's message takes all the room.
void BottomBar::PlaceNote()
{
    if (note_ == nullptr) {
        return;
    }
    const ui::Rect area = FromWx(GetClientRect());
    ui::Rect place = WordsRect(area);
    const kivcore::UString summary = look_.Model().SummaryText();
    if (!summary.empty()) {
        const ui::Drawing drawing = look_.Measuring();
        const ui::TextStyle style = ui::StyleOfText(drawing, ui::TextRole::kHint);
        const double taken =
            std::ceil(drawing.painter.MeasureText(summary, style).width) + look_.Px(kWordsGap);
        place.x += taken;
        place.width -= taken;
    }
    const wxSize wanted = note_->WantedSize();
    place.y = std::floor((area.height - wanted.y) / 2);
    place.height = wanted.y;
    place.width = std::min<double>(place.width, wanted.x);
    note_->Show(look_.Model().Message().empty() && place.width >= look_.Px(kShortestNote));
    note_->Place(ToWx(look_.IsMirrored() ? ui::MirrorRect(place, area) : place));
}

int BottomBar::ButtonsWidth()
{
    return ok_->WantedSize().x + cancel_->WantedSize().x + look_.Px(kButtonGap);
}

int BottomBar::WantedHeight(int width)
{
    lines_.clear();
    const kivcore::UString& message = look_.Model().Message();
    if (!message.empty()) {
        const double indent = ui::MessageIndent(look_.Measuring(), ui::MessageKind::kError);
        const int room = width - 2 * look_.Px(kMargin) - ButtonsWidth() - look_.Px(kWordsGap) -
                         static_cast<int>(indent);
        lines_ = WrapText(look_.Font(ui::TextRole::kErrorText), message, room);
    }
    const int words = static_cast<int>(lines_.size()) * look_.LineHeight(ui::TextRole::kErrorText) +
                      look_.Px(kMargin);
    return std::max(look_.Px(ui::metrics::kBottomBarHeight), words);
}

void BottomBar::Arrange()
{
    const wxSize client = GetClientSize();
    std::array<PushButton*, 2> fromTheEnd = {ok_, cancel_};
    if (!ConfirmingButtonStandsLast()) {
        std::reverse(fromTheEnd.begin(), fromTheEnd.end());
    }
    int x = client.x - look_.Px(kMargin);
    for (PushButton* button : fromTheEnd) {
        const wxSize size = button->WantedSize();
        x -= size.x;
        const int place = look_.IsMirrored() ? client.x - x - size.x : x;
        button->Place(wxRect(place, (client.y - size.y) / 2, size.x, size.y));
        x -= look_.Px(kButtonGap);
    }
    PlaceNote();
    Refresh();
}

void BottomBar::Draw(const ui::Drawing& drawing, const ui::Rect& area)
{
    ui::DrawHairline(drawing, area, ui::HairlineDirection::kHorizontal);
    ui::Rect words = WordsRect(area);
    if (look_.IsMirrored()) {
        words = ui::MirrorRect(words, area);
    }
    if (lines_.empty()) {
        ui::DrawTextLine(drawing, look_.Model().SummaryText(), words, ui::TextRole::kHint);
        return;
    }
    const double height = look_.LineHeight(ui::TextRole::kErrorText);
    words.y = (area.height - height * static_cast<double>(lines_.size())) / 2;
    words.height = height;
    const double indent = ui::MessageIndent(drawing, ui::MessageKind::kError);
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (i == 0) {
            ui::DrawMessage(drawing, words, lines_[i], ui::MessageKind::kError);
        } else {
            ui::Rect rest = words;
            rest.width -= indent;
            rest.x += look_.IsMirrored() ? 0 : indent;
            ui::DrawTextLine(drawing, lines_[i], rest, ui::TextRole::kErrorText);
        }
        words.y += height;
    }
}

}  // namespace kivtoolkit
