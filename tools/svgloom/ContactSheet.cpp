#include "tools/svgloom/ContactSheet.h"

#include "tools/common/Files.h"
#include "tools/common/Progress.h"
#include "tools/svgloom/Picture.h"
#include "tools/svgloom/StrokeFont.h"

#include <kivui/IconCache.h>
#include <kivui/Theme.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <ostream>

namespace svgloom {

namespace {

namespace ui = kivui::ui;

// A list of numbers, "0,50,100".
std::vector<float> NumbersOf(const tools::Arguments& arguments, std::string_view option,
                             const char* usual, float least, float largest)
{
    const std::string text = arguments.Value(option).value_or(usual);
    std::vector<float> numbers;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const auto number = tools::ParseFloat(std::string_view(text).substr(start, end - start));
        if (!number || !(*number >= least && *number <= largest))
            throw tools::UsageError("option " + std::string(option) + " does not take \"" + text +
                                    "\"");
        numbers.push_back(*number);
        start = end + 1;
    }
    return numbers;
}

std::string ShortNumber(float value)
{
    constexpr int kDigits = 4;
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                                  std::chars_format::general, kDigits)
                        .ptr};
}

SVGLoom::Color ToColor(const ui::ColorRGBA& color)
{
    return {color.red, color.green, color.blue, color.alpha};
}

}  // namespace

struct ContactSheet::Colors {
    // As many as the drawing of icons has use for.
    static constexpr std::size_t kCount = ui::kClearOverlay;

    Colors(float percent, const SVGLoom::ColorMap& given) : variables(given)
    {
        const boost::intrusive_ptr<ui::KeyframeThemeEditor> theme(
            new ui::KeyframeThemeEditor(kCount, 0, 0));
        theme->SetBrightness(percent / 100);
        ground = ToColor(theme->Color(ui::kGround));
        hairline = ToColor(theme->Color(ui::kHairline));
        heading = ToColor(theme->Color(ui::kText));
        label = ToColor(theme->Color(ui::kSecondaryText));
        for (const ui::IconVariable& variable : ui::IconVariables())
            variables.emplace(variable.name, ToColor(theme->Color(variable.color)));
    }

    SVGLoom::Color ground;
    SVGLoom::Color hairline;
    SVGLoom::Color heading;
    SVGLoom::Color label;
    SVGLoom::ColorMap variables;  // the theme's where none is given
};

ContactSheet::ContactSheet(const tools::Arguments& arguments, const DrawSettings& settings,
                           const SizeOptions& size)
    : output_(arguments.Required("--contact-sheet")),
      brightnesses_(NumbersOf(arguments, "--brightness", "100", 0, 100)),
      scales_(NumbersOf(arguments, "--scales", "1", 0.01f, 100)),
      settings_(settings),
      size_(size)
{
}

void ContactSheet::Add(const std::string& label, std::unique_ptr<Artwork> artwork)
{
    SheetEntry entry = {label, {}};
    for (const float scale : scales_)
        entry.sizes.push_back(size_.For(artwork->Document().ViewBox(), scale));
    entries_.push_back(std::move(entry));
    artworks_.push_back(std::move(artwork));
}

bool ContactSheet::Write() const
{
    if (entries_.empty())
        return true;
    const SheetLayout layout(entries_, brightnesses_.size());
    Picture picture(layout.Width(), layout.Height());
    bool allDrawn = true;
    {
        tools::Progress progress("svgloom", "pictures of the sheet",
                                 entries_.size() * brightnesses_.size());
        for (std::size_t band = 0; band < brightnesses_.size(); ++band) {
            const Colors colors(brightnesses_[band], settings_.Colors());
            picture.Fill(layout.Band(band), colors.ground);
            picture.Fill(layout.Rule(band), colors.hairline);
            DrawTexts(band, layout, colors, picture);
            for (std::size_t entry = 0; entry < entries_.size(); ++entry) {
                try {
                    DrawArtwork(band, entry, layout, colors, picture);
                } catch (const std::exception& error) {
                    progress.Tell("svgloom: " + entries_[entry].label + ": " + error.what());
                    allDrawn = false;
                }
                progress.Step();
            }
        }
    }
    const std::string png = picture.Png();
    tools::WriteOutput(output_, [&](std::ostream& out) { out << png; });
    return allDrawn;
}

void ContactSheet::DrawTexts(std::size_t band, const SheetLayout& layout, const Colors& colors,
                             Picture& picture) const
{
    const auto target = picture.Target(picture.Area());
    const auto draw = [&](const std::string& text, int x, int baseLine, float size,
                          const SVGLoom::Color& color) {
        DrawText(*target, text, static_cast<float>(x), static_cast<float>(baseLine), size, color);
    };
    const TextPlace place = layout.Heading(band);
    const std::string heading = "Brightness " + ShortNumber(brightnesses_[band]) + "%";
    draw(heading, place.x, place.baseLine, SheetLayout::kHeadingSize, colors.heading);
    if (scales_.size() > 1 || scales_[0] != 1) {
        constexpr int kBetween = 24;
        std::string text = scales_.size() > 1 ? "scales" : "scale";
        for (const float scale : scales_)
            text += "  " + ShortNumber(scale) + "x";
        draw(text,
             place.x + static_cast<int>(TextWidth(heading, SheetLayout::kHeadingSize)) + kBetween,
             place.baseLine, 1, colors.label);
    }
    for (std::size_t entry = 0; entry < entries_.size(); ++entry) {
        for (const SheetLayout::Line& line : layout.Label(band, entry))
            draw(line.text, line.place.x, line.place.baseLine, 1, colors.label);
    }
}

void ContactSheet::DrawArtwork(std::size_t band, std::size_t entry, const SheetLayout& layout,
                               const Colors& colors, Picture& picture) const
{
    for (std::size_t scale = 0; scale < scales_.size(); ++scale) {
        const RenderSize& size = entries_[entry].sizes[scale];
        const auto target = picture.Target(layout.Slot(band, entry, scale));
        artworks_[entry]->Draw(settings_, colors.variables, size.width, size.height, *target);
    }
}

}  // namespace svgloom
