#include "framework/kivtoolkit/src/WxPainter.h"

#include "framework/kivtoolkit/src/NativeText.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <wx/bitmap.h>
#include <wx/brush.h>
#include <wx/image.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

using FontKey = std::pair<int, ui::FontWeight>;  // size in hundredths of a pixel

std::map<FontKey, wxFont>& Fonts()
{
    static auto& fonts = *new std::map<FontKey, wxFont>;
    return fonts;
}

wxGraphicsPath RoundedPath(wxGraphicsContext& context, const ui::Rect& rect, double radius)
{
    const double round = std::clamp(radius, 0.0, std::min(rect.width, rect.height) / 2);
    wxGraphicsPath path = context.CreatePath();
    if (round > 0) {
        path.AddRoundedRectangle(rect.x, rect.y, rect.width, rect.height, round);
    } else {
        path.AddRectangle(rect.x, rect.y, rect.width, rect.height);
    }
    return path;
}

// The longest beginning of `text` that fits into `width` together with an ellipsis.
wxString Shortened(wxGraphicsContext& context, const wxFont& font, const wxString& text,
                   double width)
{
    const wxString ellipsis = wxString::FromUTF8("\xE2\x80\xA6");
    const double ellipsisWidth = MeasureLine(context, font, ellipsis).width;
    const wxArrayDouble widths = BeginningWidths(context, font, text);
    std::size_t fitting = 0;
    while (fitting < widths.size() && widths[fitting] + ellipsisWidth <= width) {
        ++fitting;
    }
    wxString beginning = text.Left(fitting);
    beginning.Trim();
    return beginning + ellipsis;
}

}  // namespace

const wxFont& FontFor(const ui::TextStyle& style)
{
    const FontKey key(static_cast<int>(std::lround(style.sizePixels * 100)), style.weight);
    const auto found = Fonts().find(key);
    if (found != Fonts().end()) {
        return found->second;
    }
    wxFont font = InterfaceFont(style.weight);
    font.SetFractionalPointSize(style.sizePixels / PixelsPerPoint());
    return Fonts().emplace(key, font).first->second;
}

void ForgetFonts() noexcept
{
    Fonts().clear();
}

wxColour ToWx(const ui::ColorRGBA& color)
{
    const auto byte = [](float part) {
        return static_cast<unsigned char>(std::lround(std::clamp(part, 0.0F, 1.0F) * 255.0F));
    };
    return {byte(color.red), byte(color.green), byte(color.blue), byte(color.alpha)};
}

WxPainter::WxPainter(wxGraphicsContext& context) : context_(context) {}

WxPainter::~WxPainter() = default;

void WxPainter::Fill(const ui::Rect& rect, double radius, const ui::ColorRGBA& color)
{
    context_.SetBrush(wxBrush(ToWx(color)));
    context_.FillPath(RoundedPath(context_, rect, radius));
}

void WxPainter::Frame(const ui::Rect& rect, double radius, double width, const ui::ColorRGBA& color)
{
    // The ring between two outlines: a pen would be centred on the edge and shifted by half pixels.
    const ui::Rect inner{rect.x + width, rect.y + width, rect.width - 2 * width,
                         rect.height - 2 * width};
    wxGraphicsPath path = RoundedPath(context_, rect, radius);
    if (inner.width > 0 && inner.height > 0) {
        path.AddPath(RoundedPath(context_, inner, std::max(0.0, radius - width)));
    }
    context_.SetBrush(wxBrush(ToWx(color)));
    context_.FillPath(path, wxODDEVEN_RULE);
}

void WxPainter::Text(kivcore::UStringView text, const ui::Rect& rect, const ui::TextStyle& style)
{
    const wxFont& font = FontFor(style);
    wxString shown = ToWx(text);
    ui::Size size = MeasureLine(context_, font, shown);
    // Half a pixel more is a matter of rounding, not of room.
    if (size.width > rect.width + 0.5) {
        shown = Shortened(context_, font, shown, rect.width);
        size = MeasureLine(context_, font, shown);
    }
    double x = rect.x;
    if (style.align == ui::TextAlign::kCenter) {
        x += (rect.width - size.width) / 2;
    } else if (style.align == ui::TextAlign::kEnd) {
        x += rect.width - size.width;
    }
    const double y = rect.y + (rect.height - size.height) / 2;
    DrawLine(context_, font, ToWx(style.color), shown,
             wxPoint(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y))));
}

ui::Size WxPainter::MeasureText(kivcore::UStringView text, const ui::TextStyle& style)
{
    return MeasureLine(context_, FontFor(style), ToWx(text));
}

double WxPainter::DeviceScale() const
{
    return context_.GetContentScaleFactor();
}

void WxPainter::DrawPixels(const ui::Pixels& pixels, const ui::Point& at)
{
    if (pixels.width <= 0 || pixels.height <= 0) {
        return;
    }
    wxImage image(pixels.width, pixels.height, /*clear=*/false);
    image.InitAlpha();
    unsigned char* rgb = image.GetData();
    unsigned char* alpha = image.GetAlpha();
    for (const std::uint32_t argb : pixels.argb) {
        const std::uint32_t opacity = argb >> 24U;
        *alpha++ = static_cast<unsigned char>(opacity);
        for (const unsigned shift : {16U, 8U, 0U}) {
            const std::uint32_t part = (argb >> shift) & 0xFFU;
            *rgb++ = static_cast<unsigned char>(
                opacity == 0 ? 0
                             : std::min<std::uint32_t>(255, (part * 255 + opacity / 2) / opacity));
        }
    }
    // In pixels of the device: the toolkit cuts sizes to whole ones on some systems.
    const double scale = DeviceScale();
    context_.PushState();
    context_.Scale(1 / scale, 1 / scale);
    context_.DrawBitmap(wxBitmap(image), std::floor(at.x * scale + 0.5),
                        std::floor(at.y * scale + 0.5), pixels.width, pixels.height);
    context_.PopState();
}

MeasuringPainter::MeasuringPainter()
    : context_(wxGraphicsContext::Create()), painter_(std::make_unique<WxPainter>(*context_))
{
}

MeasuringPainter::~MeasuringPainter() = default;

}  // namespace kivtoolkit
