// kivui's icons, drawn through the handler.

#include "svgbridge/SVGBridge.h"
#include "svgbridge/tests/BridgeFixture.h"

#include "framework/kivui/tests/RecordingPainter.h"

#include <kivui/IconCache.h>
#include <kivui/NodeManager.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace svgloom {
namespace {

using kivui::ui::IconCache;
using kivui::ui::IconMirroring;
using kivui::ui::IconRequest;
using kivui::ui::Pixels;

// A bit of everything on a grid of 24 units: a curve, a stroke, a gradient, a clip, two variables.
constexpr char kArtwork[] =
    "<svg viewBox='0 0 24 24'><defs><linearGradient id='g' x2='0' y2='24'"
    " gradientUnits='userSpaceOnUse'><stop offset='0' stop-color='white'/>"
    "<stop offset='1' stop-color='#123'/></linearGradient>"
    "<clipPath id='c'><circle cx='18' cy='6' r='5'/></clipPath></defs>"
    "<path d='M2 12a10 10 0 0 1 10-10v10z' fill='var(--icon, red)'/>"
    "<path d='M3 20c4-6 8 6 18 0' fill='none' stroke='var(--accent, lime)' stroke-width='1.5'/>"
    "<rect x='13' y='1' width='10' height='10' fill='url(#g)' clip-path='url(#c)'/></svg>";

class TestNodeManager : public kivui::ui::OS_NodeManager {};

class IconsTest : public BridgeTest {
protected:
    IconsTest()
    {
        kivui::ui::UI_NodeManager::Set(&manager_);
        manager_.SetSVGHandler(&Handler());
    }
    ~IconsTest() override { IconCache::Terminate(); }

    std::shared_ptr<const Pixels> DrawIcon(std::string_view svg, double scale = 1,
                                           IconMirroring mirroring = IconMirroring::kNever,
                                           bool mirrored = false)
    {
        IconRequest request;
        request.scale = scale;
        request.mirrored = mirrored;
        return IconCache::DrawArtwork(svg, mirroring, theme_, request);
    }

    /// The same without the cache.
    std::vector<std::uint32_t> DrawDirectly(std::string_view svg, int side) const
    {
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(side) *
                                          static_cast<std::size_t>(side));
        const auto target = kivui::scrivel::CreatePixelTarget({pixels.data(), side, side, side});
        const StyleData style = Style("");
        for (const auto& variable : kivui::ui::IconVariables()) {
            const kivui::ui::ColorRGBA color = theme_.Color(variable.color);
            style->colors.emplace(variable.name, kivui::scrivel::Color{color.red, color.green,
                                                                       color.blue, color.alpha});
        }
        SVGHandler::Get().Render(*target, Create(svg), style, side, side);
        return pixels;
    }

private:
    TestNodeManager manager_;
    kivui::ui::NumberedTheme theme_;
};

TEST_F(IconsTest, PicturesAreThoseOfTheHandler)
{
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        SCOPED_TRACE(scale);
        const auto icon = DrawIcon(kArtwork, scale);
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(icon->width, static_cast<int>(24 * scale));
        EXPECT_EQ(icon->argb, DrawDirectly(kArtwork, icon->width));
        EXPECT_EQ(icon, DrawIcon(kArtwork, scale));
        EXPECT_EQ(SVGHandlerState::DocumentCount(), 1u);
    }
}

TEST_F(IconsTest, EdgesOnTheGridAreSharpAtEachScale)
{
    constexpr char kBlock[] =
        "<svg viewBox='0 0 24 24'><rect x='4' y='8' width='16' height='8' fill='var(--text)'/>"
        "</svg>";
    constexpr std::uint32_t kText = 0xFF040000;  // the theme's colour number 4
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        SCOPED_TRACE(scale);
        const auto icon = DrawIcon(kBlock, scale);
        ASSERT_NE(icon, nullptr);
        const auto inside =
            static_cast<double>(std::count(icon->argb.begin(), icon->argb.end(), kText));
        EXPECT_EQ(inside, 16 * scale * 8 * scale);
        EXPECT_EQ(static_cast<double>(std::count(icon->argb.begin(), icon->argb.end(), 0u)),
                  24 * scale * 24 * scale - inside)
            << "and nothing in between";
    }
}

TEST_F(IconsTest, MirroredPicturesAreTurnedRound)
{
    constexpr char kCorner[] =
        "<svg viewBox='0 0 24 24'><path d='M1 2h9.25v5.5z' fill='#08f'/></svg>";
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        SCOPED_TRACE(scale);
        const auto icon = DrawIcon(kCorner, scale);
        const auto mirrored = DrawIcon(kCorner, scale, IconMirroring::kRightToLeft, true);
        ASSERT_NE(mirrored, nullptr);
        EXPECT_NE(icon->argb, mirrored->argb);
        std::vector<std::uint32_t> turned = mirrored->argb;
        for (auto row = turned.begin(); row != turned.end(); std::advance(row, icon->width)) {
            std::reverse(row, row + icon->width);
        }
        EXPECT_EQ(turned, icon->argb);
    }
}

TEST_F(IconsTest, BadArtworkHasNoPicture)
{
    const char* const rows[] = {
        "",
        "no markup",
        "<svg viewBox='0 0 24 24'><rect width='24' height='24'></svg>",
        "<svgs viewBox='0 0 24 24'><rect width='24' height='24'/></svgs>",
        "<svg viewBox='0 0 24 24'/>",
        "<svg viewBox='0 0 0 0'><rect width='24' height='24'/></svg>",
        "<svg viewBox='0 0 24 24'><rect width='24' height='24' clip-path='url'/></svg>",
        "<svg viewBox='0 0 24 24'><style>.{}</style><rect width='24' height='24'/></svg>",
        "<svg viewBox='0 0 24 24'><rect width='24' height='24' style='fill;'/></svg>",
    };
    for (const char* const row : rows) {
        SCOPED_TRACE(row);
        EXPECT_EQ(DrawIcon(row), nullptr);
        EXPECT_EQ(DrawIcon(row, 2), nullptr);
    }
    EXPECT_NE(DrawIcon(kArtwork), nullptr);
}

TEST_F(IconsTest, TheIconsGoBeforeTheDocuments)
{
    for (int round = 0; round < 100; ++round) {
        IconCache::Register("icon", kArtwork);
        ASSERT_NE(DrawIcon(kArtwork), nullptr);
        EXPECT_EQ(SVGHandlerState::DocumentCount(), 1u);
        EXPECT_EQ(SVGHandlerState::NextId(), 1u);
        IconCache::Terminate();  // as the tear-down of the theme does
        EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u);
        ClearDocuments();
    }
}

}  // namespace
}  // namespace svgloom
