// The library's life over the real framework: what is up after which call, and what is left.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/LibraryFixture.h"
#include "tests/UserFolder.h"

#include <kivcore/Config.h>
#include <kivcore/Dir.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>
#include <kivcore/Trace.h>
#include <kivcore/Xml.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivui/IconCache.h>
#include <kivui/NodeManager.h>
#include <kivui/PrefManager.h>
#include <kivui/SVG.h>
#include <kivui/Skins.h>
#include <kivui/Theme.h>
#include <kivxmp/kivxmp.h>

namespace kivtests {
namespace {

namespace config = kivcore::config;
using kivui::ui::DPISelectionType;
using kivui::ui::ScaleMatrixT;
using kivui::ui::UI_NodeManager;

constexpr char kAllUp[] =
    "configuration\nclient name\ncompany name\nheadless\nerror manager\nlocalizer\nlocale\n"
    "parser factory\nnode manager\npreferences\nskins\ntheme\ndialog\n";

class LibraryTest : public LibraryFixture {
protected:
    bool Dialog()
    {
        __XMPMeta__* object = nullptr;
        EXPECT_EQ(KivXmpCreate(&object), kKivXmpOk);
        const bool result = api.doDialog(object, nullptr);
        KivXmpRelease(object);
        return result;
    }
};

TEST_F(LibraryTest, NullRecordTouchesNothing)
{
    EXPECT_FALSE(api.initialize(nullptr));
    EXPECT_EQ(WhatIsUp(), "");
    // It does not count either: one pair of calls brings everything up and down.
    const MetadataAPIInitParams record = StartRecord();
    EXPECT_TRUE(api.initialize(&record));
    EXPECT_EQ(WhatIsUp(), kAllUp);
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "");
}

TEST_F(LibraryTest, BringsUpWithTheStatedValues)
{
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(LastFailure(), "");
    EXPECT_EQ(config::CompanyName(), u"Orvan");
    EXPECT_EQ(config::ClientName(), u"Darkroom");
    EXPECT_EQ(config::ClientVersion(), u"2.1");
    EXPECT_EQ(config::ClientInternalVersion(), u"2.1.0");
    EXPECT_EQ(config::ClientBuildNumber(), u"417");
    EXPECT_EQ(kivui::skins::core::SkinManager::Version(), 7);
    const kivui::ui::ColorRGBA clear{1, 1, 1, 0};
    EXPECT_EQ(kivui::ui::Theme::Get().Color(236), clear);
    EXPECT_EQ(kivui::ui::Theme::Get().FontSize(0), 12.0);
    EXPECT_EQ(kivui::ui::Theme::Get().FontSize(3), 0) << "there are three font sizes";
    ASSERT_EQ(UI_NodeManager::Get(false)->Modules().size(), 1U);
    EXPECT_EQ(UI_NodeManager::Get(false)->Modules()[0].name, "kivmetadataui");
    api.terminate();
}

constexpr char kArtwork[] =
    "<svg viewBox='0 0 24 24'><rect width='12' height='24' fill='var(--text, red)'/></svg>";

TEST_F(LibraryTest, DrawsArtworkWhileItIsUp)
{
    const MetadataAPIInitParams record = StartRecord();
    kivui::svg::ISVGHandler* handler = nullptr;
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        ASSERT_TRUE(api.initialize(&record));
        ASSERT_NE(UI_NodeManager::Get(false)->GetSVGHandler(), nullptr);
        if (round != 0) {
            EXPECT_EQ(UI_NodeManager::Get(false)->GetSVGHandler(), handler) << "lives on";
        }
        handler = UI_NodeManager::Get(false)->GetSVGHandler();
        const kivui::ui::Theme& theme = kivui::ui::Theme::Get();
        const auto icon = kivui::ui::IconCache::DrawArtwork(
            kArtwork, kivui::ui::IconMirroring::kNever, theme, {});
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(std::count(icon->argb.begin(), icon->argb.end(), 0U), 12 * 24);
        EXPECT_EQ(icon->argb.front() >> 24, 0xFFU);
        EXPECT_THAT(WhatIsUp(), ::testing::HasSubstr("pictures of icons\n"));
        api.terminate();
        EXPECT_EQ(WhatIsUp(), "");
        EXPECT_EQ(kivui::ui::IconCache::PictureCount(), 0U);
    }
}

