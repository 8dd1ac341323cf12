#include <kivui/Theme.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

#include <kivui/IconCache.h>

#include "framework/kivui/src/ThemeDocument.h"

namespace kivui::ui {

namespace {

constexpr float kDefaultBrightness = 0.5f;

// A plain pointer that holds one reference: a host that leaves without Terminate leaks the theme.
constinit Theme* inForce = nullptr;

}  // namespace

Theme::Theme() = default;

Theme::~Theme() = default;

void Theme::Initialize(boost::intrusive_ptr<Theme> theme)
{
    const boost::intrusive_ptr<Theme> last(std::exchange(inForce, theme.detach()),
                                           /*add_ref=*/false);
}

Theme& Theme::Get()
{
    if (inForce == nullptr) {
        throw std::logic_error("No theme is initialized");
    }
    return *inForce;
}

bool Theme::IsInitialized() noexcept
{
    return inForce != nullptr;
}

void Theme::Terminate() noexcept
{
    IconCache::Terminate();
    const boost::intrusive_ptr<Theme> last(std::exchange(inForce, nullptr), /*add_ref=*/false);
}

float Theme::DrawingBrightness() const
{
    const float brightness = Brightness();
    return std::isnan(brightness) ? kDefaultBrightness : std::clamp(brightness, 0.0f, 1.0f);
}

struct KeyframeThemeEditor::State {
    std::shared_ptr<const ThemeDocument> document;
    std::size_t colorCount = 0;
    std::vector<double> fontSizes;
    std::map<std::size_t, ColorRGBA> fixedColors;
    float brightness = kDefaultBrightness;
    std::size_t changeCount = 1;
};

KeyframeThemeEditor::KeyframeThemeEditor(std::size_t colorCount, std::size_t fontSizeCount,
                                         std::size_t variantCount)
    : state_(std::make_unique<State>())
{
    static_cast<void>(variantCount);  // the documents have one variant
    state_->document = CurrentThemeDocument();
    state_->colorCount = colorCount;
    state_->fontSizes = state_->document->fontSizes;
    state_->fontSizes.resize(fontSizeCount);
}

KeyframeThemeEditor::~KeyframeThemeEditor() = default;

void KeyframeThemeEditor::SetBrightness(float brightness)
{
    const float before = DrawingBrightness();
    state_->brightness = brightness;
    if (DrawingBrightness() != before) {
        ++state_->changeCount;
    }
}

float KeyframeThemeEditor::Brightness() const
{
    return state_->brightness;
}

ColorRGBA KeyframeThemeEditor::Color(std::size_t index) const
{
    if (index >= state_->colorCount) {
        return {0, 0, 0, 0};
    }
    const auto fixed = state_->fixedColors.find(index);
    if (fixed != state_->fixedColors.end()) {
        return fixed->second;
    }
    const std::vector<KeyFrames>& colors = state_->document->colors;
    // Rounded to a hundredth of a percent: 0.29f is 28.999999 percent, and a hard step must fall
    // where it stands in the document.
    const float percent = std::round(DrawingBrightness() * 10000.0f) / 100.0f;
    return index < colors.size() ? ColorAt(colors[index], percent) : ColorRGBA{0, 0, 0, 0};
}

double KeyframeThemeEditor::FontSize(std::size_t index) const
{
    return index < state_->fontSizes.size() ? state_->fontSizes[index] : 0;
}

std::size_t KeyframeThemeEditor::ChangeCount() const
{
    return state_->changeCount;
}

void KeyframeThemeEditor::SetColor(std::size_t index, const ColorRGBA& color)
{
    if (index < state_->colorCount) {
        state_->fixedColors.insert_or_assign(index, color);
        ++state_->changeCount;
    }
}

void KeyframeThemeEditor::SetFontSize(std::size_t index, double size)
{
    if (index < state_->fontSizes.size()) {
        state_->fontSizes[index] = size;
        ++state_->changeCount;
    }
}

void KeyframeThemeEditor::NotifyThemeChanged()
{
    ++state_->changeCount;
}

}  // namespace kivui::ui
