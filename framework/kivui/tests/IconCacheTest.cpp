#include <kivui/IconCache.h>

#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <kivui/NodeManager.h>
#include <kivui/SVG.h>

#include "framework/kivui/tests/RecordingPainter.h"
#include "framework/kivui/tests/TraceLog.h"

namespace kivui::ui {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;

class ChangingTheme : public NumberedTheme {
public:
    ColorRGBA Color(std::size_t index) const override
    {
        return index == kIcon ? icon : NumberedTheme::Color(index);
    }

    ColorRGBA icon = {1, 0, 0, 1};
};

/// Its artwork is the name of a variable, which fills the left half of the picture; a word before
/// it says what goes wrong.
class TestHandler final : public svg::ISVGHandler {
public:
    struct TestDocument : svg::ISVGDocument {
        TestDocument(TestHandler& owner, std::string_view source) : handler(owner), text(source)
        {
            ++handler.documents;
        }
        ~TestDocument() override { --handler.documents; }
        float Width() const override { return 24; }
        float Height() const override { return 24; }

        TestHandler& handler;
        std::string text;
    };
    struct TestStyle : svg::ICSSData {
        explicit TestStyle(TestHandler& owner) : handler(owner) { ++handler.styles; }
        ~TestStyle() override { --handler.styles; }

        TestHandler& handler;
    };

    boost::intrusive_ptr<svg::ISVGDocument> CreateDocument(std::string_view text) override
    {
        ++parses;
        if (text == "unreadable") {
            throw std::out_of_range("invalid string position");
        }
        if (text == "odd") {
            throw 42;
        }
        if (text == "nothing") {
            return {};
        }
        return new TestDocument(*this, text);
    }
    boost::intrusive_ptr<svg::ICSSData> CreateStyleData(std::string_view text) override
    {
        EXPECT_EQ(text, "");
        return new TestStyle(*this);
    }
    void Render(scrivel::DrawingTarget& context, boost::intrusive_ptr<svg::ISVGDocument> document,
                boost::intrusive_ptr<svg::ICSSData> style, std::int32_t width,
                std::int32_t height) override
    {
        ++draws;
        const std::string& text = dynamic_cast<TestDocument&>(*document).text;
        scale = style->rasterizerParameters->Scale();
        if (text == "undrawable") {
            throw std::out_of_range("invalid string position");
        }
        if (text == "large") {
            throw std::bad_alloc();
        }
        const auto color = style->colors.find(text);
        if (color == style->colors.end()) {
            return;
        }
        const scrivel::PathP path(context.Factory().CreatePath());
        const auto right = static_cast<float>(width) / 2;
        const auto bottom = static_cast<float>(height);
        path->MoveTo(0, 0);
        path->LineTo(right, 0);
        path->LineTo(right, bottom);
        path->LineTo(0, bottom);
        path->Close();
        const scrivel::BrushP brush(context.Factory().CreateSolidBrush(color->second));
        context.Surface().FillPath(*path, *brush, true);
    }

    int parses = 0;
    int draws = 0;
    int documents = 0;
    int styles = 0;
    float scale = 0;
};

class TestNodeManager : public OS_NodeManager {};

class IconCacheTest : public testing::Test {
protected:
    IconCacheTest()
    {
        UI_NodeManager::Set(&manager);
        manager.SetSVGHandler(&handler);
        IconCache::Register("icon", "icon");
        IconCache::Register("arrow", "icon", IconMirroring::kRightToLeft);
    }
    ~IconCacheTest() override
    {
        IconCache::Terminate();
        EXPECT_EQ(handler.documents, 0);
        EXPECT_EQ(handler.styles, 0);
    }

    std::shared_ptr<const Pixels> Draw(std::string_view name, double scale = 1)
    {
        IconRequest request;
        request.scale = scale;
        return IconCache::Draw(name, theme, request);
    }
    std::shared_ptr<const Pixels> DrawArtwork(std::string_view svg)
    {
        return IconCache::DrawArtwork(svg, IconMirroring::kNever, theme, {});
    }

    static std::uint32_t LeftPixel(const Pixels& pixels) { return pixels.argb.front(); }
    static std::uint32_t RightPixel(const Pixels& pixels) { return pixels.argb.back(); }

