#include "framework/kivtoolkit/src/NativeText.h"

#include "framework/kivtoolkit/src/WxPainter.h"

#include <gtk/gtk.h>

#include <wx/fontutil.h>
#include <wx/settings.h>

#include <kivcore/StringConversion.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace kivtoolkit {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kUsualResolution = 96;
constexpr const char* kComposingKey = "kivtoolkit-composing";

int NumericWeight(kivui::ui::FontWeight weight)
{
    switch (weight) {
        case kivui::ui::FontWeight::kMedium:
            return wxFONTWEIGHT_MEDIUM;
        case kivui::ui::FontWeight::kSemibold:
            return wxFONTWEIGHT_SEMIBOLD;
        case kivui::ui::FontWeight::kNormal:
            break;
    }
    return wxFONTWEIGHT_NORMAL;
}

long StyleOf(TextShape shape)
{
    switch (shape) {
        case TextShape::kLines:
            return wxBORDER_NONE | wxTE_MULTILINE;
        case TextShape::kReadOnlyLines:
            return wxBORDER_NONE | wxTE_MULTILINE | wxTE_READONLY | wxTE_NO_VSCROLL;
        case TextShape::kLine:
            break;
    }
    return wxBORDER_NONE | wxTE_PROCESS_ENTER;
}

double Resolution()
{
    const double resolution = gdk_screen_get_resolution(gdk_screen_get_default());
    return resolution > 0 ? resolution : kUsualResolution;
}

struct UnrefObject {
    void operator()(void* object) const { g_object_unref(object); }
};

using LayoutHandle = std::unique_ptr<PangoLayout, UnrefObject>;

// What all dialogs share while the toolkit is up.
struct KeptObjects {
    std::string css;  // of the style in use: all fields of a dialog have the same
    std::unique_ptr<GtkCssProvider, UnrefObject> provider;
    std::unique_ptr<PangoContext, UnrefObject> context;
    std::map<std::pair<double, int>, int> lineHeights;  // by size and weight of the font

    PangoContext* Context()
    {
        if (context == nullptr) {
            context.reset(gdk_pango_context_get());
            pango_context_set_language(context.get(), pango_language_get_default());
        }
        return context.get();
    }
};

KeptObjects& Kept()
{
    static auto& kept = *new KeptObjects;
    return kept;
}

LayoutHandle NewLayout(const wxFont& font, const std::string& text, int width)
{
    LayoutHandle layout(pango_layout_new(Kept().Context()));
    pango_layout_set_font_description(layout.get(), font.GetNativeFontInfo()->description);
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    pango_layout_set_width(layout.get(), std::max(1, width) * PANGO_SCALE);
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    return layout;
}

GtkWidget* TextWidget(const wxTextCtrl& text)
{
    GtkWidget* widget = text.GetHandle();
    return GTK_IS_BIN(widget) ? gtk_bin_get_child(GTK_BIN(widget)) : widget;
}

// Never in the words of a locale.
std::string Fixed(double number)
{
    std::array<char, 32> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                       std::chars_format::fixed, 3);
    return {digits.data(), written.ptr};
}

std::string CssColor(const kivui::ui::ColorRGBA& color)
{
    std::string css = "rgba(";
    for (const float part : {color.red, color.green, color.blue}) {
        css += std::to_string(std::lround(std::clamp(part, 0.0F, 1.0F) * 255.0F)) + ",";
    }
    return css + Fixed(std::clamp(color.alpha, 0.0F, 1.0F)) + ")";
}

GtkCssProvider* ProviderFor(const std::string& css)
{
    KeptObjects& kept = Kept();
    if (kept.provider == nullptr || kept.css != css) {
        kept.provider.reset(gtk_css_provider_new());
        kept.css = css;
        gtk_css_provider_load_from_data(kept.provider.get(), css.data(),
                                        static_cast<gssize>(css.size()), nullptr);
    }
    return kept.provider.get();
}

void OnPreedit(GtkWidget* widget, const char* preedit, gpointer data)
{
    const bool composes = preedit != nullptr && *preedit != '\0';
    g_object_set_data(G_OBJECT(widget), kComposingKey, GINT_TO_POINTER(composes ? 1 : 0));
    (*static_cast<std::function<void()>*>(data))();
}

void DeleteWatcher(gpointer data, GClosure*)
{
    delete static_cast<std::function<void()>*>(data);
}

}  // namespace

wxFont InterfaceFont(kivui::ui::FontWeight weight)
{
    wxFont font = wxSystemSettings::GetFont(wxSYS_DEFAULT_GUI_FONT);
    font.SetStyle(wxFONTSTYLE_NORMAL);
    font.SetNumericWeight(NumericWeight(weight));
    return font;
}

double PixelsPerPoint()
{
    return Resolution() / kPointsPerInch;
}

ScreenScale ScaleOfScreen()
{
    ScreenScale scale;
    GdkDisplay* display = gdk_display_get_default();
    GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
    if (monitor == nullptr && gdk_display_get_n_monitors(display) > 0) {
        monitor = gdk_display_get_monitor(display, 0);
    }
    scale.toolkit = monitor != nullptr ? gdk_monitor_get_scale_factor(monitor) : 1;
    scale.wanted = scale.toolkit * Resolution() / kUsualResolution;
    return scale;
}

kivui::ui::Size MeasureLine(wxGraphicsContext& context, const wxFont& font, const wxString& text)
{
    context.SetFont(font, *wxBLACK);
    wxDouble width = 0;
    wxDouble height = 0;
    context.GetTextExtent(text, &width, &height);
    return {width, height};
}

