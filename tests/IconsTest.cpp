// The dialog's artwork as the application's SVG handler draws it through kivui's icon cache: what
// the files hold, where they draw, how sharp, and how well it can be seen. Contrast is that of WCAG
// 2.2, of the strongest pixel of a picture at scale 1 on what the dialog puts icons on.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kivui/IconCache.h>
#include <kivui/NodeManager.h>
#include <kivui/Theme.h>

#include "framework/kivui/tests/Contrast.h"
#include "svgbridge/SVGHandler.h"
#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/DocumentCreator.h"

namespace {

using namespace kivui::ui;

constexpr double kLeastContrast = 3;
constexpr double kSizes[] = {16, 20};  // of signs and of views
constexpr double kScales[] = {1, 1.5, 2, 3};
constexpr double kGrid = 24;
constexpr double kMargin = 2;

std::map<std::string, std::string> ReadFiles()
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(KIV_ARTWORK_DIR)) {
        if (entry.path().extension() == ".svg") {
            std::ostringstream text;
            text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            files.emplace(entry.path().stem().string(), text.str());
        }
    }
    return files;
}

class Icons : public testing::Test {
protected:
    Icons()
    {
        manager_.SetSVGHandler(&svgloom::SVGHandler::Get());
        UI_NodeManager::Set(&manager_);
        for (const auto& [name, text] : files_) {
            IconCache::Register(name, text);
        }
    }
    ~Icons() override
    {
        IconCache::Terminate();
        manager_.SetSVGHandler(nullptr);
        svgloom::SVGHandler::Get().Clear();
    }

    const std::map<std::string, std::string>& Files() const { return files_; }
    KeyframeThemeEditor& Colors() { return *theme_; }
    Pixels Draw(const std::string& name, double size, double scale)
    {
        const auto pixels = IconCache::Draw(name, *theme_, {size, scale, false, {}});
        return pixels != nullptr ? *pixels : Pixels{};
    }

private:
    struct Manager : OS_NodeManager {};
    Manager manager_;
    boost::intrusive_ptr<KeyframeThemeEditor> theme_{new KeyframeThemeEditor(385, 3, 1)};
    std::map<std::string, std::string> files_ = ReadFiles();
};

std::uint32_t AlphaAt(const Pixels& pixels, int x, int y)
{
    const auto width = static_cast<std::size_t>(pixels.width);
    return pixels.argb[static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)] >> 24U;
}

TEST_F(Icons, AreReadWhole)
{
    EXPECT_GE(Files().size(), 20u);
    for (const auto& [name, text] : Files()) {
        SCOPED_TRACE(name);
        std::string xmlError;
        const auto document = SVGLoom::CreateDocument(
            text, std::make_shared<SVGLoom::ScrivelSVGRenderer>(), &xmlError);
        EXPECT_EQ(xmlError, "");
        const SVGLoom::Rect& box = document->ViewBox();
        EXPECT_EQ(box.x, 0);
        EXPECT_EQ(box.y, 0);
        EXPECT_EQ(box.width, kGrid);
        EXPECT_EQ(box.height, kGrid);
        EXPECT_NE(text.find("viewBox=\"0 0 24 24\""), std::string::npos);
        EXPECT_EQ(text.back(), '\n');
    }
}

struct Attribute {
    std::string name;
    std::string value;
};

// Of all elements; our files quote with " alone.
std::vector<Attribute> AttributesOf(const std::string& text)
{
    std::vector<Attribute> attributes;
    std::size_t end = 0;
    for (std::size_t at = text.find("=\""); at != std::string::npos; at = text.find("=\"", end)) {
        const std::size_t begin = text.find_last_of(" \n<", at) + 1;
        end = text.find('"', at + 2);
        attributes.push_back({text.substr(begin, at - begin), text.substr(at + 2, end - at - 2)});
    }
    return attributes;
}

std::vector<std::string> ElementsOf(const std::string& text)
{
    std::vector<std::string> elements;
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
        if (text[at + 1] != '/') {
            elements.push_back(text.substr(at + 1, text.find_first_of(" \n/>", at) - at - 1));
        }
    }
    return elements;
}

TEST_F(Icons, KeepToPathsAndOneWeight)
{
    const std::set<std::string> elements = {"svg", "title", "path"};
    const std::set<std::string> attributes = {"class",
                                              "d",
                                              "fill",
                                              "fill-rule",
                                              "stroke",
                                              "stroke-linecap",
                                              "stroke-linejoin",
                                              "stroke-width",
                                              "viewBox",
                                              "xmlns"};
    for (const auto& [name, text] : Files()) {
        SCOPED_TRACE(name);
        for (const std::string& element : ElementsOf(text)) {
            EXPECT_TRUE(elements.contains(element)) << element;
        }
        for (const Attribute& attribute : AttributesOf(text)) {
            EXPECT_TRUE(attributes.contains(attribute.name)) << attribute.name;
            if (attribute.name == "stroke-width") {
                EXPECT_EQ(attribute.value, "1.5");
            }
            if (attribute.name == "stroke-linejoin" || attribute.name == "stroke-linecap") {
                EXPECT_EQ(attribute.value, "round");
            }
        }
    }
}