    ChangingTheme theme;
    TestHandler handler;
    TestNodeManager manager;
};

TEST_F(IconCacheTest, DrawsAtTheSizeAndScale)
{
    struct Row {
        double size;
        double scale;
        int want;  // pixels; 0 for none
    };
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const Row rows[] = {
        {24, 1, 24},     {24, 1.5, 36},     {24, 2, 48},       {24, 3, 72},
        {16, 1.25, 20},  {15, 1.5, 23},  // rounded half up
        {0.25, 1, 1},                    // at least one pixel
        {1024, 1, 1024},                 // the largest
        {24, 0, 0},      {1e300, 1e300, 0}, {kInfinity, 1, 0}, {24, kNan, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.size << " at " << row.scale);
        IconRequest request;
        IconCache::Clear();
        request.sizeUnits = row.size;
        request.scale = row.scale;
        const auto pixels = IconCache::Draw("icon", theme, request);
        ASSERT_EQ(pixels != nullptr, row.want != 0);
        if (pixels != nullptr) {
            EXPECT_EQ(pixels->width, row.want);
            EXPECT_EQ(pixels->height, row.want);
            EXPECT_EQ(pixels->argb.size(), static_cast<std::size_t>(row.want * row.want));
            EXPECT_EQ(handler.scale, static_cast<float>(row.scale));
        }
    }
}

TEST_F(IconCacheTest, ColorsAreTheThemes)
{
    ASSERT_EQ(IconVariables().size(), 19u);
    for (const IconVariable& variable : IconVariables()) {
        SCOPED_TRACE(variable.name);
        const auto pixels = DrawArtwork(variable.name);
        ASSERT_NE(pixels, nullptr);
        const auto red =
            static_cast<std::uint32_t>(variable.color == kIcon ? std::size_t{255} : variable.color);
        EXPECT_EQ(LeftPixel(*pixels), 0xFF000000u | red << 16);
        EXPECT_EQ(RightPixel(*pixels), 0u);
    }
}

TEST_F(IconCacheTest, ARequestsOwnColorsGoFirst)
{
    const IconColor blue[] = {{"icon", {0, 0, 1, 1}}, {"other", {0, 0, 1, 0.5f}}};
    IconRequest request;
    request.colors = blue;
    const auto pixels = IconCache::Draw("icon", theme, request);
    EXPECT_EQ(LeftPixel(*pixels), kBlue);
    EXPECT_EQ(LeftPixel(*Draw("icon")), kRed);
    const auto other = IconCache::DrawArtwork("other", IconMirroring::kNever, theme, request);
    EXPECT_EQ(LeftPixel(*other), 0x80000080u) << "premultiplied";
    EXPECT_EQ(DrawArtwork("other"), nullptr);
}

TEST_F(IconCacheTest, MirrorsWhatSaysSo)
{
    struct Row {
        const char* name;
        bool mirrored;
        bool wantLeft;
    };
    const Row rows[] = {{"icon", false, true},
                        {"icon", true, true},
                        {"arrow", false, true},
                        {"arrow", true, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.name << row.mirrored);
        IconRequest request;
        request.mirrored = row.mirrored;
        const auto pixels = IconCache::Draw(row.name, theme, request);
        EXPECT_EQ(LeftPixel(*pixels), row.wantLeft ? kRed : 0u);
        EXPECT_EQ(RightPixel(*pixels), row.wantLeft ? 0u : kRed);
        const auto mirroring = std::string_view(row.name) == "arrow" ? IconMirroring::kRightToLeft
                                                                     : IconMirroring::kNever;
        const auto same = IconCache::DrawArtwork("icon", mirroring, theme, request);
        EXPECT_EQ(same->argb, pixels->argb);
    }
}

TEST_F(IconCacheTest, DrawsOnceWhatIsAskedForTwice)
{
    const auto first = Draw("icon");
    const auto second = Draw("icon");
    EXPECT_EQ(first, second) << "the very same pixels";
    EXPECT_EQ(handler.draws, 1);
    EXPECT_EQ(IconCache::PictureCount(), 1u);
    EXPECT_EQ(IconCache::PictureBytes(), 24u * 24 * 4);
    // Another size of the same document.
    EXPECT_NE(Draw("icon", 2), first);
    EXPECT_EQ(handler.parses, 1);
    EXPECT_EQ(handler.draws, 2);
    // The same size in pixels, at another scale.
    IconRequest request;
    request.sizeUnits = 12;
    request.scale = 2;
    EXPECT_EQ(IconCache::Draw("icon", theme, request), first);
    // The icon that does not change is the same for both directions.
    request.mirrored = true;
    EXPECT_EQ(IconCache::Draw("icon", theme, request), first);
    EXPECT_EQ(handler.draws, 2);
}

TEST_F(IconCacheTest, AChangeOfTheThemeDropsThePictures)
{
    const auto red = Draw("icon");
    Draw("icon", 2);
    theme.icon = {0, 0, 1, 1};
    const auto blue = Draw("icon");
    EXPECT_EQ(LeftPixel(*blue), kBlue);
    EXPECT_EQ(LeftPixel(*red), kRed) << "what was handed out never changes";
    EXPECT_EQ(IconCache::PictureCount(), 1u);
    EXPECT_EQ(handler.parses, 1) << "the document stands";
    theme.icon = {1, 0, 0, 1};
    EXPECT_EQ(LeftPixel(*Draw("icon")), kRed);
    // Another theme that looks the same is the same.
    const ChangingTheme twin;
    const int draws = handler.draws;
    IconCache::Draw("icon", twin, {});
    EXPECT_EQ(handler.draws, draws);
}

TEST_F(IconCacheTest, TheSameAtEachRound)
{
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        const auto first = Draw("icon", scale);
        IconCache::Clear();
        EXPECT_EQ(Draw("icon", scale)->argb, first->argb);
    }
}

