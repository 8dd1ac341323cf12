// Each control's painter calls, in its states, at scale 1, at scale 2 and mirrored, against
// golden/NAME.calls. KIV_UPDATE_GOLDEN=1 rewrites the files and still fails, so that nobody updates
// them unseen.

#include <kivui/Controls.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "framework/kivui/tests/FakeArtwork.h"
#include "framework/kivui/tests/RecordingPainter.h"

namespace kivui::ui {
namespace {

using Draw = std::function<void(const Drawing&)>;

struct Row {
    const char* title;
    Draw draw;
};

struct Control {
    const char* name;
    std::vector<Row> rows;
};

// A rectangle in design units as the caller would hand it over.
Rect At(const Drawing& drawing, double x, double y, double width, double height)
{
    const double scale = drawing.scale;
    return {x * scale, y * scale, width * scale, height * scale};
}

ControlState Hovered()
{
    ControlState state;
    state.hovered = true;
    return state;
}

ControlState Pressed()
{
    ControlState state = Hovered();
    state.pressed = true;
    return state;
}

ControlState Focused()
{
    ControlState state;
    state.focused = true;
    return state;
}

ControlState Disabled()
{
    ControlState state = Hovered();
    state.disabled = true;
    return state;
}

ControlState Wrong()
{
    ControlState state;
    state.error = true;
    return state;
}

ControlState Selected()
{
    ControlState state;
    state.selected = true;
    return state;
}

ControlState With(ControlState state, bool ControlState::*flag)
{
    state.*flag = true;
    return state;
}

Draw Button(ButtonKind kind, const ControlState& state)
{
    return [=](const Drawing& d) { DrawButton(d, At(d, 10, 10, 80, 28), u"Cancel", kind, state); };
}

Draw Field(const ControlState& state)
{
    return [=](const Drawing& d) { DrawFieldFrame(d, At(d, 10, 20, 200, 28), state); };
}

Draw IconButton(const ControlState& state)
{
    return [=](const Drawing& d) { DrawIconButton(d, At(d, 4, 4, 24, 24), "cross", state); };
}

Draw NavigationItem(const ControlState& state)
{
    return [=](const Drawing& d) {
        DrawNavigationItem(d, At(d, 0, 32, 200, 32), u"Camera", "camera", state);
    };
}

Draw Chip(const ControlState& state, bool crossHovered = false)
{
    return
        [=](const Drawing& d) { DrawChip(d, At(d, 8, 8, 80, 24), u"winter", state, crossHovered); };
}

Draw Stars(int value, int hoveredStars, const ControlState& state)
{
    return [=](const Drawing& d) {
        DrawStars(d, At(d, 10, 10, 200, 28), 3, value, hoveredStars, state);
    };
}

Draw Check(CheckValue value, const ControlState& state)
{
    return [=](const Drawing& d) { DrawCheck(d, At(d, 10, 10, 120, 24), u"Marked", value, state); };
}

Draw Message(MessageKind kind)
{
    return
        [=](const Drawing& d) { DrawMessage(d, At(d, 10, 50, 300, 17), u"Last day: 29.", kind); };
}

Draw TextLine(TextRole role, TextAlign align, bool disabled = false)
{
    return [=](const Drawing& d) {
        DrawTextLine(d, u"Title", At(d, 10, 10, 100, 20), role, align, disabled);
    };
}

std::vector<Control> Controls()
{
    return {
        {"button",
         {{"plain", Button(ButtonKind::kPlain, {})},
          {"plain hovered", Button(ButtonKind::kPlain, Hovered())},
          {"plain pressed", Button(ButtonKind::kPlain, Pressed())},
          {"plain focused", Button(ButtonKind::kPlain, Focused())},
          {"plain disabled", Button(ButtonKind::kPlain, Disabled())},
          {"confirming", Button(ButtonKind::kConfirming, {})},
          {"confirming hovered", Button(ButtonKind::kConfirming, Hovered())},
          {"confirming pressed", Button(ButtonKind::kConfirming, Pressed())},
          {"confirming focused", Button(ButtonKind::kConfirming, Focused())},
          {"confirming disabled", Button(ButtonKind::kConfirming, Disabled())},
          {"quiet", Button(ButtonKind::kQuiet, {})},
          {"quiet hovered", Button(ButtonKind::kQuiet, Hovered())},
          {"quiet focused", Button(ButtonKind::kQuiet, Focused())},
          {"quiet disabled", Button(ButtonKind::kQuiet, Disabled())}}},
        {"icon_button",
         {{"normal", IconButton({})},
          {"hovered", IconButton(Hovered())},
          {"pressed", IconButton(Pressed())},
          {"focused", IconButton(Focused())},
          {"disabled", IconButton(Disabled())},
          {"revert", [](const Drawing& d) { DrawRevertButton(d, At(d, 4, 4, 24, 24), {}); }}}},
        {"field",
         {{"normal", Field({})},
          {"hovered", Field(Hovered())},
          {"focused", Field(Focused())},
          {"error", Field(Wrong())},
          {"error focused", Field(With(Wrong(), &ControlState::focused))},
          {"disabled", Field(Disabled())}}},
        {"navigation_item",
         {{"normal", NavigationItem({})},
          {"hovered", NavigationItem(Hovered())},
          {"selected", NavigationItem(Selected())},
          {"selected hovered", NavigationItem(With(Selected(), &ControlState::hovered))},
          {"selected focused", NavigationItem(With(Selected(), &ControlState::focused))},
          {"changed", NavigationItem(With({}, &ControlState::changed))},
          {"disabled", NavigationItem(Disabled())}}},
        {"chip",
         {{"normal", Chip({})},
          {"hovered", Chip(Hovered())},
          {"hovered cross", Chip(Hovered(), true)},
          {"focused", Chip(Focused())},
          {"selected", Chip(Selected())},
          {"error", Chip(Wrong())},
          {"disabled", Chip(Disabled())}}},
        {"stars",
         {{"none", Stars(0, 0, {})},
          {"two", Stars(2, 0, {})},
          {"two, three hovered", Stars(2, 3, Hovered())},
          {"focused", Stars(1, 0, Focused())},
          {"disabled ignores hovering", Stars(1, 3, Disabled())},
          {"rejected shows as none", Stars(-1, 0, {})}}},
        {"check",
         {{"off", Check(CheckValue::kOff, {})},
          {"off hovered", Check(CheckValue::kOff, Hovered())},
          {"off focused", Check(CheckValue::kOff, Focused())},
          {"off disabled", Check(CheckValue::kOff, Disabled())},
          {"on", Check(CheckValue::kOn, {})},
          {"on focused", Check(CheckValue::kOn, Focused())},
          {"on pressed", Check(CheckValue::kOn, Pressed())},
          {"on disabled", Check(CheckValue::kOn, Disabled())},
          {"mixed", Check(CheckValue::kMixed, {})}}},
        {"message",
         {{"hint", Message(MessageKind::kHint)},
          {"warning", Message(MessageKind::kWarning)},
          {"error", Message(MessageKind::kError)}}},
        {"mark",
         {{"as wide as its words",
           [](const Drawing& d) { DrawMark(d, At(d, 10, 10, 64, 18), u"From Exif"); }},
          {"narrower", [](const Drawing& d) { DrawMark(d, At(d, 10, 10, 20, 18), u"From Exif"); }},
          {"too narrow for words",
           [](const Drawing& d) { DrawMark(d, At(d, 10, 10, 8, 18), u"From Exif"); }}}},
        {"text",
         {{"body", TextLine(TextRole::kBody, TextAlign::kStart)},
          {"label", TextLine(TextRole::kLabel, TextAlign::kStart)},
          {"hint at the end", TextLine(TextRole::kHint, TextAlign::kEnd)},
          {"placeholder", TextLine(TextRole::kPlaceholder, TextAlign::kStart)},
          {"error", TextLine(TextRole::kErrorText, TextAlign::kStart)},
          {"warning", TextLine(TextRole::kWarningText, TextAlign::kStart)},
          {"group heading", TextLine(TextRole::kGroupHeading, TextAlign::kStart)},
          {"title", TextLine(TextRole::kTitle, TextAlign::kStart)},
          {"accent text", TextLine(TextRole::kAccentText, TextAlign::kCenter)},
          {"link", TextLine(TextRole::kLink, TextAlign::kStart)},
          {"disabled body", TextLine(TextRole::kBody, TextAlign::kStart, true)},
          {"empty text draws nothing",
           [](const Drawing& d) { DrawTextLine(d, u"", At(d, 0, 0, 10, 10), TextRole::kBody); }}}},
        {"lines",
         {{"horizontal",
           [](const Drawing& d) {
               DrawHairline(d, At(d, 0, 588.3, 880, 52), HairlineDirection::kHorizontal);
           }},
          {"upright",
           [](const Drawing& d) {
               DrawHairline(d, At(d, 200, 0, 10, 588), HairlineDirection::kUpright);
           }},
          {"changed dot", [](const Drawing& d) { DrawChangedDot(d, At(d, 10, 10, 12, 17)); }},
          {"focus ring", [](const Drawing& d) { DrawFocusRing(d, At(d, 10, 10, 50, 20), 4); }}}},
    };
}

struct Variant {
    const char* name;
    double scale;
    bool mirrored;
};

constexpr Variant kVariants[] = {
    {"scale 1", 1, false}, {"scale 2", 2, false}, {"mirrored", 1, true}};

std::string Record(const Control& control)
{
    const FakeArtwork artwork;
    const boost::intrusive_ptr<NumberedTheme> theme(new NumberedTheme);
    std::string text;
    for (const Variant& variant : kVariants) {
        for (const Row& row : control.rows) {
            RecordingPainter painter;
            row.draw(Drawing{painter, *theme, variant.scale, variant.mirrored});
            text.append("# ").append(row.title).append(", ").append(variant.name).append("\n");
            for (const std::string& call : painter.Calls()) {
                text.append(call).append("\n");
            }
        }
    }
    return text;
}

TEST(Controls, DrawAsTheGoldenListsSay)
{
    for (const Control& control : Controls()) {
        SCOPED_TRACE(control.name);
        const std::string path =
            std::string(KIVUI_GOLDEN_DIR "/").append(control.name).append(".calls");
        const std::string drawn = Record(control);
        if (std::getenv("KIV_UPDATE_GOLDEN") != nullptr) {
            std::ofstream(path, std::ios::binary) << drawn;
            ADD_FAILURE() << path << " was rewritten: look at it, then run without the switch";
            continue;
        }
        std::ostringstream wanted;
        wanted << std::ifstream(path, std::ios::binary).rdbuf();
        EXPECT_EQ(drawn, wanted.str());
    }
}

class ControlSizes : public testing::Test {
protected:
    Drawing At(double scale) { return Drawing{painter_, *theme_, scale, false}; }

private:
    RecordingPainter painter_;
    boost::intrusive_ptr<NumberedTheme> theme_{new NumberedTheme};
};

TEST_F(ControlSizes, FollowTheirTexts)
{
    // Six units of 13 pixels are 39 wide: below the smallest button. Twenty are 130.
    EXPECT_EQ(MeasureButton(At(1), u"Cancel", ButtonKind::kPlain).width, 80);
    EXPECT_EQ(MeasureButton(At(1), u"Cancel", ButtonKind::kPlain).height, 28);
    EXPECT_EQ(MeasureButton(At(2), u"Cancel", ButtonKind::kPlain).width, 160);
    EXPECT_EQ(MeasureButton(At(1), u"Twenty units of text", ButtonKind::kPlain).width, 162);
    EXPECT_EQ(MeasureButton(At(1), u"fr", ButtonKind::kQuiet).width, 28);
    EXPECT_EQ(MeasureButton(At(1), u"fr", ButtonKind::kQuiet).height, 24);
    EXPECT_EQ(MeasureChip(At(1), u"winter").width, 69);
    EXPECT_EQ(MeasureChip(At(1.5), u"winter").width, 104);
    EXPECT_EQ(MeasureChip(At(2), u"winter").height, 48);
    EXPECT_EQ(MeasureMark(At(1), u"From Exif").width, 64);
    EXPECT_EQ(MeasureMark(At(2), u"From Exif").height, 35);
    EXPECT_EQ(MeasureCheck(At(1), u"Marked").width, 63);
    EXPECT_EQ(MeasureCheck(At(1), u"").width, 16);
    EXPECT_EQ(LineHeight(At(1), TextRole::kBody), 19);
    EXPECT_EQ(LineHeight(At(2), TextRole::kTitle), 53);
    EXPECT_EQ(MessageIndent(At(1), MessageKind::kHint), 0);
    EXPECT_EQ(MessageIndent(At(2), MessageKind::kError), 40);
}

TEST_F(ControlSizes, PartsLieWhereTheyAreDrawn)
{
    const Drawing drawing = At(1);
    const Rect text = FieldTextRect(drawing, {10, 20, 200, 28});
    EXPECT_EQ(text.x, 19);
    EXPECT_EQ(text.y, 21);
    EXPECT_EQ(text.width, 182);
    EXPECT_EQ(text.height, 26);
    EXPECT_EQ(ChipCrossRect(drawing, {8, 8, 80, 24}).x, 68);
    EXPECT_EQ(StarRect(drawing, {10, 10, 200, 28}, 2).x, 58);
    EXPECT_EQ(StarRect(drawing, {10, 10, 200, 28}, 2).y, 12);
    Drawing mirrored = drawing;
    mirrored.mirrored = true;
    EXPECT_EQ(ChipCrossRect(mirrored, {8, 8, 80, 24}).x, 8);
    EXPECT_EQ(StarRect(mirrored, {10, 10, 200, 28}, 0).x, 186);
}

struct SnapCase {
    double units;
    double scale;
    double want;
};

constexpr SnapCase kSnapCases[] = {
    {1, 1, 1},
    {1, 1.25, 1},
    {1, 1.5, 2},
    {1, 0.5, 1},
    {2, 1.25, 3},
    {28, 1.25, 35},
    {1, 4, 4},
    // Nothing vanishes, but nothing comes from nothing either.
    {0.1, 1, 1},
    {0, 2, 0},
};

TEST(SnapUnits, Cases)
{
    for (const SnapCase& row : kSnapCases) {
        SCOPED_TRACE(testing::Message() << row.units << " at " << row.scale);
        EXPECT_EQ(SnapUnits(row.units, row.scale), row.want);
    }
}

TEST(SnapRect, KeepsNeighboursTouching)
{
    const Rect left = SnapRect({0, 0, 33.4, 10.5});
    const Rect right = SnapRect({33.4, 0, 33.4, 10.5});
    EXPECT_EQ(left.x + left.width, right.x);
    EXPECT_EQ(left.height, 11);
    EXPECT_EQ(right.width, 34);
}

class Icons : public testing::Test {
protected:
    std::vector<std::string> Draw(std::string_view icon, const Rect& rect, double scale,
                                  double deviceScale, std::optional<ThemeColor> color = {})
    {
        RecordingPainter painter;
        painter.deviceScale = deviceScale;
        DrawIcon(Drawing{painter, *theme_, scale, false}, icon, rect, color);
        return painter.Calls();
    }

private:
    boost::intrusive_ptr<NumberedTheme> theme_{new NumberedTheme};
};

using Calls = std::vector<std::string>;

TEST_F(Icons, FillTheSquareInTheMiddleOfTheirPlace)
{
    const FakeArtwork artwork;
    EXPECT_EQ(Draw("cross", {10, 20, 30, 16}, 1, 1), Calls{"icon cross 16x16 at 17,20 icon"});
    EXPECT_EQ(Draw("cross", {10, 20, 24, 24}, 1.5, 1), Calls{"icon cross 24x24 at 10,20 icon"});
    EXPECT_EQ(Draw("star", {0, 0, 16, 16}, 1, 1, kLink), Calls{"icon star 16x16 at 0,0 link"});
}

TEST_F(Icons, HaveThePixelsOfTheDevice)
{
    const FakeArtwork artwork;
    EXPECT_EQ(Draw("cross", {10, 20, 16, 16}, 1, 2), Calls{"icon cross 32x32 at 10,20 icon"});
    EXPECT_EQ(Draw("cross", {10, 20, 12, 12}, 0.75, 2), Calls{"icon cross 24x24 at 10,20 icon"});
}

TEST_F(Icons, AreLeftOutWithoutArtworkOrHandler)
{
    EXPECT_EQ(Draw("cross", {0, 0, 16, 16}, 1, 1), Calls{});
    const FakeArtwork artwork;
    EXPECT_EQ(Draw("unknown", {0, 0, 16, 16}, 1, 1), Calls{});
    EXPECT_EQ(Draw("cross", {0, 0, 0, 16}, 1, 1), Calls{});
}

TEST(Controls, TooSmallRectanglesDrawNoTextAndDoNotFail)
{
    const boost::intrusive_ptr<NumberedTheme> theme(new NumberedTheme);
    RecordingPainter painter;
    const Drawing drawing{painter, *theme, 2, false};
    for (const double side : {0.0, 1.0, 5.0}) {
        const Rect rect{0, 0, side, side};
        DrawNavigationItem(drawing, rect, u"Camera", "camera", Selected());
        DrawChip(drawing, rect, u"winter", Hovered());
        DrawCheck(drawing, rect, u"Marked", CheckValue::kOn, {});
        EXPECT_GE(FieldTextRect(drawing, rect).width, -4) << side;
    }
    for (const std::string& call : painter.Calls()) {
        EXPECT_NE(call.substr(0, 4), "text") << call;
    }
}

}  // namespace
}  // namespace kivui::ui