wxArrayDouble BeginningWidths(wxGraphicsContext& context, const wxFont& font, const wxString& text)
{
    context.SetFont(font, *wxBLACK);
    wxArrayDouble widths;
    context.GetPartialTextExtents(text, widths);
    return widths;
}

void DrawLine(wxGraphicsContext& context, const wxFont& font, const wxColour& color,
              const wxString& text, const wxPoint& at)
{
    context.SetFont(font, color);
    context.DrawText(text, at.x, at.y);
}

std::vector<kivcore::UString> WrapText(const wxFont& font, kivcore::UStringView text, int width)
{
    if (FitsSurely(font, text, width)) {
        return {kivcore::UString(text)};
    }
    const std::string utf8 = kivcore::string::UTF16to8(text);
    const LayoutHandle layout = NewLayout(font, utf8, width);
    std::vector<kivcore::UString> lines;
    for (GSList* at = pango_layout_get_lines_readonly(layout.get()); at != nullptr; at = at->next) {
        const auto* line = static_cast<const PangoLayoutLine*>(at->data);
        std::string_view part(utf8.data() + line->start_index,
                              static_cast<std::size_t>(line->length));
        while (!part.empty() && part.back() == ' ') {
            part.remove_suffix(1);
        }
        lines.push_back(kivcore::string::UTF8to16(part));
    }
    return lines;
}

int NativeLinesHeight(const wxFont& font, int lines)
{
    const std::pair key(font.GetFractionalPointSize(), font.GetNumericWeight());
    int& height = Kept().lineHeights[key];
    if (height == 0) {
        pango_layout_get_pixel_size(NewLayout(font, "Xg", 1000).get(), nullptr, &height);
    }
    return height * lines;
}

int NativeLineCount(const wxFont& font, kivcore::UStringView text, int width)
{
    if (FitsSurely(font, text, width)) {
        return 1;
    }
    const LayoutHandle layout = NewLayout(font, kivcore::string::UTF16to8(text), width);
    return pango_layout_get_line_count(layout.get());
}

int NativeTextHeight(const wxFont& font, kivcore::UStringView text, int width, int mostLines)
{
    if (FitsSurely(font, text, width)) {
        return NativeLinesHeight(font, 1);
    }
    const LayoutHandle layout = NewLayout(font, kivcore::string::UTF16to8(text), width);
    int height = 0;
    int seen = 0;
    for (GSList* at = pango_layout_get_lines_readonly(layout.get());
         at != nullptr && seen < mostLines; at = at->next, ++seen) {
        PangoRectangle line;
        pango_layout_line_get_pixel_extents(static_cast<PangoLayoutLine*>(at->data), nullptr,
                                            &line);
        height += line.height;
    }
    return height;
}

wxTextCtrl* NewNativeText(wxWindow& parent, TextShape shape, bool mirrored)
{
    auto* text = new wxTextCtrl(&parent, wxID_ANY, wxString(), wxDefaultPosition, wxSize(10, 10),
                                StyleOf(shape));
    if (mirrored) {
        text->SetLayoutDirection(wxLayout_RightToLeft);
    }
    return text;
}

wxRect NativeTextRect(const wxTextCtrl&, const wxRect& rect)
{
    return rect;  // the system's fields do it themselves
}

void StyleNativeText(wxTextCtrl& text, const NativeTextStyle& style)
{
    // The font once more, because the toolkit rounds it to whole points.
    const std::string color = CssColor(style.font.color);
    const std::string family =
        FontFor(style.font).GetFaceName().utf8_string();  // never holds a quote
    const std::string css =
        "entry, scrolledwindow, textview, textview text { background: none; border: none;"
        " box-shadow: none; outline: none; margin: 0; padding: 0; min-height: 0; min-width: 0;"
        " transition: none; font-family: \"" +
        family + "\"; font-size: " + Fixed(style.font.sizePixels) +
        "px; font-weight: 400; color: " + color + "; caret-color: " + color +
        "; }"
        " entry selection, textview text selection { background-color: " +
        CssColor(style.selection) + "; color: " + CssColor(style.selectionText) +
        "; }"
        " entry undershoot, scrolledwindow undershoot { background: none; }";
    GtkStyleProvider* provider = GTK_STYLE_PROVIDER(ProviderFor(css));
    for (GtkWidget* widget : {text.GetHandle(), TextWidget(text)}) {
        GtkStyleContext* context = gtk_widget_get_style_context(widget);
        gtk_style_context_add_provider(context, provider, GTK_STYLE_PROVIDER_PRIORITY_USER);
    }
    if (GTK_IS_ENTRY(TextWidget(text))) {
        gtk_entry_set_width_chars(GTK_ENTRY(TextWidget(text)), 0);
    }
}

bool IsComposing(const wxTextCtrl& text)
{
    return g_object_get_data(G_OBJECT(TextWidget(text)), kComposingKey) != nullptr;
}

void WatchComposing(wxTextCtrl& text, std::function<void()> changed)
{
    g_signal_connect_data(TextWidget(text), "preedit-changed", G_CALLBACK(OnPreedit),
                          new std::function<void()>(std::move(changed)), DeleteWatcher,
                          static_cast<GConnectFlags>(0));
}

void ForgetNativeStyles() noexcept
{
    Kept() = {};
}

}  // namespace kivtoolkit