// A colour is none, or a variable of the cache with the light theme's colour behind it.
TEST_F(Icons, HaveTheColorsOfTheTheme)
{
    Colors().SetBrightness(1);
    std::set<std::string> wanted = {"none"};
    for (const IconVariable& variable : IconVariables()) {
        const ColorRGBA color = Colors().Color(variable.color);
        char hex[8];
        std::snprintf(hex, sizeof hex, "#%02lx%02lx%02lx", std::lround(color.red * 255),
                      std::lround(color.green * 255), std::lround(color.blue * 255));
        wanted.insert("var(--" + std::string(variable.name) + ", " + hex + ")");
    }
    for (const auto& [name, text] : Files()) {
        int paints = 0;
        for (const Attribute& attribute : AttributesOf(text)) {
            if (attribute.name == "fill" || attribute.name == "stroke") {
                EXPECT_TRUE(wanted.contains(attribute.value)) << name << " " << attribute.value;
                ++paints;
            }
        }
        EXPECT_GT(paints, 0) << name;
    }
}

TEST_F(Icons, DrawWithinTheirMargins)
{
    for (const auto& [name, text] : Files()) {
        for (const double size : kSizes) {
            for (const double scale : kScales) {
                SCOPED_TRACE(testing::Message() << name << " " << size << " at " << scale);
                const Pixels pixels = Draw(name, size, scale);
                ASSERT_EQ(pixels.width, std::lround(size * scale));
                const int margin = static_cast<int>(kMargin / kGrid * pixels.width);
                EXPECT_GE(margin, 1);
                int opaque = 0;
                for (int y = 0; y < pixels.height; ++y) {
                    for (int x = 0; x < pixels.width; ++x) {
                        const std::uint32_t alpha = AlphaAt(pixels, x, y);
                        const int edge = std::min(
                            std::min(x, y), std::min(pixels.width - 1 - x, pixels.height - 1 - y));
                        if (edge < margin) {
                            EXPECT_EQ(alpha, 0u) << x << "," << y;
                        }
                        opaque += alpha >= 192 ? 1 : 0;
                    }
                }
                EXPECT_GT(opaque, pixels.width / 4);
            }
        }
    }
}

struct SharpCase {
    const char* name;
    double size;
};

// Those that end in a level line above.
constexpr SharpCase kSharpCases[] = {
    {"remove", 16},  {"mixed", 16},    {"camera", 20},    {"caption", 20},
    {"catalog", 20}, {"document", 20}, {"newspaper", 20},
};

TEST_F(Icons, BeginOnWholePixels)
{
    for (const SharpCase& row : kSharpCases) {
        for (const double scale : {1.0, 2.0, 3.0}) {
            SCOPED_TRACE(testing::Message() << row.name << " at " << scale);
            const Pixels pixels = Draw(row.name, row.size, scale);
            ASSERT_GT(pixels.width, 0);
            std::uint32_t strongest = 0;  // of the first line of pixels that has ink
            for (int y = 0; y < pixels.height && strongest == 0; ++y) {
                for (int x = 0; x < pixels.width; ++x) {
                    strongest = std::max(strongest, AlphaAt(pixels, x, y));
                }
            }
            EXPECT_EQ(strongest, 255u);
        }
    }
}

ColorRGBA StrongestPixel(const Pixels& pixels)
{
    const std::uint32_t argb =
        *std::max_element(pixels.argb.begin(), pixels.argb.end(),
                          [](std::uint32_t a, std::uint32_t b) { return a >> 24U < b >> 24U; });
    const auto alpha = static_cast<float>(argb >> 24U);
    const auto part = [&](unsigned shift) {
        return static_cast<float>((argb >> shift) & 0xFFU) / alpha;
    };
    return {part(16), part(8), part(0), alpha / 255};
}

// Stars stand on the page and have no tint; every other icon can come to stand anywhere.
TEST_F(Icons, StandOutFromTheirGroundsAtEveryBrightness)
{
    for (int percent = 0; percent <= 100; ++percent) {
        Colors().SetBrightness(static_cast<float>(percent) / 100);
        const auto expectContrast = [&](const std::string& name, const ColorRGBA& below,
                                        const char* ground) {
            for (const double size : kSizes) {
                const ColorRGBA mark = StrongestPixel(Draw(name, size, 1));
                EXPECT_GE(Contrast(Over(mark, below), below), kLeastContrast)
                    << name << ", " << size << " large, on " << ground << " at " << percent;
            }
        };
        for (const auto& [name, text] : Files()) {
            expectContrast(name, Colors().Color(kGround), "the page");
            if (name.starts_with("star")) {
                continue;
            }
            expectContrast(name, Colors().Color(kAccentTint), "the current view");
            for (const ThemeColor ground : {kGround, kRaisedGround, kFieldGround, kChipGround}) {
                const ColorRGBA below = Colors().Color(ground);
                expectContrast(name, below, "a ground");
                expectContrast(name, Over(Colors().Color(kHoverTint), below), "a hovered one");
                expectContrast(name, Over(Colors().Color(kPressedTint), below), "a pressed one");
            }
        }
    }
}

}  // namespace
