#include <kivui/IconCache.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <exception>
#include <functional>
#include <iterator>
#include <list>
#include <map>
#include <new>
#include <string>
#include <unordered_map>
#include <utility>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <kivui/Controls.h>
#include <kivui/NodeManager.h>
#include <kivui/SVG.h>
#include <kivui/ScrivelTargets.h>

#include "framework/kivui/src/Tracing.h"

namespace kivui::ui {

namespace {

constexpr IconVariable kVariables[] = {
    {"ground", kGround},
    {"raised-ground", kRaisedGround},
    {"field-ground", kFieldGround},
    {"hairline", kHairline},
    {"text", kText},
    {"secondary", kSecondaryText},
    {"disabled", kDisabledText},
    {"accent", kAccent},
    {"accent-text", kAccentText},
    {"accent-tint", kAccentTint},
    {"error", kError},
    {"warning", kWarning},
    {"icon", kIcon},
    {"placeholder", kPlaceholder},
    {"star", kStar},
    {"star-empty", kStarEmpty},
    {"selection", kSelection},
    {"selection-text", kSelectionText},
    {"link", kLink},
};

constexpr std::size_t kMaxPictures = 4096;
constexpr std::size_t kMaxTextBytes = 4U << 20;  // of artwork without a name

using Palette = std::array<ColorRGBA, std::size(kVariables)>;

struct Artwork {
    std::string text;
    std::uint64_t number = 0;  // no two have the same
    IconMirroring mirroring = IconMirroring::kNever;
    boost::intrusive_ptr<svg::ISVGDocument> document;  // once it was asked for
    bool isBroken = false;
};

struct Picture {
    std::string key;
    std::shared_ptr<const Pixels> pixels;  // null: there is none, which is kept as well
    std::size_t bytes = 0;
};

struct State {
    svg::ISVGHandler* handler = nullptr;  // whose handles the artwork and `style` hold
    boost::intrusive_ptr<svg::ICSSData> style;
    Palette palette = {};  // of all pictures

    std::uint64_t lastNumber = 0;
    std::map<std::string, Artwork, std::less<>> named;
    std::map<std::string, Artwork, std::less<>> unnamed;  // by text
    std::size_t unnamedBytes = 0;

    std::list<Picture> pictures;  // the one used last stands first
    std::unordered_map<std::string_view, std::list<Picture>::iterator> places;
    std::size_t pictureBytes = 0;

    void DropPictures() noexcept
    {
        places.clear();
        pictures.clear();
        pictureBytes = 0;
    }
};

// A host that leaves without a tear-down leaks it.
constinit State* inUse = nullptr;

State& InUse()
{
    if (inUse == nullptr) {
        inUse = new State;
    }
    return *inUse;
}

// All that is kept belongs to `handler` afterwards.
State& InUseFor(svg::ISVGHandler* handler)
{
    State& state = InUse();
    if (handler != state.handler) {
        IconCache::Clear();
        state.handler = handler;
    }
    return state;
}

Palette PaletteOf(const Theme& theme)
{
    Palette palette;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        palette[i] = theme.Color(kVariables[i].color);
    }
    return palette;
}

template <class Number>
void AppendBytes(std::string& text, const Number& number)
{
    text.append(reinterpret_cast<const char*>(&number), sizeof number);
}

std::string KeyOf(const Artwork& artwork, std::int32_t side, bool mirrored,
                  std::span<const IconColor> colors)
{
    std::string key;
    AppendBytes(key, artwork.number);
    AppendBytes(key, side);
    key += mirrored ? '<' : '>';
    for (const IconColor& color : colors) {
        AppendBytes(key, color.name.size());
        key += color.name;
        AppendBytes(key, std::array{color.color.red, color.color.green, color.color.blue,
                                    color.color.alpha});
    }
    return key;
}

scrivel::Color ScrivelColor(const ColorRGBA& color)
{
    return {color.red, color.green, color.blue, color.alpha};
}

svg::ColorMap Variables(const Palette& palette, std::span<const IconColor> colors)
{
    svg::ColorMap variables;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        variables.emplace(kVariables[i].name, ScrivelColor(palette[i]));
    }
    for (const IconColor& color : colors) {
        variables.insert_or_assign(std::string(color.name), ScrivelColor(color.color));
    }
    return variables;
}

