// Hosts that run the framework themselves, wholly or in part.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/LibraryFixture.h"

#include <kivcore/Config.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>
#include <kivcore/Xml.h>
#include <kivui/NodeManager.h>
#include <kivui/PrefManager.h>
#include <kivui/Skins.h>
#include <kivui/Theme.h>

namespace kivtests {
namespace {

namespace config = kivcore::config;
namespace ui = kivui::ui;
using kivcore::Locale;
using ui::UI_NodeManager;

constexpr char kCancelKey[] = "$$$/Kiv/Dialog/Button/Cancel=Cancel";

class HostNodeManager : public ui::OS_NodeManager {
public:
    HostNodeManager() = default;
    ~HostNodeManager() override = default;
};

class HostLocalizer : public config::Localizer {
public:
    kivcore::UString Localize(const std::string&) override { return u"the host's"; }
    void LoadDictionary(const kivcore::UString& path) override { loaded.push_back(path); }
    std::vector<kivcore::UString> loaded;
};

class LibraryHostTest : public LibraryFixture {
protected:
    // The order of a host that starts the framework for itself.
    void StartFramework()
    {
        config::Initialize([this](const char* text) { messages.emplace_back(text); });
        config::SetCompanyName(u"Host Company");
        config::SetClientName(u"Host");
        config::SetClientVersion(u"9");
        Locale::Initialize(u"ja_JP", kivcore::filesupport::Dir());
    }

    std::vector<std::string> messages;
};

TEST_F(LibraryHostTest, IdentityAndLocaleStand)
{
    StartFramework();
    const MetadataAPIInitParams record = StartRecord("Guest", "de_DE");
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(api.initialize(&record));
        EXPECT_EQ(config::CompanyName(), u"Host Company");
        EXPECT_EQ(config::ClientName(), u"Host");
        EXPECT_EQ(config::ClientVersion(), u"9");
        EXPECT_EQ(config::ClientInternalVersion(), u"");
        EXPECT_EQ(config::ClientBuildNumber(), u"");
        EXPECT_FALSE(config::IsAppHeadless());
        EXPECT_EQ(Locale::ApplicationLanguage(), u"ja_JP");
        EXPECT_EQ(config::Localize(kCancelKey), u"キャンセル");
        api.terminate();
        EXPECT_EQ(WhatIsUp(), "configuration\nclient name\ncompany name\nlocale\n");
        EXPECT_EQ(config::ClientName(), u"Host");
        EXPECT_EQ(Locale::ApplicationLanguage(), u"ja_JP");
    }
    config::Terminate(nullptr);
}

// An empty client name is a name: such a host identified itself.
TEST_F(LibraryHostTest, AnEmptyNameCountsAsOne)
{
    config::Initialize({});
    config::SetClientName(u"");
    const MetadataAPIInitParams record = StartRecord("Guest");
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(config::ClientName(), u"");
    EXPECT_EQ(config::CompanyName(), u"");
    EXPECT_FALSE(config::IsAppHeadless());
    api.terminate();
    config::Terminate(nullptr);
}

// A host that only chose a language has no name of its own yet.
TEST_F(LibraryHostTest, ALocaleAloneStandsToo)
{
    Locale::Initialize(u"de_DE", kivcore::filesupport::Dir());
    const MetadataAPIInitParams record = StartRecord("Guest", "ja_JP");
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(config::ClientName(), u"Guest");
    EXPECT_EQ(Locale::ApplicationLanguage(), u"de_DE");
    EXPECT_EQ(config::Localize(kCancelKey), u"Abbrechen");
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "") << "the last end of the configuration forgets the locale";
}

TEST_F(LibraryHostTest, MessagesReachTheHostAgainAfterwards)
{
    StartFramework();
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    config::SendMessageToClient("discarded");
    api.terminate();
    config::SendMessageToClient("for the host");
    EXPECT_EQ(messages, std::vector<std::string>{"for the host"});
    config::Terminate(nullptr);
}

