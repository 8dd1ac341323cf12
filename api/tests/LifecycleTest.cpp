#include "api/Lifecycle.h"

#include "api/tests/ApiFixture.h"

#include <kivcore/Localizer.h>
#include <kivcore/StringConversion.h>
#include <kivui/NodeManager.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using kivcore::config::Localizer;
using recording::Get;
using recording::TakeCalls;

class Lifecycle : public ApiTest {};

constexpr char kStageA[] =
    "Localizer::Set localizer null\n"
    "config::SetErrorManager\n";

constexpr char kStageB[] =
    "config::Initialize\n"
    "config::SetCompanyName Orvan\n"
    "config::SetClientName Darkroom\n"
    "config::SetClientVersion 2.1\n"
    "config::SetClientInternalVersion 2.1.0\n"
    "config::SetClientBuildNumber 417\n"
    "config::SetAppIsHeadless true\n"
    "Locale::Initialize de_DE\n"
    "Dir::AppDir\n"
    "MSXMLParserFactory\n"
    "xml::SetParserFactory\n"
    "OS_Window::UI_Initialize null\n"
    "OS_NodeManager\n"
    "UI_NodeManager::Set\n"
    "Dir::PrefDir\n"
    "PrefManager::Initialize /prefs false\n"
    "SetDPISelectionType 1\n"
    "SetRecommendedScaleFactorFunction\n"
    "SetScaleMatrix 0 0 1 1\n"
    "SkinManager::Initialize 7\n"
    "KeyframeThemeEditor 385 3 1\n"
    "Theme::Initialize\n"
    "SetColor 236 1 1 1 0\n"
    "SetFontSize 0 12\n"
    "NotifyThemeChanged\n"
    "svgloom::Handler\n"
    "SetSVGHandler svgloom::Handler\n"
    "InitializeModule kivmetadataui\n"
    "kivmetadataui::Initialize\n";

constexpr char kTearDown[] =
    "kivmetadataui::Terminate\n"
    "logging::UnregisterLogFilePathsCallback kivcore.debug.CreateSpindump\n"
    "Localizer::Set null null\n"
    "xml::ResetParserFactory\n"
    "~OS_NodeManager\n"
    "PrefManager::Finalize\n"
    "SkinManager::Terminate\n"
    "Theme::Terminate\n"
    "~KeyframeThemeEditor\n"
    "svgloom::ClearDocuments\n"
    "config::Terminate null\n"
    "config::ResetToDefaultErrorManager\n";

TEST_F(Lifecycle, NullParamsTouchNothing)
{
    EXPECT_FALSE(MetadataAPIInitialize(nullptr));
    EXPECT_EQ(TakeCalls(), "");
}

TEST_F(Lifecycle, StepsStandInOrder)
{
    const MetadataAPIInitParams params = Params();
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_EQ(TakeCalls(), std::string(kStageA) + kStageB);
    EXPECT_TRUE(kivmetadataapi::IsFrameworkUp());
    MetadataAPITerminate();
    EXPECT_EQ(TakeCalls(), kTearDown);
    EXPECT_FALSE(kivmetadataapi::IsFrameworkUp());
}

TEST_F(Lifecycle, RoundsAreAlike)
{
    const MetadataAPIInitParams params = Params();
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        EXPECT_TRUE(MetadataAPIInitialize(&params));
        EXPECT_EQ(TakeCalls(), std::string(kStageA) + kStageB);
        MetadataAPITerminate();
        EXPECT_EQ(TakeCalls(), kTearDown);
    }
}

TEST_F(Lifecycle, NestedCallOnlyReplacesTheErrorManager)
{
    BringUp();
    const MetadataAPIInitParams params = Params();
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_EQ(TakeCalls(), "config::SetErrorManager\n");
    MetadataAPITerminate();
    EXPECT_EQ(TakeCalls(), "");
    EXPECT_TRUE(kivmetadataapi::IsFrameworkUp());
    MetadataAPITerminate();
    EXPECT_EQ(TakeCalls(), kTearDown);
}

