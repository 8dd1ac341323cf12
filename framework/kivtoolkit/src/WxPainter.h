// The painter of own-drawn controls over a drawing context of wxWidgets.

#pragma once

#include <memory>

#include <wx/font.h>
#include <wx/graphics.h>

#include <kivcore/UString.h>
#include <kivui/Painter.h>

namespace kivtoolkit {

/// The interface font of the system in the size and weight of `style`. Fonts are kept until
/// ForgetFonts.
const wxFont& FontFor(const kivui::ui::TextStyle& style);
/// To be called before the toolkit ends: fonts are objects of its own.
void ForgetFonts() noexcept;

wxColour ToWx(const kivui::ui::ColorRGBA& color);

class WxPainter : public kivui::ui::Painter {
public:
    /// Draws into `context`, which must outlive the painter.
    explicit WxPainter(wxGraphicsContext& context);
    ~WxPainter() override;

    void Fill(const kivui::ui::Rect& rect, double radius,
              const kivui::ui::ColorRGBA& color) override;
    void Frame(const kivui::ui::Rect& rect, double radius, double width,
               const kivui::ui::ColorRGBA& color) override;
    void Text(kivcore::UStringView text, const kivui::ui::Rect& rect,
              const kivui::ui::TextStyle& style) override;
    kivui::ui::Size MeasureText(kivcore::UStringView text,
                                const kivui::ui::TextStyle& style) override;
    double DeviceScale() const override;
    void DrawPixels(const kivui::ui::Pixels& pixels, const kivui::ui::Point& at) override;

private:
    wxGraphicsContext& context_;
};

/// A painter that only measures.
class MeasuringPainter {
public:
    MeasuringPainter();
    ~MeasuringPainter();
    kivui::ui::Painter& Get() { return *painter_; }

private:
    std::unique_ptr<wxGraphicsContext> context_;
    std::unique_ptr<WxPainter> painter_;
};

}  // namespace kivtoolkit