// What a handler throws for bad content is its own business; here it means that there is no
// picture.
template <class Function>
bool Contain(const char* what, const Function& function)
{
    try {
        function();
        return true;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        TraceFailure(what, error.what());
    } catch (...) {
        TraceFailure(what, "unknown exception");
    }
    return false;
}

bool EnsureParsed(State& state, Artwork& artwork)
{
    if (artwork.document == nullptr && !artwork.isBroken) {
        artwork.isBroken = !Contain("An icon was not parsed", [&] {
            artwork.document = state.handler->CreateDocument(artwork.text);
            if (state.style == nullptr) {
                state.style = state.handler->CreateStyleData({});
            }
        });
    }
    return artwork.document != nullptr && state.style != nullptr;
}

std::shared_ptr<const Pixels> Render(State& state, Artwork& artwork, int side, bool mirrored,
                                     const IconRequest& request)
{
    if (!EnsureParsed(state, artwork)) {
        return nullptr;
    }
    const auto pixels = std::make_shared<Pixels>();
    pixels->width = side;
    pixels->height = side;
    pixels->argb.resize(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    const std::unique_ptr<scrivel::DrawingTarget> target =
        scrivel::CreatePixelTarget({pixels->argb.data(), side, side, side});
    if (target == nullptr) {
        throw std::bad_alloc();
    }
    state.style->colors = Variables(state.palette, request.colors);
    if (state.style->rasterizerParameters != nullptr) {
        state.style->rasterizerParameters->SetScale(static_cast<float>(request.scale));
    }
    const bool isDrawn = Contain("An icon was not drawn", [&] {
        state.handler->Render(*target, artwork.document, state.style, side, side);
    });
    if (mirrored) {
        // The pixels, not the drawing: antialiased edges are the same then.
        for (auto row = pixels->argb.begin(); row != pixels->argb.end(); row += side) {
            std::reverse(row, row + side);
        }
    }
    // Artwork that cannot be read makes an empty document, which shows nothing.
    const bool isVisible = std::any_of(pixels->argb.begin(), pixels->argb.end(),
                                       [](std::uint32_t pixel) { return pixel != 0; });
    return isDrawn && isVisible ? pixels : nullptr;
}

void Keep(State& state, std::string key, const std::shared_ptr<const Pixels>& pixels)
{
    const std::size_t bytes = pixels != nullptr ? pixels->argb.size() * sizeof(std::uint32_t) : 0;
    state.pictures.push_front({std::move(key), pixels, bytes});
    try {
        state.places.emplace(state.pictures.front().key, state.pictures.begin());
    } catch (...) {
        state.pictures.pop_front();
        throw;
    }
    state.pictureBytes += bytes;
    while (state.pictures.size() > kMaxPictures || state.pictureBytes > kMaxIconBytes) {
        const Picture& last = state.pictures.back();
        state.pictureBytes -= last.bytes;
        state.places.erase(last.key);
        state.pictures.pop_back();
    }
}

// Null without one.
svg::ISVGHandler* HandlerInForce()
{
    const UI_NodeManager* const manager = UI_NodeManager::Get(true);
    return manager != nullptr ? manager->GetSVGHandler() : nullptr;
}

// Whole pixels; 0 for what is too small, too large or no number.
int SideOf(const IconRequest& request)
{
    const double side = request.sizeUnits * request.scale;
    if (!(side > 0) || !(side <= kMaxIconSide)) {
        return 0;
    }
    return static_cast<int>(SnapUnits(request.sizeUnits, request.scale));
}

std::shared_ptr<const Pixels> Draw(State& state, Artwork& artwork, int side,
                                   IconMirroring mirroring, const Theme& theme,
                                   const IconRequest& request)
{
    const Palette palette = PaletteOf(theme);
    if (palette != state.palette) {
        state.DropPictures();
        state.palette = palette;
    }
    const bool mirrored = request.mirrored && mirroring == IconMirroring::kRightToLeft;
    std::string key = KeyOf(artwork, side, mirrored, request.colors);
    const auto found = state.places.find(key);
    if (found != state.places.end()) {
        state.pictures.splice(state.pictures.begin(), state.pictures, found->second);
        return state.pictures.front().pixels;
    }
    std::shared_ptr<const Pixels> pixels = Render(state, artwork, side, mirrored, request);
    Keep(state, std::move(key), pixels);
    return pixels;
}

Artwork& EnsureUnnamed(State& state, std::string_view text)
{
    const auto found = state.unnamed.find(text);
    if (found != state.unnamed.end()) {
        return found->second;
    }
    if (state.unnamed.size() >= kMaxIconTexts || state.unnamedBytes + text.size() > kMaxTextBytes) {
        state.unnamed.clear();
        state.unnamedBytes = 0;
    }
    Artwork artwork;
    artwork.text = text;
    artwork.number = ++state.lastNumber;
    Artwork& kept = state.unnamed.emplace(std::string(text), std::move(artwork)).first->second;
    state.unnamedBytes += text.size();
    return kept;
}

}  // namespace