TEST_F(Lifecycle, NestedCallPutsTheLocalizerBack)
{
    struct ForeignLocalizer : Localizer {
        kivcore::UString Localize(const std::string&) override { return {}; }
        void LoadDictionary(const kivcore::UString&) override {}
    };
    BringUp();
    Localizer* const ours = Localizer::Get();
    {
        ForeignLocalizer foreign;
        Localizer::Set(&foreign, nullptr);
        TakeCalls();
        const MetadataAPIInitParams params = Params();
        EXPECT_TRUE(MetadataAPIInitialize(&params));
        EXPECT_EQ(TakeCalls(), kStageA);
        EXPECT_NE(Localizer::Get(), &foreign);
        EXPECT_NE(Localizer::Get(), ours);
    }
    MetadataAPITerminate();
    MetadataAPITerminate();
    EXPECT_FALSE(Localizer::Initialized());
}

TEST_F(Lifecycle, ForeignLocalizerSurvivesTheTearDown)
{
    struct ForeignLocalizer : Localizer {
        kivcore::UString Localize(const std::string&) override { return {}; }
        void LoadDictionary(const kivcore::UString&) override {}
    } foreign;
    BringUp();
    Localizer::Set(&foreign, nullptr);
    MetadataAPITerminate();
    EXPECT_EQ(Localizer::Get(), &foreign);
}

// The name of the last call that was neither clearing up nor the question whether to trace.
std::string LastStep()
{
    std::string last;
    for (const std::string& call : Get().calls) {
        if (!call.starts_with("~") && !call.starts_with("debug::")) {
            last = call.substr(0, call.find(' '));
        }
    }
    return last;
}

struct MissingText {
    const char* name;
    const char* MetadataAPIInitParams::*field;
};

TEST_F(Lifecycle, MissingTextFailsAndStillCounts)
{
    const MissingText rows[] = {
        {"clientName", &MetadataAPIInitParams::clientName},
        {"clientVersion", &MetadataAPIInitParams::clientVersion},
        {"clientInternalVersion", &MetadataAPIInitParams::clientInternalVersion},
        {"clientBuildNumber", &MetadataAPIInitParams::clientBuildNumber},
    };
    for (const MissingText& row : rows) {
        SCOPED_TRACE(row.name);
        MetadataAPIInitParams params = Params();
        params.*row.field = nullptr;
        EXPECT_FALSE(MetadataAPIInitialize(&params));
        EXPECT_EQ(Get().lastFailure, "Client app settings must be provided");
        EXPECT_FALSE(kivmetadataapi::IsFrameworkUp());
        TakeCalls();
        // With the framework half up another call succeeds and brings nothing up.
        const MetadataAPIInitParams whole = Params();
        EXPECT_TRUE(MetadataAPIInitialize(&whole));
        EXPECT_FALSE(kivmetadataapi::IsFrameworkUp());
        EXPECT_EQ(TakeCalls(), "config::SetErrorManager\n");
        MetadataAPITerminate();
        EXPECT_EQ(TakeCalls(), "");
        MetadataAPITerminate();
        EXPECT_NE(TakeCalls().find("config::Terminate null\n"), std::string::npos);
    }
}

TEST_F(Lifecycle, MissingTextIsFoundAfterTheConfiguration)
{
    recording::SwitchTrace(false);
    MetadataAPIInitParams params = Params();
    params.clientBuildNumber = nullptr;
    EXPECT_FALSE(MetadataAPIInitialize(&params));
    EXPECT_EQ(TakeCalls(), std::string(kStageA) +
                               "config::Initialize\n"
                               "debug::TraceEnabled kivmetadataapi 0 true\n");
    MetadataAPITerminate();
}