// The numbers of documents begin anew in each round, so an old handle may meet a new document.
TEST_F(LibraryTest, HandlesOfDocumentsOutliveARound)
{
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    kivui::svg::ISVGHandler& handler = *UI_NodeManager::Get(false)->GetSVGHandler();
    boost::intrusive_ptr<kivui::svg::ISVGDocument> old = handler.CreateDocument(kArtwork);
    EXPECT_EQ(old->Width(), 24);
    api.terminate();
    EXPECT_EQ(old->Width(), 0);
    ASSERT_TRUE(api.initialize(&record));
    const auto fresh = handler.CreateDocument("<svg viewBox='0 0 7 7'/>");
    EXPECT_EQ(old->Width(), 7);
    old.reset();
    EXPECT_EQ(fresh->Width(), 0);
    api.terminate();
}

TEST_F(LibraryTest, WhatIsGoneThrows)
{
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    api.terminate();
    EXPECT_THROW(config::Localizer::Get(), std::logic_error);
    EXPECT_EQ(UI_NodeManager::Get(true), nullptr);
    EXPECT_THROW(UI_NodeManager::Get(false), std::logic_error);
    EXPECT_THROW(kivui::ui::Theme::Get(), std::logic_error);
    EXPECT_THROW(kivui::ui::PrefManager::Preferences(), std::logic_error);
    EXPECT_THROW(kivcore::xml::NewParser(), std::logic_error);
    const EnvironmentVariable noFolder("KIV_PREF_DIR", std::nullopt);
    EXPECT_THROW(kivcore::filesupport::Dir::PrefDir(), std::logic_error);
}

TEST_F(LibraryTest, TheLastOfNestedCallsTakesDown)
{
    const MetadataAPIInitParams first = StartRecord("First", "de_DE", 2);
    const MetadataAPIInitParams second = StartRecord("Second", "ja_JP", 3);
    ASSERT_TRUE(api.initialize(&first));
    const UI_NodeManager* const manager = UI_NodeManager::Get(false);
    const kivui::ui::Theme* const theme = &kivui::ui::Theme::Get();
    const config::Localizer* const localizer = config::Localizer::Get();
    const auto errors = config::GetErrorManager();
    ASSERT_TRUE(api.initialize(&second));
    EXPECT_EQ(config::ClientName(), u"First");
    EXPECT_EQ(kivcore::Locale::ApplicationLanguage(), u"de_DE");
    EXPECT_EQ(UI_NodeManager::Get(false), manager);
    EXPECT_EQ(UI_NodeManager::Get(false)->DrawingScale(1), 2);
    EXPECT_EQ(&kivui::ui::Theme::Get(), theme);
    EXPECT_EQ(config::Localizer::Get(), localizer);
    EXPECT_NE(config::GetErrorManager(), errors) << "each call brings a fresh one";
    api.terminate();
    EXPECT_EQ(WhatIsUp(), kAllUp);
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "");
}

TEST_F(LibraryTest, ARecordWithoutARequiredTextFailsAndCounts)
{
    const char* MetadataAPIInitParams::*const required[] = {
        &MetadataAPIInitParams::clientName, &MetadataAPIInitParams::clientVersion,
        &MetadataAPIInitParams::clientInternalVersion, &MetadataAPIInitParams::clientBuildNumber};
    for (const auto text : required) {
        MetadataAPIInitParams record = StartRecord();
        record.*text = nullptr;
        EXPECT_FALSE(api.initialize(&record));
        EXPECT_EQ(LastFailure(), "Client app settings must be provided");
        EXPECT_EQ(WhatIsUp(), "configuration\nerror manager\nlocalizer\n");
        EXPECT_FALSE(Dialog());
        EXPECT_EQ(LastFailure(), "The library is not initialized");
        api.terminate();
        EXPECT_EQ(WhatIsUp(), "");
    }
    const MetadataAPIInitParams whole = StartRecord();
    EXPECT_TRUE(api.initialize(&whole));
    EXPECT_EQ(WhatIsUp(), kAllUp);
    api.terminate();
}

