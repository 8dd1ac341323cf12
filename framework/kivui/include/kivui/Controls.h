// The look of themed flat controls, without a toolkit: each function draws one control with a
// Painter, in the colours of a theme. Nothing here keeps state or handles events.
//
// Rectangles are in pixels of the surface; metrics are in design units (1 unit is 1 pixel at scale
// 1) and are multiplied by the scale. Edges and line widths are rounded to whole pixels.

#pragma once

#include <optional>
#include <string_view>

#include <kivcore/UString.h>
#include <kivui/Export.h>
#include <kivui/Painter.h>
#include <kivui/Theme.h>

namespace kivui::ui {

/// Sizes in design units.
namespace metrics {
inline constexpr double kFrameWidth = 1;
inline constexpr double kCornerRadius = 4;
inline constexpr double kFocusWidth = 2;  ///< lies outside the frame: leave room for it
inline constexpr double kButtonHeight = 28;
inline constexpr double kButtonMinWidth = 80;
inline constexpr double kButtonPadding = 16;  ///< on either side of the label
inline constexpr double kSmallButtonPadding = 8;
inline constexpr double kFieldHeight = 28;
inline constexpr double kFieldPadding = 8;  ///< from the frame to the text
inline constexpr double kIconButton = 24;   ///< also the smallest pointer target
inline constexpr double kSign = 16;         ///< the icon of a button, a field, a message
inline constexpr double kNavigationItemHeight = 32;
inline constexpr double kNavigationIcon = 20;
inline constexpr double kNavigationBar = 3;
inline constexpr double kNavigationPadding = 12;
inline constexpr double kChangedDot = 6;
inline constexpr double kChipHeight = 24;
inline constexpr double kChipRadius = 12;
inline constexpr double kChipPadding = 10;
inline constexpr double kChipCross = 20;  ///< width of the part that removes the chip
inline constexpr double kMarkRadius = 3;
inline constexpr double kMarkPadding = 5;
inline constexpr double kStar = 24;  ///< one star's place; the star itself is smaller
inline constexpr double kCheckBox = 16;
inline constexpr double kGap = 8;  ///< between an icon and its text
inline constexpr double kBottomBarHeight = 52;
inline constexpr double kLineHeight = 1.45;  ///< times the font size
}  // namespace metrics

/// What all controls of one window are drawn with. Looks only at its parts.
struct Drawing {
    Painter& painter;
    const Theme& theme;
    double scale = 1;       ///< pixels per design unit, as UI_NodeManager::DrawingScale gives it
    bool mirrored = false;  ///< leading is right