TEST_F(Lifecycle, FailureAtEveryStepIsContained)
{
    // Every call of a start that can fail, in its order.
    const char* const steps[] = {
        "Localizer::Set",
        "config::SetErrorManager",
        "config::Initialize",
        "config::SetCompanyName",
        "config::SetClientName",
        "config::SetClientVersion",
        "config::SetClientInternalVersion",
        "config::SetClientBuildNumber",
        "Locale::Initialize",
        "Dir::AppDir",
        "MSXMLParserFactory",
        "xml::SetParserFactory",
        "StartupShutdownGdiPlus",
        "OS_NodeManager",
        "Dir::PrefDir",
        "PrefManager::Initialize",
        "SetRecommendedScaleFactorFunction",
        "SkinManager::Initialize",
        "KeyframeThemeEditor",
        "Theme::Initialize",
        "SetColor",
        "SetFontSize",
        "NotifyThemeChanged",
        "svgloom::Handler",
        "InitializeModule",
        "kivmetadataui::Initialize",
        "LoadAllViewDefinitions",
        "CommonSchemaDefinitions",
        "CommonViewDefinitions",
    };
    MetadataAPIInitParams params = Params();
    params.startGdiPlus = 1;
    params.loadCustomDefinitions = 1;
    for (const bool throwsUnknown : {false, true}) {
        for (const char* const step : steps) {
            SCOPED_TRACE(step);
            recording::Reset();
            TakeCalls();
            recording::SwitchTrace(true);
            Get().failAt = step;
            Get().throwsUnknown = throwsUnknown;
            const std::string name = step;
            const bool isStageA = name == "Localizer::Set" || name == "config::SetErrorManager";
            const bool isStageC = name == "LoadAllViewDefinitions" || name.starts_with("Common");
            EXPECT_FALSE(MetadataAPIInitialize(&params));
            EXPECT_EQ(Get().lastFailure, throwsUnknown ? "unknown exception" : name + " failed");
            std::vector<std::string> traces;
            if (isStageA) {
                traces.emplace_back("0 kivmetadataapi FATAL: Initialization failed (1)\r\n");
            } else if (!isStageC) {
                traces.emplace_back("0 kivmetadataapi FATAL: Initialization failed (2)\r\n");
            }
            EXPECT_EQ(Get().traces, traces);
            EXPECT_EQ(LastStep(), name);  // nothing ran behind the step that failed
            EXPECT_EQ(kivmetadataapi::IsFrameworkUp(), isStageC);

            Get().failAt.clear();
            TakeCalls();
            if (isStageA) {
                continue;  // the counter never moved
            }
            MetadataAPITerminate();
            EXPECT_NE(TakeCalls().find("config::Terminate null\n"), std::string::npos);
            EXPECT_EQ(Get().gdiPlusRunning, 0);
            EXPECT_EQ(kivui::ui::UI_NodeManager::Get(true), nullptr);
            EXPECT_FALSE(Localizer::Initialized());
            EXPECT_TRUE(MetadataAPIInitialize(&params));  // the next round comes up whole
            MetadataAPITerminate();
        }
    }
}

TEST_F(Lifecycle, NothingIsTracedWhileTheChannelIsOff)
{
    recording::SwitchTrace(false);
    Get().failAt = "SkinManager::Initialize";
    const MetadataAPIInitParams params = Params();
    EXPECT_FALSE(MetadataAPIInitialize(&params));
    EXPECT_TRUE(Get().traces.empty());
    MetadataAPITerminate();
}

TEST_F(Lifecycle, TraceSitesAskAgainOnlyWhenTheChangeCountMoved)
{
    recording::SwitchTrace(false);
    Get().failAt = "config::SetErrorManager";
    const MetadataAPIInitParams params = Params();
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(MetadataAPIInitialize(&params));
    }
    EXPECT_EQ(Get().traceQuestions, 1);
    EXPECT_TRUE(Get().traces.empty());
    recording::SwitchTrace(true);
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(MetadataAPIInitialize(&params));
    }
    EXPECT_EQ(Get().traceQuestions, 2);
    EXPECT_EQ(Get().traces.size(), 5U);
}

TEST_F(Lifecycle, ScaleFactor)
{
    struct Row {
        float given;
        const char* matrix;
        float want;
    };
    // In this order: a factor of 0 or less keeps the one before.
    const Row rows[] = {
        {1.0f, "SetScaleMatrix 0 0 1 1\n", 1.0f},     {0.0f, "SetScaleMatrix 0 0 1 1\n", 1.0f},
        {-2.0f, "SetScaleMatrix 0 0 1 1\n", 1.0f},    {2.5f, "SetScaleMatrix 0 0 2.5 2.5\n", 2.5f},
        {0.0f, "SetScaleMatrix 0 0 2.5 2.5\n", 2.5f}, {-1.0f, "SetScaleMatrix 0 0 2.5 2.5\n", 2.5f},
        {1.0f, "SetScaleMatrix 0 0 1 1\n", 1.0f},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.given);
        MetadataAPIInitParams params = Params();
        params.uiScaleFactor = row.given;
        EXPECT_TRUE(MetadataAPIInitialize(&params));
        EXPECT_NE(TakeCalls().find(row.matrix), std::string::npos);
        EXPECT_EQ(recording::AskScale(1.75f), row.want);  // whatever the screen's own scale
        MetadataAPITerminate();
    }
}