TEST_F(LibraryTest, AfterAFailedStartANestedOneIsTrueAndBringsNothingUp)
{
    MetadataAPIInitParams record = StartRecord();
    record.clientBuildNumber = nullptr;
    EXPECT_FALSE(api.initialize(&record));
    const MetadataAPIInitParams whole = StartRecord();
    EXPECT_TRUE(api.initialize(&whole));
    EXPECT_EQ(WhatIsUp(), "configuration\nerror manager\nlocalizer\n");
    EXPECT_FALSE(Dialog());
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "configuration\nerror manager\nlocalizer\n");
    api.terminate();
}

// One terminate too many: the counter wraps, on purpose.
TEST_F(LibraryTest, ATerminateTooManyWrapsTheCounter)
{
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "");
    const MetadataAPIInitParams record = StartRecord();
    for (int pair = 0; pair < 3; ++pair) {
        EXPECT_TRUE(api.initialize(&record));
        EXPECT_EQ(WhatIsUp(), "error manager\nlocalizer\n");
        EXPECT_FALSE(Dialog());
        EXPECT_EQ(LastFailure(), "The library is not initialized");
        api.terminate();
    }
    EXPECT_TRUE(api.initialize(&record));
    EXPECT_TRUE(api.initialize(&record)) << "the second without a terminate between";
    EXPECT_EQ(WhatIsUp(), kAllUp);
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "");
}

TEST_F(LibraryTest, EachRoundHasItsOwnNameLanguageAndScale)
{
    const struct {
        const char* name;
        const char* language;
        float scale;
        const char16_t* wantName;
        const char16_t* wantLanguage;
        float wantScale;
        const char16_t* wantCancel;
    } rounds[] = {
        {"One", "en_US", 1, u"One", u"en_US", 1, u"Cancel"},
        {"Two", "de", 2, u"Two", u"de_DE", 2, u"Abbrechen"},
        {"Three", "ja_JP.UTF-8", 1.5F, u"Three", u"ja_JP", 1.5F, u"キャンセル"},
        // 0 keeps the scale of the round before; no language is English.
        {"Four", nullptr, 0, u"Four", u"en_US", 1.5F, u"Cancel"},
        {"Five", "de-DE", -1, u"Five", u"de_DE", 1.5F, u"Abbrechen"},
        // No dictionary of that language: the defaults in the keys.
        {"Six", "nl_NL", 1, u"Six", u"nl_NL", 1, u"Cancel"},
        // No language tag.
        {"Seven", "../../etc", 1, u"Seven", u"en_US", 1, u"Cancel"},
        {"Eight", "", 1, u"Eight", u"en_US", 1, u"Cancel"},
        // 8-bit units are widened as they are; nothing is decoded.
        {"Gr\xC3\xB6\xDF", "en_US", 1, u"Gr\u00C3\u00B6\u00DF", u"en_US", 1, u"Cancel"},
        {"", "en_US", 1, u"", u"en_US", 1, u"Cancel"},
    };
    for (const auto& round : rounds) {
        SCOPED_TRACE(round.name);
        const MetadataAPIInitParams record = StartRecord(round.name, round.language, round.scale);
        ASSERT_TRUE(api.initialize(&record));
        EXPECT_TRUE(config::IsClientNameInitialized());
        EXPECT_EQ(config::ClientName(), round.wantName);
        EXPECT_EQ(kivcore::Locale::ApplicationLanguage(), round.wantLanguage);
        EXPECT_EQ(UI_NodeManager::Get(false)->DrawingScale(1), round.wantScale);
        EXPECT_EQ(config::Localize("$$$/Kiv/Dialog/Button/Cancel=Cancel"), round.wantCancel);
        api.terminate();
        EXPECT_EQ(config::Localize("$$$/Kiv/Dialog/Button/Cancel=Cancel"), u"Cancel");
        ASSERT_EQ(WhatIsUp(), "");
    }
}