TEST_F(IconCacheTest, WithoutAHandlerThereIsNoPicture)
{
    manager.SetSVGHandler(nullptr);
    EXPECT_EQ(manager.GetSVGHandler(), nullptr);
    EXPECT_EQ(Draw("icon"), nullptr);
    EXPECT_EQ(DrawArtwork("icon"), nullptr);
    manager.SetSVGHandler(&handler);
    EXPECT_NE(Draw("icon"), nullptr);
    UI_NodeManager::Set(nullptr);
    EXPECT_EQ(Draw("icon"), nullptr);
    UI_NodeManager::Set(&manager);
    EXPECT_NE(Draw("icon"), nullptr);
}

TEST_F(IconCacheTest, BadArtworkHasNoPicture)
{
    struct Row {
        const char* artwork;
        int draws;  // how often it is drawn, for two requests
        const char* trace;
    };
    const Row rows[] = {
        {"unreadable", 0, "An icon was not parsed: invalid string position"},
        {"odd", 0, "An icon was not parsed: unknown exception"},
        {"nothing", 0, nullptr},
        {"undrawable", 1, "An icon was not drawn: invalid string position"},
        {"unknown-variable", 1, nullptr},  // shows nothing
        {"", 1, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.artwork);
        const TraceLog log;
        handler.parses = 0;
        handler.draws = 0;
        IconCache::Register(row.artwork, row.artwork);
        EXPECT_EQ(Draw(row.artwork), nullptr);
        EXPECT_EQ(Draw(row.artwork), nullptr);
        EXPECT_EQ(handler.parses, 1);
        EXPECT_EQ(handler.draws, row.draws);
        EXPECT_EQ(log.Lines(), row.trace != nullptr ? std::vector<std::string>{row.trace}
                                                    : std::vector<std::string>());
        // Other sizes do not parse it again either.
        if (row.draws == 0 && row.trace != nullptr) {
            EXPECT_EQ(Draw(row.artwork, 2), nullptr);
            EXPECT_EQ(handler.parses, 1);
        }
    }
    EXPECT_EQ(Draw("no such icon"), nullptr);
}

TEST_F(IconCacheTest, OutOfMemoryIsTheCallersBusiness)
{
    EXPECT_THROW(DrawArtwork("large"), std::bad_alloc);
    EXPECT_EQ(IconCache::PictureCount(), 0u) << "may go better the next time";
    EXPECT_NE(DrawArtwork("icon"), nullptr);
}

TEST_F(IconCacheTest, ANameTakesNewArtwork)
{
    EXPECT_TRUE(IconCache::IsRegistered("icon"));
    EXPECT_FALSE(IconCache::IsRegistered("other"));
    const auto first = Draw("icon");
    IconCache::Register("icon", "icon");
    EXPECT_EQ(Draw("icon"), first) << "the same artwork changes nothing";
    IconCache::Register("icon", "text");
    EXPECT_EQ(handler.documents, 0) << "the old document is let go";
    const std::uint32_t text = 0xFF000000u | static_cast<std::uint32_t>(kText) << 16;
    EXPECT_EQ(LeftPixel(*Draw("icon")), text);
    // The same artwork with another direction.
    IconCache::Register("icon", "text", IconMirroring::kRightToLeft);
    IconRequest request;
    request.mirrored = true;
    EXPECT_EQ(RightPixel(*IconCache::Draw("icon", theme, request)), text);
}

