// What text needs of the system behind the toolkit: its font and measures, native text fields and
// their look, and whether an input method is at work in one.

#pragma once

#include <functional>
#include <limits>
#include <vector>

#include <wx/font.h>
#include <wx/graphics.h>
#include <wx/textctrl.h>

#include <kivcore/UString.h>
#include <kivui/Painter.h>

namespace kivtoolkit {

/// The system's interface font in a weight, at its own size; where the application's language has a
/// font of its own, that one.
wxFont InterfaceFont(kivui::ui::FontWeight weight);

/// Pixels of the toolkit's own coordinates in one point of a font size.
double PixelsPerPoint();

/// The toolkit's pixels in one pixel of the screen's own scale, and the scale that the screen asks
/// for in all.
struct ScreenScale {
    double toolkit = 1;  ///< pixels of the screen in one of the toolkit's
    double wanted = 1;   ///< what a window of scale 1 is to be multiplied by
};
ScreenScale ScaleOfScreen();

/// A line of text as the system's own fields draw it.
/// @{
kivui::ui::Size MeasureLine(wxGraphicsContext& context, const wxFont& font, const wxString& text);
/// The width of each beginning of `text`, from one character to all of them; as many as the text
/// has, or fewer if it cannot be measured.
wxArrayDouble BeginningWidths(wxGraphicsContext& context, const wxFont& font, const wxString& text);
/// With its upper left corner at `at`.
void DrawLine(wxGraphicsContext& context, const wxFont& font, const wxColour& color,
              const wxString& text, const wxPoint& at);
/// @}

/// True for a text so short that it fits into one line of `width` pixels whatever its letters are:
/// long lists are measured without asking the system about each of their texts.
bool FitsSurely(const wxFont& font, kivcore::UStringView text, int width);

/// The lines of `text` when it is broken at `width` pixels, at words where possible.
std::vector<kivcore::UString> WrapText(const wxFont& font, kivcore::UStringView text, int width);

/// The height of `lines` lines in a native text field of several lines.
int NativeLinesHeight(const wxFont& font, int lines);
/// How many lines a native text field breaks `text` into.
int NativeLineCount(const wxFont& font, kivcore::UStringView text, int width);
inline constexpr int kAllLines = std::numeric_limits<int>::max();
/// The height of the first `mostLines` (at least 1) of those lines; a line with characters that
/// another font has to lend may be higher than the others.
int NativeTextHeight(const wxFont& font, kivcore::UStringView text, int width, int mostLines);

enum class TextShape {
    kLine,           ///< Enter commits
    kLines,          ///< Enter begins a new line
    kReadOnlyLines,  ///< to select and copy
};

/// A native text field without text, frame or scroll bars, owned by `parent`. The functions below
/// take none but these.
wxTextCtrl* NewNativeText(wxWindow& parent, TextShape shape, bool mirrored);

/// The part of `rect` that `text` has to fill so that its text stands in the middle of the height
/// where it has one line, and at the top where it has several.
wxRect NativeTextRect(const wxTextCtrl& text, const wxRect& rect);

struct NativeTextStyle {
    kivui::ui::TextStyle font;    ///< size, weight and colour
    kivui::ui::ColorRGBA ground;  ///< what the field stands on
    kivui::ui::ColorRGBA selection;
    kivui::ui::ColorRGBA selectionText;
};

/// Takes frame, ground, padding and the system's colours off a text field: what its parent draws
/// under it shows, at least while the field is empty. The system may keep its own colours of a
/// selection.
void StyleNativeText(wxTextCtrl& text, const NativeTextStyle& style);

/// True while an input method composes in `text`: keys belong to it then.
bool IsComposing(const wxTextCtrl& text);

/// Lets `changed` run whenever composing begins or ends in `text`; it must not throw.
void WatchComposing(wxTextCtrl& text, std::function<void()> changed);

/// To be called before the toolkit ends.
void ForgetNativeStyles() noexcept;

}  // namespace kivtoolkit
