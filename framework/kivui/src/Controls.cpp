#include <kivui/Controls.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <kivui/IconCache.h>

namespace kivui::ui {

namespace {

struct TextRow {
    TextRole role;
    ThemeFontSize size;
    FontWeight weight;
    ThemeColor color;
};

constexpr TextRow kTextRows[] = {
    {TextRole::kBody, kBodySize, FontWeight::kNormal, kText},
    {TextRole::kLabel, kLabelSize, FontWeight::kMedium, kSecondaryText},
    {TextRole::kHint, kLabelSize, FontWeight::kNormal, kSecondaryText},
    {TextRole::kPlaceholder, kBodySize, FontWeight::kNormal, kPlaceholder},
    {TextRole::kErrorText, kLabelSize, FontWeight::kNormal, kError},
    {TextRole::kWarningText, kLabelSize, FontWeight::kNormal, kWarning},
    {TextRole::kGroupHeading, kBodySize, FontWeight::kSemibold, kText},
    {TextRole::kTitle, kTitleSize, FontWeight::kSemibold, kText},
    {TextRole::kAccentText, kBodySize, FontWeight::kMedium, kAccentText},
    {TextRole::kLink, kLabelSize, FontWeight::kMedium, kLink},
};

const TextRow& RowOf(TextRole role)
{
    const auto* const row = std::find_if(std::begin(kTextRows), std::end(kTextRows),
                                         [role](const TextRow& r) { return r.role == role; });
    return row == std::end(kTextRows) ? kTextRows[0] : *row;
}

struct ButtonRow {
    ButtonKind kind;
    TextRole role;
    double paddingUnits;
    double minWidthUnits;
    double heightUnits;
};

constexpr ButtonRow kButtonRows[] = {
    {ButtonKind::kPlain, TextRole::kBody, metrics::kButtonPadding, metrics::kButtonMinWidth,
     metrics::kButtonHeight},
    {ButtonKind::kConfirming, TextRole::kAccentText, metrics::kButtonPadding,
     metrics::kButtonMinWidth, metrics::kButtonHeight},
    {ButtonKind::kQuiet, TextRole::kLink, metrics::kSmallButtonPadding, 0, metrics::kIconButton},
};

const ButtonRow& RowOf(ButtonKind kind)
{
    const auto* const row = std::find_if(std::begin(kButtonRows), std::end(kButtonRows),
                                         [kind](const ButtonRow& r) { return r.kind == kind; });
    return row == std::end(kButtonRows) ? kButtonRows[0] : *row;
}

Rect Inflate(const Rect& rect, double by)
{
    return {rect.x - by, rect.y - by, rect.width + 2 * by, rect.height + 2 * by};
}

// The rectangle of `size` in the middle of `rect`, on whole pixels.
Rect Middle(const Rect& rect, double size)
{
    return {rect.x + std::floor((rect.width - size) / 2),
            rect.y + std::floor((rect.height - size) / 2), size, size};
}

// Cuts `width` off at the leading edge of `rest`; at the trailing one if `width` is negative. All
// layout is done left to right and mirrored when it is drawn.
Rect Cut(Rect& rest, double width)
{
    const double taken = std::clamp(std::abs(width), 0.0, std::max(0.0, rest.width));
    Rect piece = rest;
    piece.width = taken;
    rest.width -= taken;
    if (width < 0) {
        piece.x = rest.x + rest.width;
    } else {
        rest.x += taken;
    }
    return piece;
}

Rect Placed(const Drawing& drawing, const Rect& inner, const Rect& outer)
{
    return drawing.mirrored ? MirrorRect(inner, outer) : inner;
}

// The colour that all of an icon takes; none: its own.
std::optional<ThemeColor> IconColorOf(const ControlState& state)
{
    return state.disabled ? std::optional(kDisabledText) : std::nullopt;
}

// What hovering and pressing lay over a ground.
void FillTint(const Drawing& drawing, const Rect& rect, double radius, const ControlState& state)
{
    if (state.disabled || !(state.hovered || state.pressed)) {
        return;
    }
    drawing.painter.Fill(rect, radius, drawing.Color(state.pressed ? kPressedTint : kHoverTint));
}

ThemeColor AccentOf(const ControlState& state)
{
    if (state.disabled) {
        return kDisabledGround;
    }
    if (state.pressed) {
        return kAccentPressed;
    }
    return state.hovered ? kAccentHover : kAccent;
}

ThemeColor FrameOf(const ControlState& state)
{
    if (state.disabled) {
        return kDisabledFrame;
    }
    if (state.error) {
        return kError;
    }
    if (state.focused) {
        return kFocus;
    }
    return state.hovered ? kFieldFrameHover : kFieldFrame;
}

void DrawFramedGround(const Drawing& drawing, const Rect& rect, double radius,
                      const ControlState& state)
{
    drawing.painter.Fill(rect, radius,
                         drawing.Color(state.disabled ? kDisabledGround : kFieldGround));
    drawing.painter.Frame(rect, radius, SnapUnits(metrics::kFrameWidth, drawing.scale),
                          drawing.Color(FrameOf(state)));
}

// A ring of the accent would melt into a control that is filled with it: a line inside parts them.
void DrawFilledFocus(const Drawing& drawing, const Rect& rect)
{
    drawing.painter.Frame(rect, metrics::kCornerRadius * drawing.scale,
                          SnapUnits(metrics::kFrameWidth, drawing.scale),
                          drawing.Color(kAccentText));
}

}  // namespace

double SnapUnits(double units, double scale)
{
    const double pixels = std::floor(units * scale + 0.5);
    return units > 0 ? std::max(1.0, pixels) : pixels;
}

Rect SnapRect(const Rect& rect)
{
    const double left = std::floor(rect.x + 0.5);
    const double top = std::floor(rect.y + 0.5);
    return {left, top, std::floor(rect.x + rect.width + 0.5) - left,
            std::floor(rect.y + rect.height + 0.5) - top};
}

Rect MirrorRect(const Rect& inner, const Rect& outer)
{
    Rect mirrored = inner;
    mirrored.x = outer.x + (outer.x + outer.width) - (inner.x + inner.width);
    return mirrored;
}

TextStyle StyleOfText(const Drawing& drawing, TextRole role, bool disabled)
{
    const TextRow& row = RowOf(role);
    TextStyle style;
    style.sizePixels = drawing.theme.FontSize(row.size) * drawing.scale;
    style.weight = row.weight;
    style.color = drawing.Color(disabled ? kDisabledText : row.color);
    style.align = drawing.mirrored ? TextAlign::kEnd : TextAlign::kStart;
    return style;
}

double LineHeight(const Drawing& drawing, TextRole role)
{
    return std::ceil(drawing.theme.FontSize(RowOf(role).size) * metrics::kLineHeight *
                     drawing.scale);
}

void DrawTextLine(const Drawing& drawing, kivcore::UStringView text, const Rect& rect,
                  TextRole role, TextAlign align, bool disabled)
{
    if (text.empty() || rect.width <= 0) {
        return;
    }
    TextStyle style = StyleOfText(drawing, role, disabled);
    if (align == TextAlign::kCenter) {
        style.align = TextAlign::kCenter;
    } else if (align == TextAlign::kEnd) {
        style.align = drawing.mirrored ? TextAlign::kStart : TextAlign::kEnd;
    }
    drawing.painter.Text(text, rect, style);
}

void DrawIcon(const Drawing& drawing, std::string_view icon, const Rect& rect,
              std::optional<ThemeColor> color)
{
    std::vector<IconColor> colors;
    if (color) {
        for (const IconVariable& variable : IconVariables()) {
            colors.push_back({variable.name, drawing.Color(*color)});
        }
    }
    const double deviceScale = drawing.painter.DeviceScale();
    const double side = std::min(rect.width, rect.height);
    const std::shared_ptr<const Pixels> pixels = IconCache::Draw(
        icon, drawing.theme,
        {side / drawing.scale, drawing.scale * deviceScale, drawing.mirrored, colors});
    if (pixels != nullptr) {
        drawing.painter.DrawPixels(*pixels,
                                   {rect.x + (rect.width - pixels->width / deviceScale) / 2,
                                    rect.y + (rect.height - pixels->height / deviceScale) / 2});
    }
}

void DrawFocusRing(const Drawing& drawing, const Rect& rect, double radiusUnits)
{
    const double width = SnapUnits(metrics::kFocusWidth, drawing.scale);
    drawing.painter.Frame(Inflate(rect, width), radiusUnits * drawing.scale + width, width,
                          drawing.Color(kFocus));
}

void DrawHairline(const Drawing& drawing, const Rect& rect, HairlineDirection direction)
{
    Rect line = SnapRect(rect);
    (direction == HairlineDirection::kHorizontal ? line.height : line.width) =
        SnapUnits(metrics::kFrameWidth, drawing.scale);
    drawing.painter.Fill(line, 0, drawing.Color(kHairline));
}

void DrawButton(const Drawing& drawing, const Rect& rect, kivcore::UStringView label,
                ButtonKind kind, const ControlState& state)
{
    const Rect place = SnapRect(rect);
    const double radius = metrics::kCornerRadius * drawing.scale;
    switch (kind) {
        case ButtonKind::kPlain: {
            // The ring alone shows the focus; a frame in its colour would look like a field.
            ControlState framed = state;
            framed.focused = false;
            DrawFramedGround(drawing, place, radius, framed);
            FillTint(drawing, place, radius, state);
            break;
        }
        case ButtonKind::kConfirming:
            drawing.painter.Fill(place, radius, drawing.Color(AccentOf(state)));
            if (state.focused) {
                DrawFilledFocus(drawing, place);
            }
            break;
        case ButtonKind::kQuiet:
            FillTint(drawing, place, radius, state);
            break;
    }
    DrawTextLine(drawing, label, place, RowOf(kind).role, TextAlign::kCenter, state.disabled);
    if (state.focused) {
        DrawFocusRing(drawing, place, metrics::kCornerRadius);
    }
}

Size MeasureButton(const Drawing& drawing, kivcore::UStringView label, ButtonKind kind)
{
    const ButtonRow& row = RowOf(kind);
    const double text =
        std::ceil(drawing.painter.MeasureText(label, StyleOfText(drawing, row.role)).width);
    return {std::max(SnapUnits(row.minWidthUnits, drawing.scale),
                     text + 2 * SnapUnits(row.paddingUnits, drawing.scale)),
            SnapUnits(row.heightUnits, drawing.scale)};
}

void DrawIconButton(const Drawing& drawing, const Rect& rect, std::string_view icon,
                    const ControlState& state)
{
    const Rect place = SnapRect(rect);
    FillTint(drawing, place, metrics::kCornerRadius * drawing.scale, state);
    DrawIcon(drawing, icon, Middle(place, SnapUnits(metrics::kSign, drawing.scale)),
             IconColorOf(state));
    if (state.focused) {
        DrawFocusRing(drawing, place, metrics::kCornerRadius);
    }
}

void DrawRevertButton(const Drawing& drawing, const Rect& rect, const ControlState& state)
{
    DrawIconButton(drawing, rect, icons::kRevert, state);
}

void DrawFieldFrame(const Drawing& drawing, const Rect& rect, const ControlState& state)
{
    const Rect place = SnapRect(rect);
    DrawFramedGround(drawing, place, metrics::kCornerRadius * drawing.scale, state);
    if (state.focused) {
        DrawFocusRing(drawing, place, metrics::kCornerRadius);
    }
}

Rect FieldTextRect(const Drawing& drawing, const Rect& rect)
{
    Rect inner = Inflate(SnapRect(rect), -SnapUnits(metrics::kFrameWidth, drawing.scale));
    const double padding = SnapUnits(metrics::kFieldPadding, drawing.scale);
    Cut(inner, padding);
    Cut(inner, -padding);
    return inner;
}

void DrawNavigationItem(const Drawing& drawing, const Rect& rect, kivcore::UStringView name,
                        std::string_view icon, const ControlState& state)
{
    const Rect place = SnapRect(rect);
    const double padding = SnapUnits(metrics::kNavigationPadding, drawing.scale);
    if (state.selected) {
        drawing.painter.Fill(place, 0, drawing.Color(kAccentTint));
        Rect rest = place;
        const Rect bar = Cut(rest, SnapUnits(metrics::kNavigationBar, drawing.scale));
        drawing.painter.Fill(Placed(drawing, bar, place), 0, drawing.Color(kAccent));
    } else {
        FillTint(drawing, place, 0, state);
    }

    Rect rest = place;
    Cut(rest, padding);
    Cut(rest, -padding);
    const double iconSize = SnapUnits(metrics::kNavigationIcon, drawing.scale);
    DrawIcon(drawing, icon, Placed(drawing, Middle(Cut(rest, iconSize), iconSize), place),
             IconColorOf(state));
    Cut(rest, SnapUnits(metrics::kGap, drawing.scale));
    // The dot's place stays free, so that no name jumps when its view changes.
    const Rect dot = Cut(rest, -SnapUnits(metrics::kChangedDot, drawing.scale));
    Cut(rest, -SnapUnits(metrics::kGap, drawing.scale));
    DrawTextLine(drawing, name, Placed(drawing, rest, place), TextRole::kBody, TextAlign::kStart,
                 state.disabled);
    if (state.changed) {
        DrawChangedDot(drawing, Placed(drawing, dot, place));
    }
    if (state.focused) {
        // Inside: items touch each other and the window's edge.
        const double width = SnapUnits(metrics::kFocusWidth, drawing.scale);
        drawing.painter.Frame(place, 0, width, drawing.Color(kFocus));
    }
}

void DrawChip(const Drawing& drawing, const Rect& rect, kivcore::UStringView text,
              const ControlState& state, bool crossHovered)
{
    const Rect place = SnapRect(rect);
    const double radius = std::min(metrics::kChipRadius * drawing.scale, place.height / 2);
    ThemeColor ground = state.selected ? kAccentTint : kChipGround;
    if (state.disabled) {
        ground = kDisabledGround;
    }
    drawing.painter.Fill(place, radius, drawing.Color(ground));
    FillTint(drawing, place, radius, state);
    if (state.error) {
        drawing.painter.Frame(place, radius, SnapUnits(metrics::kFrameWidth, drawing.scale),
                              drawing.Color(kError));
    }

    Rect rest = place;
    Cut(rest, SnapUnits(metrics::kChipPadding, drawing.scale));
    Cut(rest, -SnapUnits(metrics::kChipCross, drawing.scale));
    DrawTextLine(drawing, text, Placed(drawing, rest, place), TextRole::kBody, TextAlign::kStart,
                 state.disabled);

    if (!state.disabled && (state.hovered || state.focused)) {
        const Rect cross =
            Middle(ChipCrossRect(drawing, place), SnapUnits(metrics::kSign, drawing.scale));
        if (crossHovered) {
            drawing.painter.Fill(cross, cross.width / 2, drawing.Color(kPressedTint));
        }
        DrawIcon(drawing, icons::kCross, cross);
    }
    if (state.focused) {
        DrawFocusRing(drawing, place, radius / drawing.scale);
    }
}

Size MeasureChip(const Drawing& drawing, kivcore::UStringView text)
{
    const double words =
        std::ceil(drawing.painter.MeasureText(text, StyleOfText(drawing, TextRole::kBody)).width);
    return {words + SnapUnits(metrics::kChipPadding, drawing.scale) +
                SnapUnits(metrics::kChipCross, drawing.scale),
            SnapUnits(metrics::kChipHeight, drawing.scale)};
}

Rect ChipCrossRect(const Drawing& drawing, const Rect& rect)
{
    const Rect place = SnapRect(rect);
    Rect rest = place;
    return Placed(drawing, Cut(rest, -SnapUnits(metrics::kChipCross, drawing.scale)), place);
}

void DrawStars(const Drawing& drawing, const Rect& rect, int count, int value, int hoveredStars,
               const ControlState& state)
{
    const int filled = hoveredStars > 0 && !state.disabled ? hoveredStars : value;
    for (int i = 0; i < count; ++i) {
        DrawIcon(drawing, i < filled ? icons::kStar : icons::kStarEmpty,
                 Middle(StarRect(drawing, rect, i), SnapUnits(metrics::kSign, drawing.scale)),
                 IconColorOf(state));
    }
    if (state.focused && count > 0) {
        const Rect first = StarRect(drawing, rect, 0);
        const Rect last = StarRect(drawing, rect, count - 1);
        const double left = std::min(first.x, last.x);
        const double right = std::max(first.x, last.x) + first.width;
        DrawFocusRing(drawing, {left, first.y, right - left, first.height}, metrics::kCornerRadius);
    }
}

Rect StarRect(const Drawing& drawing, const Rect& rect, int index)
{
    const Rect place = SnapRect(rect);
    const double side = SnapUnits(metrics::kStar, drawing.scale);
    const Rect star{place.x + index * side, place.y + std::floor((place.height - side) / 2), side,
                    side};
    return Placed(drawing, star, place);
}

void DrawCheck(const Drawing& drawing, const Rect& rect, kivcore::UStringView label,
               CheckValue value, const ControlState& state)
{
    const Rect place = SnapRect(rect);
    const double side = SnapUnits(metrics::kCheckBox, drawing.scale);
    const double radius = metrics::kCornerRadius * drawing.scale;
    Rect rest = place;
    const Rect box = Placed(drawing, Middle(Cut(rest, side), side), place);
    if (value == CheckValue::kOff) {
        DrawFramedGround(drawing, box, radius, state);
        FillTint(drawing, box, radius, state);
    } else {
        drawing.painter.Fill(box, radius, drawing.Color(AccentOf(state)));
        if (state.focused) {
            DrawFilledFocus(drawing, box);
        }
        DrawIcon(drawing, value == CheckValue::kOn ? icons::kCheck : icons::kMixed, box,
                 state.disabled ? kDisabledText : kAccentText);
    }
    Cut(rest, SnapUnits(metrics::kGap, drawing.scale));
    DrawTextLine(drawing, label, Placed(drawing, rest, place), TextRole::kBody, TextAlign::kStart,
                 state.disabled);
    if (state.focused) {
        DrawFocusRing(drawing, box, metrics::kCornerRadius);
    }
}

Size MeasureCheck(const Drawing& drawing, kivcore::UStringView label)
{
    const double side = SnapUnits(metrics::kCheckBox, drawing.scale);
    const double height = SnapUnits(metrics::kIconButton, drawing.scale);
    if (label.empty()) {
        return {side, height};
    }
    const double words =
        std::ceil(drawing.painter.MeasureText(label, StyleOfText(drawing, TextRole::kBody)).width);
    return {side + SnapUnits(metrics::kGap, drawing.scale) + words, height};
}

void DrawMark(const Drawing& drawing, const Rect& rect, kivcore::UStringView text)
{
    const Rect place = SnapRect(rect);
    drawing.painter.Frame(place, metrics::kMarkRadius * drawing.scale,
                          SnapUnits(metrics::kFrameWidth, drawing.scale), drawing.Color(kHairline));
    Rect words = place;
    const double padding = SnapUnits(metrics::kMarkPadding, drawing.scale);
    Cut(words, padding);
    Cut(words, -padding);
    DrawTextLine(drawing, text, words, TextRole::kHint);
}

Size MeasureMark(const Drawing& drawing, kivcore::UStringView text)
{
    const double words =
        std::ceil(drawing.painter.MeasureText(text, StyleOfText(drawing, TextRole::kHint)).width);
    return {words + 2 * SnapUnits(metrics::kMarkPadding, drawing.scale),
            LineHeight(drawing, TextRole::kLabel)};
}

void DrawChangedDot(const Drawing& drawing, const Rect& rect)
{
    const Rect dot = Middle(SnapRect(rect), SnapUnits(metrics::kChangedDot, drawing.scale));
    drawing.painter.Fill(dot, dot.width / 2, drawing.Color(kChangedDot));
}

void DrawMessage(const Drawing& drawing, const Rect& rect, kivcore::UStringView text,
                 MessageKind kind)
{
    const Rect place = SnapRect(rect);
    const bool isError = kind == MessageKind::kError;
    Rect rest = place;
    TextRole role = TextRole::kHint;
    if (kind != MessageKind::kHint) {
        role = isError ? TextRole::kErrorText : TextRole::kWarningText;
        const double side = SnapUnits(metrics::kSign, drawing.scale);
        const Rect slot = Cut(rest, MessageIndent(drawing, kind));
        const Rect icon{slot.x, slot.y + std::floor((slot.height - side) / 2), side, side};
        DrawIcon(drawing, isError ? icons::kError : icons::kWarning, Placed(drawing, icon, place));
    }
    DrawTextLine(drawing, text, Placed(drawing, rest, place), role);
}

double MessageIndent(const Drawing& drawing, MessageKind kind)
{
    if (kind == MessageKind::kHint) {
        return 0;
    }
    return SnapUnits(metrics::kSign, drawing.scale) + SnapUnits(4, drawing.scale);
}

}  // namespace kivui::ui