TEST_F(LibraryTest, ScaleReachesTheNodeManager)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const struct {
        float scale;
        ScaleMatrixT<float> matrix;
        float drawn;
    } rounds[] = {
        {0, {0, 0, 1, 1}, 1},  // nothing kept yet
        {-2, {0, 0, 1, 1}, 1},
        {std::nanf(""), {0, 0, 1, 1}, 1},
        {1.25F, {0, 0, 1.25F, 1.25F}, 1.25F},
        {0, {0, 0, 1.25F, 1.25F}, 1.25F},
        {100, {0, 0, 100, 100}, 4},  // kept as it is, clamped where it is drawn
        {0.01F, {0, 0, 0.01F, 0.01F}, 0.5F},
        {kInfinity, {0, 0, kInfinity, kInfinity}, 4},
        {1, {0, 0, 1, 1}, 1},
    };
    for (const auto& round : rounds) {
        SCOPED_TRACE(round.scale);
        const MetadataAPIInitParams record = StartRecord("Darkroom", "en_US", round.scale);
        ASSERT_TRUE(api.initialize(&record));
        const UI_NodeManager& manager = *UI_NodeManager::Get(false);
        EXPECT_EQ(manager.GetDPISelectionType(), DPISelectionType::kRecommended);
        EXPECT_EQ(manager.GetScaleMatrix(), round.matrix);
        EXPECT_EQ(manager.DrawingScale(3), round.drawn) << "the screen's own scale does not count";
        api.terminate();
    }
}

TEST_F(LibraryTest, ClientNamesMakeSafeFolders)
{
    const UserFolder user(folder.Of("home"));
    const struct {
        const char* name;
        const char* want;
    } rows[] = {
        {"Darkroom", "Orvan/Darkroom"},
        {"a/b\\c", "Orvan/a_b_c"},
        {"..", "Orvan/_"},
        {"", "Orvan/_"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto want = (user.Folder() / row.want).make_preferred();
        const bool wasThere = std::filesystem::exists(want);
        const MetadataAPIInitParams record = StartRecord(row.name);
        ASSERT_TRUE(api.initialize(&record));
        const std::u8string wantText = want.u8string();
        EXPECT_EQ(kivcore::filesupport::Dir::PrefDir().FullPath(),
                  kivcore::filesupport::PathFromUTF8({wantText.begin(), wantText.end()}));
        api.terminate();
        // Nobody changed a preference: no file and no folder is made.
        EXPECT_EQ(std::filesystem::exists(want), wasThere);
    }
    EXPECT_THAT(folder.Names(), ::testing::IsEmpty());
}

class TraceKeeper {
public:
    TraceKeeper()
        : sink_(kivcore::debug::AddTraceSink(
              [this](int level, const char* channel, std::string_view text) {
                  lines.push_back(std::to_string(level) + " " + channel + " " + std::string(text));
              }))
    {
    }
    TraceKeeper(const TraceKeeper&) = delete;
    TraceKeeper& operator=(const TraceKeeper&) = delete;
    ~TraceKeeper() { kivcore::debug::RemoveTraceSink(sink_); }

    std::vector<std::string> lines;

private:
    int sink_;
};

TEST_F(LibraryTest, AFailedStartIsTracedWhileItsChannelIsOn)
{
    TraceKeeper kept;
    MetadataAPIInitParams record = StartRecord();
    record.clientVersion = nullptr;
    const auto fail = [&] {
        EXPECT_FALSE(api.initialize(&record));
        api.terminate();
    };
    fail();
    EXPECT_THAT(kept.lines, ::testing::IsEmpty());
    kivcore::debug::SetTraceLevel("kivmetadataapi", 0);
    fail();
    fail();
    const std::string line = "0 kivmetadataapi FATAL: Initialization failed (2)\r\n";
    EXPECT_THAT(kept.lines, ::testing::ElementsAre(line, line));
    kivcore::debug::SetTraceLevel("kivmetadataapi", -1);
    fail();
    EXPECT_EQ(kept.lines.size(), 2U);
}

TEST_F(LibraryTest, LastFailureTellsWhyThereIsNoDialog)
{
    EXPECT_FALSE(Dialog());
    EXPECT_EQ(LastFailure(), "The library is not initialized");
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(LastFailure(), "");
    EXPECT_FALSE(api.doDialog(nullptr, nullptr));
    EXPECT_EQ(LastFailure(), "There is no XMP object to show");
    const MetadataDialogRequest request = {};
    EXPECT_FALSE(api.doDialog(nullptr, &request));
    api.terminate();
    EXPECT_EQ(LastFailure(), "");
    EXPECT_FALSE(Dialog());
    EXPECT_EQ(LastFailure(), "The library is not initialized");
    // None of them had anything to remember.
    EXPECT_THAT(folder.Names(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace kivtests