TEST_F(Lifecycle, ClientThatHasANameKeepsIt)
{
    Get().isClientNameSet = true;
    const MetadataAPIInitParams params = Params();
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    const std::string calls = TakeCalls();
    EXPECT_EQ(calls.find("config::SetC"), std::string::npos);
    EXPECT_EQ(calls.find("SetAppIsHeadless"), std::string::npos);
    EXPECT_NE(calls.find("Locale::Initialize de_DE\n"), std::string::npos);
    MetadataAPITerminate();
}

TEST_F(Lifecycle, NoLanguageIsAmericanEnglish)
{
    MetadataAPIInitParams params = Params();
    params.language = nullptr;
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_NE(TakeCalls().find("Locale::Initialize en_US\n"), std::string::npos);
    MetadataAPITerminate();
}

TEST_F(Lifecycle, LanguageThatIsSetStands)
{
    Get().isLocaleSet = true;
    Get().language = "fr_FR";
    const MetadataAPIInitParams params = Params();
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_EQ(TakeCalls().find("Locale::Initialize"), std::string::npos);
    EXPECT_EQ(Get().language, "fr_FR");
    MetadataAPITerminate();
}

TEST_F(Lifecycle, ParserFactoryOfTheHostStands)
{
    Get().isXmlSet = true;
    const MetadataAPIInitParams params = Params();
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_EQ(TakeCalls().find("SetParserFactory"), std::string::npos);
    MetadataAPITerminate();
}

TEST_F(Lifecycle, NodeManagerOfTheHostStands)
{
    struct HostNodeManager : kivui::ui::OS_NodeManager {
    } host;
    kivui::ui::UI_NodeManager::Set(&host);
    MetadataAPIInitParams params = Params();
    params.startGdiPlus = 1;
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    const std::string calls = TakeCalls();
    EXPECT_EQ(calls.find("UI_Initialize"), std::string::npos);
    EXPECT_EQ(calls.find("PrefManager::Initialize"), std::string::npos);
    EXPECT_EQ(Get().gdiPlusRunning, 0);  // GDI+ is the host's business then
    EXPECT_NE(calls.find("SetDPISelectionType 1\n"), std::string::npos);
    MetadataAPITerminate();
    EXPECT_EQ(kivui::ui::UI_NodeManager::Get(true), &host);
}

TEST_F(Lifecycle, GdiPlusRunsWhileTheLibraryIsUp)
{
    MetadataAPIInitParams params = Params();
    params.startGdiPlus = 0xFF;  // any byte but 0 is a yes
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_EQ(Get().gdiPlusRunning, 1);
    TakeCalls();
    MetadataAPITerminate();
    EXPECT_EQ(Get().gdiPlusRunning, 0);
    EXPECT_TRUE(TakeCalls().ends_with("~StartupShutdownGdiPlus\n"));
}

TEST_F(Lifecycle, InstanceHandleIsPassedOn)
{
    int something = 0;
    MetadataAPIInitParams params = Params();
    params.instanceHandle = reinterpret_cast<HINSTANCE>(&something);
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_NE(TakeCalls().find("UI_Initialize instance\n"), std::string::npos);
    MetadataAPITerminate();
}

TEST_F(Lifecycle, OneTerminateTooManyWrapsTheCounter)
{
    MetadataAPITerminate();  // 0 to the largest number
    EXPECT_EQ(TakeCalls(), "");
    const MetadataAPIInitParams params = Params();
    for (int pair = 0; pair < 3; ++pair) {
        EXPECT_TRUE(MetadataAPIInitialize(&params));  // reaches 0
        EXPECT_FALSE(kivmetadataapi::IsFrameworkUp());
        MetadataAPITerminate();
    }
    EXPECT_TRUE(MetadataAPIInitialize(&params));
    EXPECT_EQ(TakeCalls().find("config::Initialize"), std::string::npos);
    EXPECT_TRUE(MetadataAPIInitialize(&params));  // the second without a terminate between: 1
    EXPECT_TRUE(kivmetadataapi::IsFrameworkUp());
    MetadataAPITerminate();
    EXPECT_FALSE(kivmetadataapi::IsFrameworkUp());
}

}  // namespace
