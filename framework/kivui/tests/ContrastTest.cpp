// The theme documents that we ship, as they are drawn: contrast by WCAG 2.2 at each of the 101
// brightness values. Texts need 4.5 to 1; icons, frames, stars and other marks 3 to 1. Disabled
// controls are exempt, as in WCAG; hairlines only divide what is told apart without them.

#include <fstream>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include <kivcore/Xml.h>

#include "framework/kivui/src/ThemeDocument.h"
#include "framework/kivui/tests/Contrast.h"
#include "framework/kivui/tests/RecordingPainter.h"

namespace kivui::ui {
namespace {

constexpr double kTextContrast = 4.5;
constexpr double kMarkContrast = 3;
constexpr const char* kNoTint = "";

// Collects the names of the rows.
class NameReader : public kivcore::xml::DocHandler {
public:
    void StartElement(const std::string& name, const kivcore::xml::Attributes& attributes) override
    {
        if (name == "colorthemes") {
            version = *kivcore::xml::FindAttribute(attributes, "version");
        }
        if (name == "color") {
            indices[*kivcore::xml::FindAttribute(attributes, "name")] =
                std::stoul(*kivcore::xml::FindAttribute(attributes, "index"));
        }
    }
    void EndElement(const std::string&) override {}
    void Text(std::string_view) override {}

    std::string version;
    std::map<std::string, std::size_t> indices;
};

constexpr int kOldestVersion = 2;
constexpr int kNewestVersion = 5;

std::string TextOfVersion(int version)
{
    std::ostringstream text;
    text << std::ifstream(KIVUI_THEMES_DIR "/KIVCOLORTHEMESV" + std::to_string(version) + ".xml",
                          std::ios::binary)
                .rdbuf();
    return text.str();
}

class ShippedTheme : public testing::TestWithParam<int> {
protected:
    ShippedTheme()
    {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
        const std::string text = TextOfVersion(GetParam());
        document_ = ReadThemeDocument(text, "shipped");
        kivcore::xml::NewParser()->Parse(text, "shipped", names_);
    }
    ~ShippedTheme() override { kivcore::xml::ResetParserFactory(); }

    const ThemeDocument& Document() const { return document_; }
    const std::string& Version() const { return names_.version; }
    const std::map<std::string, std::size_t>& Names() const { return names_.indices; }

    ColorRGBA ColorOf(const std::string& name, int percent) const
    {
        return ColorAt(document_.colors.at(names_.indices.at(name)), static_cast<float>(percent));
    }

