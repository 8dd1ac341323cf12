#include "framework/kivtoolkit/src/WxPainter.h"

#include "framework/kivtoolkit/tests/ScriptedDialog.h"

#include <wx/image.h>

namespace kivtoolkit::tests {
namespace {

namespace ui = kivui::ui;

constexpr ui::ColorRGBA kBlack{0, 0, 0, 1};
constexpr ui::ColorRGBA kWhite{1, 1, 1, 1};

class WxPainterTest : public ToolkitTest {
protected:
    // Draws on a white ground and gives the picture, a character a pixel: "#" black, "." white,
    // "+" between.
    template <class Function>
    std::vector<std::string> Draw(int width, int height, Function draw, double deviceScale = 1)
    {
        wxImage image(width, height);
        image.SetRGB(wxRect(0, 0, width, height), 255, 255, 255);
        {
            const std::unique_ptr<wxGraphicsContext> context(wxGraphicsContext::Create(image));
            context->Scale(deviceScale, deviceScale);
            context->SetContentScaleFactor(deviceScale);
            WxPainter painter(*context);
            draw(painter);
        }
        std::vector<std::string> rows;
        for (int y = 0; y < height; ++y) {
            std::string row;
            for (int x = 0; x < width; ++x) {
                const int level = image.GetRed(x, y);
                row += level == 0 ? '#' : level == 255 ? '.' : '+';
            }
            rows.push_back(row);
        }
        return rows;
    }
};

TEST_F(WxPainterTest, WholePixelsStaySharp)
{
    EXPECT_EQ(Draw(6, 4,
                   [](WxPainter& p) {
                       p.Fill({1, 1, 4, 2}, 0, kBlack);
                   }),
              (std::vector<std::string>{"......", ".####.", ".####.", "......"}));
    EXPECT_EQ(Draw(6, 5,
                   [](WxPainter& p) {
                       p.Frame({0, 0, 6, 5}, 0, 1, kBlack);
                   }),
              (std::vector<std::string>{"######", "#....#", "#....#", "#....#", "######"}));
    EXPECT_EQ(Draw(6, 5,
                   [](WxPainter& p) {
                       p.Frame({0, 0, 6, 5}, 0, 2, kBlack);
                   }),
              (std::vector<std::string>{"######", "######", "##..##", "######", "######"}));
}

TEST_F(WxPainterTest, CornersAreRound)
{
    const auto rows = Draw(12, 12, [](WxPainter& p) { p.Fill({0, 0, 12, 12}, 4, kBlack); });
    EXPECT_NE(rows[0][0], '#');
    EXPECT_EQ(rows[0][6], '#');
    EXPECT_EQ(rows[6][0], '#');
}

TEST_F(WxPainterTest, PixelsArePremultiplied)
{
    ui::Pixels pixels;
    pixels.width = 3;
    pixels.height = 1;
    pixels.argb = {0xFF000000U, 0x00000000U, 0x80000000U};
    EXPECT_EQ(Draw(3, 1,
                   [&](WxPainter& p) {
                       p.DrawPixels(pixels, {0, 0});
                   }),
              (std::vector<std::string>{"#.+"}));
}

TEST_F(WxPainterTest, PixelsGoToWholePixels)
{
    ui::Pixels pixels;
    pixels.width = 2;
    pixels.height = 1;
    pixels.argb = {0xFF000000U, 0xFF000000U};
    EXPECT_EQ(Draw(5, 2,
                   [&](WxPainter& p) {
                       EXPECT_EQ(p.DeviceScale(), 1);
                       p.DrawPixels(pixels, {1.4, 0.6});
                   }),
              (std::vector<std::string>{".....", ".##.."}));
}

TEST_F(WxPainterTest, PixelsAreThoseOfTheDevice)
{
    ui::Pixels pixels;
    pixels.width = 3;
    pixels.height = 1;
    pixels.argb = {0xFF000000U, 0, 0xFF000000U};
    EXPECT_EQ(Draw(
                  6, 3,
                  [&](WxPainter& p) {
                      EXPECT_EQ(p.DeviceScale(), 2);
                      p.DrawPixels(pixels, {1, 0.6});
                  },
                  /*deviceScale=*/2),
              (std::vector<std::string>{"......", "..#.#.", "......"}));
}

TEST_F(WxPainterTest, LongTextEndsInAnEllipsis)
{
    ui::TextStyle style;
    style.color = kBlack;
    const auto ink = [&](const char16_t* text, double width) {
        int last = -1;
        const auto rows = Draw(200, 30, [&](WxPainter& p) {
            p.Text(text, {0, 0, width, 30}, style);
        });
        for (const std::string& row : rows) {
            last = std::max(last, static_cast<int>(row.find_last_not_of('.')));
        }
        return last;
    };
    EXPECT_GT(ink(u"A long text of many words", 200), 100);
    EXPECT_LE(ink(u"A long text of many words", 80), 80);
    EXPECT_GT(ink(u"A long text of many words", 80), 40);
}

TEST_F(WxPainterTest, Alignment)
{
    MeasuringPainter measuring;
    ui::TextStyle style;
    style.color = kBlack;
    EXPECT_GT(measuring.Get().MeasureText(u"MMMM", style).width,
              measuring.Get().MeasureText(u"MM", style).width * 1.9);
    EXPECT_EQ(measuring.Get().MeasureText(u"", style).width, 0);
    const auto firstInk = [&](ui::TextAlign align) {
        style.align = align;
        std::size_t first = 1000;
        for (const std::string& row : Draw(100, 30, [&](WxPainter& p) {
                 p.Text(u"MM", {0, 0, 100, 30}, style);
             })) {
            first = std::min(first, row.find_first_not_of('.'));
        }
        return first;
    };
    EXPECT_LT(firstInk(ui::TextAlign::kStart), 5U);
    EXPECT_GT(firstInk(ui::TextAlign::kCenter), 30U);
    EXPECT_GT(firstInk(ui::TextAlign::kEnd), 60U);
}

TEST_F(WxPainterTest, Colors)
{
    EXPECT_EQ(ToWx(kWhite), wxColour(255, 255, 255, 255));
    EXPECT_EQ(ToWx(ui::ColorRGBA{0.5F, 0, 2, -1}), wxColour(128, 0, 255, 0));
}

}  // namespace
}  // namespace kivtoolkit::tests
