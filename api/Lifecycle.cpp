#include "api/Lifecycle.h"

#include "api/ApiError.h"
#include "api/CustomDefinitions.h"
#include "api/DefaultErrorManager.h"
#include "localizer/DefaultLocalizer.h"
#include "svgbridge/SVGBridge.h"

#include <kivcore/Config.h>
#include <kivcore/Dir.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>
#include <kivcore/Logging.h>
#include <kivcore/NeverDestroyed.h>
#include <kivcore/StringConversion.h>
#include <kivcore/Xml.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivui/GdiPlus.h>
#include <kivui/NodeManager.h>
#include <kivui/PrefManager.h>
#include <kivui/Skins.h>
#include <kivui/Theme.h>
#include <kivui/Window.h>

#include <cstdint>
#include <memory>

namespace kivmetadataapi {

namespace {

using kivcore::UString;
using kivcore::filesupport::Dir;
using kivcore::filesupport::File;
using kivcore::string::AsciiToUTF16;

constexpr int kSkinVersion = 7;
constexpr char kDefaultLanguage[] = "en_US";

// Exists only because OS_NodeManager cannot be constructed from outside.
class DefaultNodeManager : public kivui::ui::OS_NodeManager {
public:
    DefaultNodeManager() = default;
    ~DefaultNodeManager() override = default;
};

// The library's process-wide state.
struct State {
    std::uint32_t initCount = 0;
    float scaleFactor = 1.0f;  // kept from round to round
    bool isFrameworkUp = false;
    std::shared_ptr<DefaultLocalizer> localizer;
    DefaultLocalizer* localizerPointer = nullptr;
    std::shared_ptr<DefaultNodeManager> nodeManager;
    DefaultNodeManager* nodeManagerPointer = nullptr;
    std::shared_ptr<kivui::utility::StartupShutdownGdiPlus> gdiPlusGuard;
};

constinit kivcore::NeverDestroyed<State> state;

void SetClientIdentity(const MetadataAPIInitParams& params)
{
    namespace config = kivcore::config;
    if (config::IsClientNameInitialized()) {
        return;  // the host is a framework application itself: its identity stands
    }
    config::SetCompanyName(UString(u"Orvan"));
    config::SetClientName(AsciiToUTF16(params.clientName));
    config::SetClientVersion(AsciiToUTF16(params.clientVersion));
    config::SetClientInternalVersion(AsciiToUTF16(params.clientInternalVersion));
    config::SetClientBuildNumber(AsciiToUTF16(params.clientBuildNumber));
    config::SetAppIsHeadless(true);
}

void LoadDictionary()
{
    using kivcore::Locale;
    using kivcore::config::Localizer;
    if (!Localizer::Initialized() || !Locale::IsInitialized()) {
        return;
    }
    const Dir folder = Dir::AppDir() / u"Required" / u"Quillet" / u"dict";
    const UString name = u"kiv_" + Locale::ApplicationLanguage() + u"." + u"dict";
    Localizer::Get()->LoadDictionary(File(folder, name).FullPath());
}

void StartUserInterface(State& library, const MetadataAPIInitParams& params)
{
    namespace ui = kivui::ui;
    if (ui::UI_NodeManager::Get(true) != nullptr) {
        return;
    }
    if (params.startGdiPlus != 0) {
        library.gdiPlusGuard = std::make_shared<kivui::utility::StartupShutdownGdiPlus>();
    }
    ui::OS_Window::UI_Initialize(params.instanceHandle);
    library.nodeManager = std::make_shared<DefaultNodeManager>();
    library.nodeManagerPointer = library.nodeManager.get();
    ui::UI_NodeManager::Set(library.nodeManagerPointer);
    ui::PrefManager::Initialize(Dir::PrefDir().FullPath(), false);
}

void ApplyScale(State& library)
{
    using kivui::ui::DPISelectionType;
    auto* manager = kivui::ui::UI_NodeManager::Get(false);
    manager->SetDPISelectionType(DPISelectionType::kRecommended);
    manager->SetRecommendedScaleFactorFunction(
        [&library](float, DPISelectionType) { return library.scaleFactor; });
    kivui::ui::ScaleMatrixT<float> matrix{0, 0, 1, 1};
    if (library.scaleFactor != 1.0f) {
        matrix.scaleX = library.scaleFactor;
        matrix.scaleY = library.scaleFactor;
    }
    manager->SetScaleMatrix(matrix);
}

void StartTheme()
{
    constexpr std::size_t kColorCount = 385;
    constexpr std::size_t kFontSizeCount = 3;
    constexpr std::size_t kVariantCount = 1;
    const boost::intrusive_ptr<kivui::ui::KeyframeThemeEditor> editor(
        new kivui::ui::KeyframeThemeEditor(kColorCount, kFontSizeCount, kVariantCount));
    kivui::ui::Theme::Initialize(editor);
    editor->SetColor(kivui::ui::kClearOverlay, kivui::ui::ColorRGBA{1, 1, 1, 0});
    editor->SetFontSize(0, 12.0);
    editor->NotifyThemeChanged();
}

void BringUp(State& library, const MetadataAPIInitParams& params)
{
    kivcore::config::Initialize([](const char*) {});
    // Checked only here, on purpose: the call already counts and the configuration is up, so a host
    // balances a failed call like any other.
    if (params.clientName == nullptr || params.clientVersion == nullptr ||
        params.clientInternalVersion == nullptr || params.clientBuildNumber == nullptr) {
        throw kivmetadataapi_error("Client app settings must be provided");
    }
    if (params.uiScaleFactor > 0) {
        library.scaleFactor = params.uiScaleFactor;
    }
    SetClientIdentity(params);
    const char* const language = params.language != nullptr ? params.language : kDefaultLanguage;
    if (!kivcore::Locale::IsInitialized()) {
        kivcore::Locale::Initialize(AsciiToUTF16(language), Dir());
    }
    LoadDictionary();
    if (!kivcore::xml::Initialized()) {
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    }
    StartUserInterface(library, params);
    ApplyScale(library);
    kivui::skins::core::SkinManager::Initialize(kSkinVersion);
    StartTheme();
    kivui::ui::UI_NodeManager::Get(false)->SetSVGHandler(&svgloom::Handler());
    kivui::ui::UI_NodeManager::Get(false)->InitializeModule(kivmetadataui::ModuleInfo::Get());
    kivmetadataui::Initialize();
    library.isFrameworkUp = true;
}

}  // namespace

void InstallLocalizerAndErrorManager()
{
    using kivcore::config::Localizer;
    State& library = *state;
    if (!Localizer::Initialized() || Localizer::Get() != library.localizerPointer) {
        library.localizer = std::make_shared<DefaultLocalizer>();
        library.localizerPointer = library.localizer.get();
        Localizer::Set(library.localizerPointer, nullptr);
    }
    kivcore::config::SetErrorManager(std::make_shared<DefaultErrorManager>());
}

void Initialize(const MetadataAPIInitParams& params)
{
    State& library = *state;
    if (++library.initCount == 1) {
        BringUp(library, params);
    }
}

void Terminate()
{
    State& library = *state;
    // Not guarded at 0, on purpose: one call too many wraps the counter, and calls in pairs never
    // bring the framework up again.
    if (--library.initCount != 0) {
        return;
    }
    library.isFrameworkUp = false;
    ClearCustomDefinitions();
    kivmetadataui::Terminate();
    kivcore::logging::UnregisterLogFilePathsCallback("kivcore.debug.CreateSpindump");
    library.localizerPointer = nullptr;
    library.localizer.reset();
    kivcore::xml::ResetParserFactory();
    library.nodeManagerPointer = nullptr;
    library.nodeManager.reset();
    kivui::ui::PrefManager::Finalize();
    kivui::skins::core::SkinManager::Terminate();
    kivui::ui::Theme::Terminate();
    svgloom::ClearDocuments();
    kivcore::config::Terminate(nullptr);
    kivcore::config::ResetToDefaultErrorManager();
    library.gdiPlusGuard.reset();
}

bool IsFrameworkUp() noexcept
{
    return state->isFrameworkUp;
}

}  // namespace kivmetadataapi