    // `mark` on `ground`, with `tint` laid over the ground.
    void ExpectContrast(const std::string& mark, const std::string& ground, const std::string& tint,
                        double least) const
    {
        for (int percent = 0; percent <= 100; ++percent) {
            ColorRGBA below = ColorOf(ground, percent);
            if (!tint.empty()) {
                below = Over(ColorOf(tint, percent), below);
            }
            const ColorRGBA above = ColorOf(mark, percent);
            ASSERT_EQ(below.alpha, 1) << ground;
            ASSERT_EQ(above.alpha, 1) << mark;
            EXPECT_GE(Contrast(above, below), least)
                << mark << " on " << ground << " " << tint << " at " << percent;
        }
    }

private:
    ThemeDocument document_;
    NameReader names_;
};

INSTANTIATE_TEST_SUITE_P(Versions, ShippedTheme, testing::Range(kOldestVersion, kNewestVersion + 1),
                         [](const auto& version) { return "V" + std::to_string(version.param); });

TEST_P(ShippedTheme, SaysItsVersion)
{
    EXPECT_EQ(Version(), std::to_string(GetParam()));
}

TEST_P(ShippedTheme, Has385NamedColorsWithKeyFrames)
{
    ASSERT_EQ(Document().colors.size(), 385u);
    EXPECT_EQ(Names().size(), 385u);
    for (std::size_t i = 0; i < Document().colors.size(); ++i) {
        EXPECT_GE(Document().colors[i].size(), 3u) << i;
    }
    EXPECT_EQ(Document().fontSizes, (std::vector<double>{12, 13, 18}));
}

TEST_P(ShippedTheme, NamesAreThoseOfTheFramework)
{
    for (const ThemeColorName& row : kThemeColorNames) {
        ASSERT_EQ(Names().count(row.name), 1u) << row.name;
        EXPECT_EQ(Names().at(row.name), row.color) << row.name;
    }
}

// The built-in colours stand in for the newest document; the older looks are others.
TEST_P(ShippedTheme, TheNewestHasTheBuiltInColors)
{
    const std::shared_ptr<const ThemeDocument> builtIn = BuiltInTheme();
    EXPECT_EQ(builtIn->fontSizes, Document().fontSizes);
    if (GetParam() == kNewestVersion) {
        for (const ThemeColorName& row : kThemeColorNames) {
            EXPECT_EQ(builtIn->colors.at(row.color), Document().colors[row.color]) << row.name;
        }
        return;
    }
    for (const ThemeColor color : {kGround, kFieldFrame, kAccent, kAccentTint, kLink}) {
        EXPECT_NE(builtIn->colors.at(color), Document().colors[color]) << color;
    }
}

constexpr const char* kGrounds[] = {"ground", "raised-ground", "field-ground"};
constexpr const char* kTints[] = {kNoTint, "hover-tint", "pressed-tint"};

TEST_P(ShippedTheme, TextsStandOutFromEveryGround)
{
    for (const char* const ground : kGrounds) {
        for (const char* const text : {"text", "secondary-text", "error", "warning", "link"}) {
            ExpectContrast(text, ground, kNoTint, kTextContrast);
        }
        for (const char* const text : {"text", "link"}) {
            ExpectContrast(text, ground, "hover-tint", kTextContrast);
            ExpectContrast(text, ground, "pressed-tint", kTextContrast);
        }
    }
    ExpectContrast("placeholder", "field-ground", kNoTint, kTextContrast);
    ExpectContrast("selection-text", "selection", kNoTint, kTextContrast);
    for (const char* const tint : kTints) {
        ExpectContrast("text", "accent-tint", tint, kTextContrast);
        ExpectContrast("text", "chip-ground", tint, kTextContrast);
    }
    for (const char* const accent : {"accent", "accent-hover", "accent-pressed"}) {
        ExpectContrast("accent-text", accent, kNoTint, kTextContrast);
    }
}

TEST_P(ShippedTheme, MarksStandOutFromEveryGround)
{
    for (const char* const ground : kGrounds) {
        for (const char* const mark :
             {"accent", "accent-hover", "accent-pressed", "focus", "field-frame",
              "field-frame-hover", "star", "star-empty", "changed-dot", "error", "warning"}) {
            ExpectContrast(mark, ground, kNoTint, kMarkContrast);
        }
        for (const char* const tint : kTints) {
            ExpectContrast("icon", ground, tint, kMarkContrast);
        }
        ExpectContrast("changed-dot", ground, "hover-tint", kMarkContrast);
    }
    for (const char* const mark : {"accent", "focus", "changed-dot", "icon"}) {
        ExpectContrast(mark, "accent-tint", kNoTint, kMarkContrast);
    }
    for (const char* const tint : kTints) {
        ExpectContrast("icon", "chip-ground", tint, kMarkContrast);
    }
    ExpectContrast("error", "chip-ground", kNoTint, kMarkContrast);
    for (int number = 1; number <= 12; ++number) {
        ExpectContrast("chart-" + std::to_string(number), "ground", kNoTint, kMarkContrast);
    }
    ExpectContrast("success", "success-ground", kNoTint, kTextContrast);
}

// "button.text.hover" stands on "button.ground.hover".
TEST_P(ShippedTheme, SkinControlsAreReadableInEveryState)
{
    int pairs = 0;
    for (const auto& [name, index] : Names()) {
        const std::size_t part = name.find(".ground.");
        if (part == std::string::npos || name.ends_with(".disabled")) {
            continue;
        }
        const std::string control = name.substr(0, part);
        const std::string state = name.substr(name.rfind('.'));
        ExpectContrast(control + ".text" + state, name, kNoTint, kTextContrast);
        ExpectContrast(control + ".icon" + state, name, kNoTint, kMarkContrast);
        ++pairs;
    }
    EXPECT_EQ(pairs, 17 * 4);
}

TEST_P(ShippedTheme, GroundsGetLighterWithBrightness)
{
    for (const char* const ground : kGrounds) {
        for (int percent = 1; percent <= 100; ++percent) {
            EXPECT_GE(ColorOf(ground, percent).green, ColorOf(ground, percent - 1).green)
                << ground << " at " << percent;
        }
    }
}

}  // namespace
}  // namespace kivui::ui