TEST_F(IconCacheTest, PicturesAreBounded)
{
    IconRequest request;
    request.sizeUnits = 512;  // 1 MiB each
    std::vector<std::string> names;
    std::vector<IconColor> colors(1);
    for (int i = 0; i < 20; ++i) {
        colors[0] = {"icon", {0, 0, static_cast<float>(i + 1) / 20, 1}};
        request.colors = colors;
        ASSERT_NE(IconCache::Draw("icon", theme, request), nullptr);
        EXPECT_LE(IconCache::PictureBytes(), kMaxIconBytes);
        // The one asked for in between stays.
        EXPECT_EQ(Draw("arrow"), Draw("arrow"));
    }
    EXPECT_EQ(IconCache::PictureCount(), 8u);  // seven large ones and the small one
    const int draws = handler.draws;
    EXPECT_NE(Draw("arrow"), nullptr);
    IconCache::Draw("icon", theme, request);
    EXPECT_EQ(handler.draws, draws) << "the ones used last are kept";
    colors[0].color.blue = 1.0f / 20;
    IconCache::Draw("icon", theme, request);
    EXPECT_EQ(handler.draws, draws + 1) << "the first one is gone";
}

TEST_F(IconCacheTest, SmallPicturesAreBoundedByTheirNumber)
{
    IconRequest request;
    request.sizeUnits = 1;
    std::vector<IconColor> colors(1);
    for (int i = 0; i < 5000; ++i) {
        colors[0] = {"own", {0, static_cast<float>(i) / 5000, 0, 1}};
        request.colors = colors;
        IconCache::Draw("icon", theme, request);
    }
    EXPECT_EQ(IconCache::PictureCount(), 4096u);
}

TEST_F(IconCacheTest, ArtworkWithoutANameIsBounded)
{
    for (int i = 0; i < 1000; ++i) {
        DrawArtwork("variable-" + std::to_string(i));
        EXPECT_LE(handler.documents, static_cast<int>(kMaxIconTexts));
    }
    handler.parses = 0;
    const std::string megabytes(3U << 20, 'x');
    DrawArtwork(megabytes);
    DrawArtwork(megabytes);
    EXPECT_EQ(handler.parses, 1);
    EXPECT_EQ(handler.documents, 1000 % 256 + 1);
    DrawArtwork(megabytes + "y");
    EXPECT_EQ(handler.documents, 1) << "too many bytes: the others were let go";
}

TEST_F(IconCacheTest, HandlesGoWithTheHandler)
{
    const auto drawAll = [this] {
        EXPECT_NE(Draw("icon"), nullptr);
        EXPECT_NE(DrawArtwork("text"), nullptr);
        EXPECT_EQ(handler.documents, 2);
        EXPECT_EQ(handler.styles, 1);
    };
    const auto expectGone = [this] {
        EXPECT_EQ(handler.documents, 0);
        EXPECT_EQ(handler.styles, 0);
        EXPECT_EQ(IconCache::PictureCount(), 0u);
        EXPECT_EQ(IconCache::PictureBytes(), 0u);
    };
    drawAll();
    manager.SetSVGHandler(&handler);
    EXPECT_EQ(handler.documents, 2) << "nothing changed";
    TestHandler other;
    manager.SetSVGHandler(&other);
    expectGone();
    EXPECT_NE(Draw("icon"), nullptr);
    EXPECT_EQ(other.documents, 1);
    manager.SetSVGHandler(&handler);
    EXPECT_EQ(other.documents, 0);

    drawAll();
    IconCache::Clear();
    expectGone();
    EXPECT_TRUE(IconCache::IsRegistered("icon"));

    drawAll();
    Theme::Terminate();
    expectGone();
    EXPECT_FALSE(IconCache::IsRegistered("icon")) << "names end with the theme";
    IconCache::Register("icon", "icon");

    auto second = std::make_unique<TestNodeManager>();
    second->SetSVGHandler(&handler);
    UI_NodeManager::Set(second.get());
    drawAll();
    second.reset();
    expectGone();
    UI_NodeManager::Set(&manager);

    // A manager that another one replaced: its handler is not the one in use.
    drawAll();
    TestNodeManager third;
    third.SetSVGHandler(&other);
    UI_NodeManager::Set(&third);
    EXPECT_NE(Draw("icon"), nullptr);
    EXPECT_EQ(other.documents, 1);
    EXPECT_EQ(handler.documents, 0);
    UI_NodeManager::Set(&manager);
    IconCache::Clear();
}

TEST_F(IconCacheTest, EndingWithoutABeginningIsSilent)
{
    IconCache::Terminate();
    IconCache::Terminate();
    IconCache::Clear();
    EXPECT_EQ(IconCache::PictureCount(), 0u);
    EXPECT_EQ(IconCache::PictureBytes(), 0u);
    EXPECT_FALSE(IconCache::IsRegistered("icon"));
    EXPECT_EQ(Draw("icon"), nullptr);
}

}  // namespace
}  // namespace kivui::ui