std::span<const IconVariable> IconVariables() noexcept
{
    return kVariables;
}

void IconCache::Register(std::string_view name, std::string_view svg, IconMirroring mirroring)
{
    State& state = InUse();
    const auto found = state.named.find(name);
    if (found != state.named.end() && found->second.text == svg &&
        found->second.mirroring == mirroring) {
        return;
    }
    Artwork artwork;
    artwork.text = svg;
    artwork.number = ++state.lastNumber;
    artwork.mirroring = mirroring;
    state.named.insert_or_assign(std::string(name), std::move(artwork));
}

bool IconCache::IsRegistered(std::string_view name) noexcept
{
    return inUse != nullptr && inUse->named.find(name) != inUse->named.end();
}

std::shared_ptr<const Pixels> IconCache::Draw(std::string_view name, const Theme& theme,
                                              const IconRequest& request)
{
    svg::ISVGHandler* const handler = HandlerInForce();
    const int side = SideOf(request);
    if (handler == nullptr || side == 0 || !IsRegistered(name)) {
        return nullptr;
    }
    State& state = InUseFor(handler);
    Artwork& artwork = state.named.find(name)->second;
    return ui::Draw(state, artwork, side, artwork.mirroring, theme, request);
}

std::shared_ptr<const Pixels> IconCache::DrawArtwork(std::string_view svg, IconMirroring mirroring,
                                                     const Theme& theme, const IconRequest& request)
{
    svg::ISVGHandler* const handler = HandlerInForce();
    const int side = SideOf(request);
    if (handler == nullptr || side == 0) {
        return nullptr;
    }
    State& state = InUseFor(handler);
    return ui::Draw(state, EnsureUnnamed(state, svg), side, mirroring, theme, request);
}

void IconCache::Clear() noexcept
{
    if (inUse == nullptr) {
        return;
    }
    State& state = *inUse;
    state.DropPictures();
    for (auto& [name, artwork] : state.named) {
        artwork.document.reset();
        artwork.isBroken = false;
    }
    state.unnamed.clear();
    state.unnamedBytes = 0;
    state.style.reset();
    state.handler = nullptr;
}

void IconCache::Terminate() noexcept
{
    delete std::exchange(inUse, nullptr);
}

std::size_t IconCache::PictureCount() noexcept
{
    return inUse != nullptr ? inUse->pictures.size() : 0;
}

std::size_t IconCache::PictureBytes() noexcept
{
    return inUse != nullptr ? inUse->pictureBytes : 0;
}

}  // namespace kivui::ui
