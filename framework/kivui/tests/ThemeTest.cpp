#include <kivui/Theme.h>

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace kivui::ui {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

boost::intrusive_ptr<KeyframeThemeEditor> NewTheme(std::size_t colors = 385, std::size_t sizes = 3)
{
    return new KeyframeThemeEditor(colors, sizes, 1);
}

TEST(Theme, IsHeldUntilItIsLetGo)
{
    EXPECT_FALSE(Theme::IsInitialized());
    EXPECT_THROW(Theme::Get(), std::logic_error);
    Theme::Terminate();

    const auto first = NewTheme();
    const auto second = NewTheme();
    EXPECT_EQ(first->ReferenceCount(), 1);
    Theme::Initialize(first);
    EXPECT_TRUE(Theme::IsInitialized());
    EXPECT_EQ(&Theme::Get(), first.get());
    EXPECT_EQ(first->ReferenceCount(), 2);

    Theme::Initialize(second);
    EXPECT_EQ(first->ReferenceCount(), 1);
    EXPECT_EQ(second->ReferenceCount(), 2);
    Theme::Initialize(second);
    EXPECT_EQ(second->ReferenceCount(), 2);

    Theme::Terminate();
    EXPECT_EQ(second->ReferenceCount(), 1);
    EXPECT_FALSE(Theme::IsInitialized());
    EXPECT_THROW(Theme::Get(), std::logic_error);
    Theme::Terminate();

    Theme::Initialize(first);
    Theme::Initialize(nullptr);
    EXPECT_FALSE(Theme::IsInitialized());
    EXPECT_EQ(first->ReferenceCount(), 1);
}

class DyingTheme : public KeyframeThemeEditor {
public:
    explicit DyingTheme(int& deaths) : KeyframeThemeEditor(1, 1, 1), deaths_(deaths) {}
    ~DyingTheme() override
    {
        // Whoever looks at the theme in force now must not find the dying one.
        EXPECT_FALSE(Theme::IsInitialized());
        ++deaths_;
    }

private:
    int& deaths_;
};

TEST(Theme, LastReferenceMayBeTheFrameworks)
{
    int deaths = 0;
    for (int round = 1; round <= 50; ++round) {
        Theme::Initialize(new DyingTheme(deaths));
        EXPECT_EQ(deaths, round - 1);
        Theme::Terminate();
        EXPECT_EQ(deaths, round);
    }
}

struct BrightnessCase {
    float brightness;
    float want;
};

constexpr BrightnessCase kBrightnessCases[] = {
    {0, 0},          {0.3f, 0.3f},
    {1, 1},          {-0.01f, 0},
    {1.01f, 1},      {-1e9f, 0},
    {1e9f, 1},       {kInfinity, 1},
    {-kInfinity, 0}, {std::numeric_limits<float>::quiet_NaN(), 0.5f},
};

TEST(Theme, BrightnessIsKeptAndClampedWhereItDraws)
{
    const auto theme = NewTheme();
    EXPECT_EQ(theme->Brightness(), 0.5f);
    for (const BrightnessCase& row : kBrightnessCases) {
        SCOPED_TRACE(row.brightness);
        theme->SetBrightness(row.brightness);
        EXPECT_EQ(theme->DrawingBrightness(), row.want);
        if (row.brightness == row.brightness) {
            EXPECT_EQ(theme->Brightness(), row.brightness);
        } else {
            EXPECT_NE(theme->Brightness(), theme->Brightness());
        }
        const ColorRGBA color = theme->Color(kText);
        theme->SetBrightness(row.want);
        EXPECT_EQ(theme->Color(kText), color);
    }
}

// What hosts pass: a whole percent as a float divided by 100.
ColorRGBA GroundAt(int percent)
{
    const auto theme = NewTheme();
    theme->SetBrightness(static_cast<float>(percent) / 100.0f);
    return theme->Color(kGround);
}

TEST(Theme, ColorsFollowTheBrightness)
{
    EXPECT_EQ(GroundAt(0), (ColorRGBA{0x13 / 255.0f, 0x16 / 255.0f, 0x19 / 255.0f, 1}));
    EXPECT_EQ(GroundAt(100), (ColorRGBA{0xf4 / 255.0f, 0xf7 / 255.0f, 0xfb / 255.0f, 1}));
    // Half the way from 0 to the step.
    EXPECT_NEAR(GroundAt(25).red, (0x13 + 0x3e) / 2.0 / 255, 1e-5);
    // The step stands at 50 itself.
    EXPECT_NEAR(GroundAt(49).red, (0x13 * 0.02 + 0x3e * 0.98) / 255, 1e-5);
    EXPECT_EQ(GroundAt(50), (ColorRGBA{0xc4 / 255.0f, 0xc7 / 255.0f, 0xcb / 255.0f, 1}));
    EXPECT_NEAR(GroundAt(75).red, (0xc4 + 0xf4) / 2.0 / 255, 1e-5);
}

TEST(Theme, FixedColorIsTheSameAtEveryBrightness)
{
    const auto theme = NewTheme();
    theme->SetColor(kClearOverlay, {1, 1, 1, 0});
    theme->SetColor(kText, {0.25f, 0.5f, 0.75f, 1});
    for (int percent = 0; percent <= 100; ++percent) {
        theme->SetBrightness(static_cast<float>(percent) / 100.0f);
        EXPECT_EQ(theme->Color(kClearOverlay), (ColorRGBA{1, 1, 1, 0}));
        EXPECT_EQ(theme->Color(kText), (ColorRGBA{0.25f, 0.5f, 0.75f, 1}));
    }
    EXPECT_NE(theme->Color(kSecondaryText), theme->Color(kText));
}

TEST(Theme, IndicesThatAreNotThereAreHarmless)
{
    const auto theme = NewTheme(5, 1);
    theme->SetColor(5, {1, 1, 1, 1});
    theme->SetColor(std::numeric_limits<std::size_t>::max(), {1, 1, 1, 1});
    theme->SetFontSize(1, 40);
    EXPECT_EQ(theme->Color(5), (ColorRGBA{0, 0, 0, 0}));
    EXPECT_EQ(theme->Color(std::numeric_limits<std::size_t>::max()), (ColorRGBA{0, 0, 0, 0}));
    EXPECT_EQ(theme->FontSize(1), 0);
    EXPECT_NE(theme->Color(kText).alpha, 0);
    EXPECT_EQ(NewTheme(0, 0)->Color(0), (ColorRGBA{0, 0, 0, 0}));
    EXPECT_EQ(NewTheme(0, 0)->FontSize(0), 0);
}

TEST(Theme, FontSizesBeginAsBuiltIn)
{
    const auto theme = NewTheme(385, 4);
    EXPECT_EQ(theme->FontSize(kLabelSize), 12);
    EXPECT_EQ(theme->FontSize(kBodySize), 13);
    EXPECT_EQ(theme->FontSize(kTitleSize), 18);
    EXPECT_EQ(theme->FontSize(3), 0);
    theme->SetFontSize(kLabelSize, 11.5);
    EXPECT_EQ(theme->FontSize(kLabelSize), 11.5);
}

TEST(Theme, ChangeCountMovesWhenSomethingMayLookDifferent)
{
    const auto theme = NewTheme();
    std::size_t last = theme->ChangeCount();
    const auto hasMoved = [&] {
        const bool moved = theme->ChangeCount() != last;
        last = theme->ChangeCount();
        return moved;
    };
    theme->SetBrightness(0.5f);
    EXPECT_FALSE(hasMoved());
    theme->SetBrightness(0.6f);
    EXPECT_TRUE(hasMoved());
    theme->SetBrightness(1);
    EXPECT_TRUE(hasMoved());
    theme->SetBrightness(2);
    EXPECT_FALSE(hasMoved()) << "it draws as before";
    theme->SetColor(kText, {0, 0, 0, 1});
    EXPECT_TRUE(hasMoved());
    theme->SetFontSize(0, 12);
    EXPECT_TRUE(hasMoved());
    theme->SetColor(385, {0, 0, 0, 1});
    theme->SetFontSize(3, 12);
    EXPECT_FALSE(hasMoved());
    theme->NotifyThemeChanged();
    EXPECT_TRUE(hasMoved());
}

}  // namespace
}  // namespace kivui::ui