    ColorRGBA Color(ThemeColor color) const { return theme.Color(color); }
};

/// The state of one control; what a control does not have, it ignores.
struct ControlState {
    bool hovered = false;
    bool pressed = false;
    bool focused = false;
    bool disabled = false;
    bool selected = false;  ///< current navigation item
    bool changed = false;   ///< differs from what the photo holds
    bool error = false;
};

/// Design units as whole pixels; at least 1 for what is above 0.
KIVUI_API double SnapUnits(double units, double scale);
/// `rect` with its edges on whole pixels.
KIVUI_API Rect SnapRect(const Rect& rect);
/// `inner` at the mirrored place inside `outer`.
KIVUI_API Rect MirrorRect(const Rect& inner, const Rect& outer);

/// The kinds of text in the dialog.
enum class TextRole {
    kBody,         ///< values, navigation names
    kLabel,        ///< above a field
    kHint,         ///< under a field, the quiet summary
    kPlaceholder,  ///< in an empty field
    kErrorText,
    kWarningText,
    kGroupHeading,
    kTitle,       ///< the view's name
    kAccentText,  ///< on the accent
    kLink,        ///< "12 more"
};

/// Size, weight and colour of a text; aligned to the leading edge.
KIVUI_API TextStyle StyleOfText(const Drawing& drawing, TextRole role, bool disabled = false);
/// Height of one line of `role`, whole pixels.
KIVUI_API double LineHeight(const Drawing& drawing, TextRole role);
/// One line of text, aligned within `rect`; kStart is the leading edge.
KIVUI_API void DrawTextLine(const Drawing& drawing, kivcore::UStringView text, const Rect& rect,
                            TextRole role, TextAlign align = TextAlign::kStart,
                            bool disabled = false);

/// Names in the icon cache of what the controls here draw. Whoever shows them registers artwork;
/// without artwork, or without an SVG handler, a control shows no icon.
namespace icons {
inline constexpr std::string_view kCheck = "check";
inline constexpr std::string_view kCross = "cross";
inline constexpr std::string_view kError = "error";
inline constexpr std::string_view kMixed = "mixed";
inline constexpr std::string_view kRevert = "revert";
inline constexpr std::string_view kStar = "star";
inline constexpr std::string_view kStarEmpty = "star-empty";
inline constexpr std::string_view kWarning = "warning";
}  // namespace icons

/// Draws an icon of the cache as large as fits, in the middle of `rect`: in the colours that its
/// artwork names, or all of it in `color`.
KIVUI_API void DrawIcon(const Drawing& drawing, std::string_view icon, const Rect& rect,
                        std::optional<ThemeColor> color = std::nullopt);

/// The ring around a focused control, just outside `rect`, whose corners have `radiusUnits`.
KIVUI_API void DrawFocusRing(const Drawing& drawing, const Rect& rect, double radiusUnits);

/// A line of one snapped unit along the upper (or, upright, the left) edge of `rect`.
enum class HairlineDirection { kHorizontal, kUpright };
KIVUI_API void DrawHairline(const Drawing& drawing, const Rect& rect, HairlineDirection direction);

enum class ButtonKind {
    kPlain,       ///< framed
    kConfirming,  ///< filled with the accent
    kQuiet,       ///< small and without a frame until hovered: language names, "12 more"
};
KIVUI_API void DrawButton(const Drawing& drawing, const Rect& rect, kivcore::UStringView label,
                          ButtonKind kind, const ControlState& state);
/// The size that a button needs for its label, whole pixels.
KIVUI_API Size MeasureButton(const Drawing& drawing, kivcore::UStringView label, ButtonKind kind);

/// A button that shows only an icon: clear, open a list.
KIVUI_API void DrawIconButton(const Drawing& drawing, const Rect& rect, std::string_view icon,
                              const ControlState& state);
KIVUI_API void DrawRevertButton(const Drawing& drawing, const Rect& rect,
                                const ControlState& state);

/// The ground and frame of a field. Draws nothing of its text.
KIVUI_API void DrawFieldFrame(const Drawing& drawing, const Rect& rect, const ControlState& state);
/// Where the text of a field stands.
KIVUI_API Rect FieldTextRect(const Drawing& drawing, const Rect& rect);

/// An entry of the list of views: its icon and name, a tint and a bar at the leading edge when
/// selected, a dot at the trailing one when changed.
KIVUI_API void DrawNavigationItem(const Drawing& drawing, const Rect& rect,
                                  kivcore::UStringView name, std::string_view icon,
                                  const ControlState& state);

/// An entry of a list field. The cross shows while hovered or focused, and not when disabled.
KIVUI_API void DrawChip(const Drawing& drawing, const Rect& rect, kivcore::UStringView text,
                        const ControlState& state, bool crossHovered = false);
/// The size of a chip, room for the cross included, whole pixels.
KIVUI_API Size MeasureChip(const Drawing& drawing, kivcore::UStringView text);
/// The part of a chip that removes it.
KIVUI_API Rect ChipCrossRect(const Drawing& drawing, const Rect& rect);

/// `count` stars from the leading edge on, the first `value` of them filled. While `hoveredStars`
/// is above 0 that many show instead.
KIVUI_API void DrawStars(const Drawing& drawing, const Rect& rect, int count, int value,
                         int hoveredStars, const ControlState& state);
/// The place of the star `index` (from 0); a pointer target.
KIVUI_API Rect StarRect(const Drawing& drawing, const Rect& rect, int index);

enum class CheckValue { kOff, kOn, kMixed };
/// A box at the leading edge, its label behind it.
KIVUI_API void DrawCheck(const Drawing& drawing, const Rect& rect, kivcore::UStringView label,
                         CheckValue value, const ControlState& state);
KIVUI_API Size MeasureCheck(const Drawing& drawing, kivcore::UStringView label);

/// A word or two beside a label that say something of the value: where it comes from.
KIVUI_API void DrawMark(const Drawing& drawing, const Rect& rect, kivcore::UStringView text);
/// The size that a mark needs, whole pixels; as high as a line of a label.
KIVUI_API Size MeasureMark(const Drawing& drawing, kivcore::UStringView text);

/// The dot of what is changed, in the middle of `rect`.
KIVUI_API void DrawChangedDot(const Drawing& drawing, const Rect& rect);

enum class MessageKind { kHint, kWarning, kError };
/// One line under a field: a hint without, a warning or error with its icon.
KIVUI_API void DrawMessage(const Drawing& drawing, const Rect& rect, kivcore::UStringView text,
                           MessageKind kind);
/// The width in front of a message's words.
KIVUI_API double MessageIndent(const Drawing& drawing, MessageKind kind);

}  // namespace kivui::ui
