#include <kivui/Skins.h>

#include "framework/kivui/tests/SkinFixture.h"
#include "framework/kivui/tests/TraceLog.h"

namespace kivui::skins::core {
namespace {

using ui::ColorRGBA;

constexpr ColorRGBA kRed{1, 0, 0, 1};
constexpr ColorRGBA kGreen{0, 1, 0, 1};
// The built-in text, at brightness 0.
constexpr ColorRGBA kBuiltInText{229 / 255.0f, 232 / 255.0f, 237 / 255.0f, 1};

class Skins : public SkinFixture {
protected:
    static boost::intrusive_ptr<ui::KeyframeThemeEditor> NewTheme()
    {
        boost::intrusive_ptr<ui::KeyframeThemeEditor> theme(new ui::KeyframeThemeEditor(385, 3, 1));
        theme->SetBrightness(0);
        return theme;
    }
    static ColorRGBA TextNow() { return NewTheme()->Color(ui::kText); }
};

TEST_F(Skins, NewestDocumentCounts)
{
    Put("KIVCOLORTHEMESV2", TextColor("#ff0000"));
    SkinManager::Initialize(7);
    EXPECT_EQ(TextNow(), kRed);
    Put("KIVCOLORTHEMESV4", TextColor("#00ff00"));
    EXPECT_EQ(TextNow(), kRed) << "documents are read at the start only";
    SkinManager::Initialize(7);
    EXPECT_EQ(TextNow(), kGreen);
}

TEST_F(Skins, ThemesKeepTheDocumentThatTheyBeganWith)
{
    Put("KIVCOLORTHEMESV5", TextColor("#ff0000"));
    SkinManager::Initialize(7);
    const auto theme = NewTheme();
    SkinManager::Terminate();
    EXPECT_EQ(theme->Color(ui::kText), kRed);
    EXPECT_EQ(TextNow(), kBuiltInText);
}

TEST_F(Skins, WhatADocumentLeavesOutIsBuiltIn)
{
    Put("KIVCOLORTHEMESV5",
        "<colorthemes version='5'><color index='4' keys='0 #ff0000'/>"
        "<color index='300' keys='0 #00ff00'/><fontsize index='1' size='15'/></colorthemes>");
    SkinManager::Initialize(7);
    const auto theme = NewTheme();
    EXPECT_EQ(theme->Color(ui::kText), kRed);
    EXPECT_EQ(theme->Color(300), kGreen);
    EXPECT_EQ(theme->Color(ui::kGround), (ColorRGBA{19 / 255.0f, 22 / 255.0f, 25 / 255.0f, 1}));
    EXPECT_EQ(theme->Color(299), (ColorRGBA{0, 0, 0, 0}));
    EXPECT_EQ(theme->FontSize(ui::kLabelSize), 12);
    EXPECT_EQ(theme->FontSize(ui::kBodySize), 15);
    EXPECT_EQ(theme->FontSize(ui::kTitleSize), 18);
}

TEST_F(Skins, BrokenDocumentGivesTheBuiltInColorsAndAReason)
{
    // An older one that is whole does not step in: it may know nothing of what the dialog shows.
    Put("KIVCOLORTHEMESV4", TextColor("#ff0000"));
    Put("KIVCOLORTHEMESV5", "<colorthemes version='5'>\n<color index='4' keys='0 red'/>");
    const TraceLog log;
    SkinManager::Initialize(7);
    EXPECT_EQ(TextNow(), kBuiltInText);
    ASSERT_EQ(log.Lines().size(), 1u);
    EXPECT_EQ(log.Lines()[0],
              "Theme document was not read: KIVCOLORTHEMESV5:2: key frame \"0 red\" is no "
              "brightness from 0 to 100 and color #RRGGBB or #RRGGBBAA");
}

TEST_F(Skins, WithoutDocumentManagerOrParserColorsAreBuiltIn)
{
    const TraceLog log;
    SkinManager::Initialize(7);
    EXPECT_EQ(TextNow(), kBuiltInText);
    ui::UI_NodeManager::Set(nullptr);
    SkinManager::Initialize(7);
    EXPECT_EQ(TextNow(), kBuiltInText);
    ASSERT_EQ(log.Lines().size(), 2u);
    EXPECT_EQ(log.Lines()[0],
              "Theme document was not read: the node manager's module carries none");
    EXPECT_EQ(log.Lines()[1], "Theme document was not read: no node manager is registered");
}

TEST_F(Skins, WithoutParserColorsAreBuiltIn)
{
    Put("KIVCOLORTHEMESV5", TextColor("#ff0000"));
    kivcore::xml::ResetParserFactory();
    const TraceLog log;
    SkinManager::Initialize(7);
    EXPECT_EQ(TextNow(), kBuiltInText);
    ASSERT_EQ(log.Lines().size(), 1u);
}

TEST_F(Skins, GoCleanOverManyRounds)
{
    Put("KIVCOLORTHEMESV5", TextColor("#ff0000"));
    EXPECT_EQ(SkinManager::Version(), 0);
    for (int version = 7; version < 107; ++version) {
        EXPECT_FALSE(SkinManager::IsInitialized());
        SkinManager::Initialize(version);
        EXPECT_TRUE(SkinManager::IsInitialized());
        EXPECT_EQ(SkinManager::Version(), version);
        EXPECT_EQ(TextNow(), kRed);
        SkinManager::Terminate();
        EXPECT_EQ(TextNow(), kBuiltInText);
    }
    SkinManager::Terminate();
    EXPECT_EQ(SkinManager::Version(), 0);
}

}  // namespace
}  // namespace kivui::skins::core