TEST_F(LibraryHostTest, ItsNodeManagerIsUsedAndKept)
{
    const auto manager = std::make_unique<HostNodeManager>();
    UI_NodeManager::Set(manager.get());
    MetadataAPIInitParams record = StartRecord("Guest", "en_US", 2);
    record.startGdiPlus = 1;
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(UI_NodeManager::Get(false), manager.get());
    EXPECT_EQ(manager->DrawingScale(1), 2);
    const ui::ScaleMatrixT<float> matrix{0, 0, 2, 2};
    EXPECT_EQ(manager->GetScaleMatrix(), matrix);
    ASSERT_EQ(manager->Modules().size(), 1U);
    EXPECT_FALSE(ui::PrefManager::IsInitialized()) << "preferences come with our node manager";
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "node manager\n");
    EXPECT_EQ(UI_NodeManager::Get(false), manager.get());
    EXPECT_NE(manager->GetSVGHandler(), nullptr) << "stays in it";
    // A second round enters the module no second time.
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(manager->Modules().size(), 1U);
    api.terminate();
    // What the library left in it lies in the library, so it goes before the library does.
    manager->SetRecommendedScaleFactorFunction({});
    manager->SetSVGHandler(nullptr);
}

TEST_F(LibraryHostTest, WhatTheLastTerminateEndsIsEndedForTheHostToo)
{
    StartFramework();
    const auto manager = std::make_unique<HostNodeManager>();
    UI_NodeManager::Set(manager.get());
    ui::PrefManager::Initialize(folder.Path("host"), false);
    ui::PrefManager::Preferences().Set("Kept", kivcore::proplist::PropValue(true));
    kivui::skins::core::SkinManager::Initialize(7);
    ui::Theme::Initialize(new ui::KeyframeThemeEditor(385, 3, 1));
    kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_TRUE(ui::PrefManager::Preferences().GetBool("Kept", false)) << "the host's stand";
    api.terminate();
    EXPECT_EQ(WhatIsUp(), "configuration\nclient name\ncompany name\nlocale\nnode manager\n");
    // The preferences were written on the way out, to where the host had them.
    EXPECT_NE(folder.Read("host/UIPrefs.xml").find("Kept"), std::string::npos);
    // The host starts them again if it uses them.
    ui::PrefManager::Initialize(folder.Path("host"), false);
    EXPECT_TRUE(ui::PrefManager::Preferences().GetBool("Kept", false));
    ui::PrefManager::Finalize();
    manager->SetRecommendedScaleFactorFunction({});
    manager->SetSVGHandler(nullptr);
    config::Terminate(nullptr);
}

TEST_F(LibraryHostTest, ALocalizerOfTheHostGivesWay)
{
    HostLocalizer host;
    config::Localizer::Set(&host, nullptr);
    const MetadataAPIInitParams record = StartRecord("Guest", "de_DE");
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_NE(config::Localizer::Get(), &host);
    EXPECT_EQ(config::Localize(kCancelKey), u"Abbrechen");
    EXPECT_TRUE(host.loaded.empty());
    api.terminate();
    EXPECT_FALSE(config::Localizer::Initialized()) << "it does not come back by itself";
}

TEST_F(LibraryHostTest, ANestedCallPutsALocalizerInPlaceOfAForeignOne)
{
    const MetadataAPIInitParams record = StartRecord("Guest", "de_DE");
    ASSERT_TRUE(api.initialize(&record));
    const config::Localizer* const first = config::Localizer::Get();
    HostLocalizer host;
    config::Localizer::Set(&host, nullptr);
    EXPECT_EQ(config::Localize(kCancelKey), u"the host's");
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_NE(config::Localizer::Get(), &host);
    EXPECT_NE(config::Localizer::Get(), nullptr);
    // A fresh one: only the first call loads the dictionary.
    EXPECT_EQ(config::Localize(kCancelKey), u"Cancel");
    EXPECT_TRUE(first == config::Localizer::Get() || host.loaded.empty());
    api.terminate();
    api.terminate();
    EXPECT_FALSE(config::Localizer::Initialized());
}

// One that the host sets after the start, and takes out itself, is none of the library's business.
TEST_F(LibraryHostTest, ALocalizerSetLaterStaysBehindTheLastTerminate)
{
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    HostLocalizer host;
    config::Localizer::Set(&host, nullptr);
    api.terminate();
    EXPECT_EQ(config::Localizer::Get(), &host);
    EXPECT_EQ(WhatIsUp(), "localizer\n");
    config::Localizer::Set(nullptr, nullptr);
}

TEST_F(LibraryHostTest, AnErrorManagerOfTheHostGivesWayToTheDefaultOne)
{
    const auto host = std::make_shared<config::ErrorManager>();
    config::SetErrorManager(host);
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_NE(config::GetErrorManager(), host);
    api.terminate();
    EXPECT_NE(config::GetErrorManager(), host);
    EXPECT_EQ(WhatIsUp(), "");
}

}  // namespace
}  // namespace kivtests
