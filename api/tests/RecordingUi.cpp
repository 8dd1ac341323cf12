// The recording kivui, kivmetadata and kivmetadataui.

#include "api/tests/RecordingFramework.h"

#include <kivcore/StringConversion.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/Provider.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivui/GdiPlus.h>
#include <kivui/NodeManager.h>
#include <kivui/PrefManager.h>
#include <kivui/Skins.h>
#include <kivui/Theme.h>
#include <kivui/Window.h>
#include <kivxmp/XMPError.h>

#include <cstdio>
#include <stdexcept>
#include <utility>

using recording::Call;
using recording::Get;
using recording::Note;

namespace {

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

}  // namespace

namespace kivui {

namespace ui {

struct UI_NodeManager::State {
    RecommendedScaleFactorFunction scale;
};

namespace {

UI_NodeManager* nodeManager = nullptr;
boost::intrusive_ptr<Theme> theme;
const RecommendedScaleFactorFunction* scaleFunction = nullptr;

}  // namespace

void OS_Window::UI_Initialize(HINSTANCE instance) noexcept
{
    Note("OS_Window::UI_Initialize", instance == nullptr ? "null" : "instance");
}

UI_NodeManager::UI_NodeManager() : state_(std::make_unique<State>())
{
    Call("OS_NodeManager");
}

UI_NodeManager::~UI_NodeManager()
{
    Note("~OS_NodeManager");
    if (nodeManager == this) {
        nodeManager = nullptr;
    }
    scaleFunction = nullptr;
}

OS_NodeManager::OS_NodeManager() = default;

OS_NodeManager::~OS_NodeManager() = default;

UI_NodeManager* UI_NodeManager::Get(bool mayBeNull)
{
    if (nodeManager == nullptr && !mayBeNull) {
        throw std::logic_error("no node manager");
    }
    return nodeManager;
}

void UI_NodeManager::Set(UI_NodeManager* manager) noexcept
{
    Note("UI_NodeManager::Set");
    nodeManager = manager;
}

void UI_NodeManager::SetDPISelectionType(DPISelectionType type) noexcept
{
    Note("SetDPISelectionType", Number(static_cast<int>(type)));
}

void UI_NodeManager::SetRecommendedScaleFactorFunction(RecommendedScaleFactorFunction function)
{
    Call("SetRecommendedScaleFactorFunction");
    state_->scale = std::move(function);
    scaleFunction = &state_->scale;
}

void UI_NodeManager::SetScaleMatrix(const ScaleMatrixT<float>& matrix) noexcept
{
    Note("SetScaleMatrix", Number(matrix.offsetX) + " " + Number(matrix.offsetY) + " " +
                               Number(matrix.scaleX) + " " + Number(matrix.scaleY));
}

void UI_NodeManager::SetSVGHandler(svg::ISVGHandler* handler) noexcept
{
    Note("SetSVGHandler",
         handler == recording::Get().svgHandler ? "svgloom::Handler" : "another one");
}

void UI_NodeManager::InitializeModule(const ModuleInfo& module)
{
    Call("InitializeModule", module.name);
}

void PrefManager::Initialize(const kivcore::UString& folder, bool reset)
{
    Call("PrefManager::Initialize",
         kivcore::string::UTF16to8(folder) + (reset ? " true" : " false"));
}

void PrefManager::Finalize() noexcept
{
    Note("PrefManager::Finalize");
}

Theme::Theme() = default;

Theme::~Theme() = default;

void Theme::Initialize(boost::intrusive_ptr<Theme> newTheme)
{
    Call("Theme::Initialize");
    theme = std::move(newTheme);
}

Theme& Theme::Get()
{
    return *theme;
}

void Theme::Terminate() noexcept
{
    Note("Theme::Terminate");
    theme.reset();
}

struct KeyframeThemeEditor::State {};

KeyframeThemeEditor::KeyframeThemeEditor(std::size_t colorCount, std::size_t fontSizeCount,
                                         std::size_t variantCount)
{
    Call("KeyframeThemeEditor", std::to_string(colorCount) + " " + std::to_string(fontSizeCount) +
                                    " " + std::to_string(variantCount));
}

KeyframeThemeEditor::~KeyframeThemeEditor()
{
    Note("~KeyframeThemeEditor");
}

void KeyframeThemeEditor::SetBrightness(float brightness)
{
    Call("SetBrightness", Number(brightness));
}

float KeyframeThemeEditor::Brightness() const
{
    return 0;
}

ColorRGBA KeyframeThemeEditor::Color(std::size_t) const
{
    return {};
}

double KeyframeThemeEditor::FontSize(std::size_t) const
{
    return 0;
}

std::size_t KeyframeThemeEditor::ChangeCount() const
{
    return 0;
}

void KeyframeThemeEditor::SetColor(std::size_t index, const ColorRGBA& color)
{
    Call("SetColor", std::to_string(index) + " " + Number(color.red) + " " + Number(color.green) +
                         " " + Number(color.blue) + " " + Number(color.alpha));
}

void KeyframeThemeEditor::SetFontSize(std::size_t index, double size)
{
    Call("SetFontSize", std::to_string(index) + " " + Number(size));
}

void KeyframeThemeEditor::NotifyThemeChanged()
{
    Call("NotifyThemeChanged");
}

}  // namespace ui

namespace skins::core {

void SkinManager::Initialize(int version)
{
    Call("SkinManager::Initialize", std::to_string(version));
}

void SkinManager::Terminate() noexcept
{
    Note("SkinManager::Terminate");
}

}  // namespace skins::core

namespace utility {

struct StartupShutdownGdiPlus::State {};

StartupShutdownGdiPlus::StartupShutdownGdiPlus()
{
    Call("StartupShutdownGdiPlus");
    ++Get().gdiPlusRunning;
}

StartupShutdownGdiPlus::~StartupShutdownGdiPlus()
{
    Note("~StartupShutdownGdiPlus");
    --Get().gdiPlusRunning;
}

}  // namespace utility

}  // namespace kivui

float recording::AskScale(float screenScale)
{
    return (*kivui::ui::scaleFunction)(screenScale, kivui::ui::DPISelectionType::kSystem);
}

XMP_Error::XMP_Error(KivXmpCode code, std::string text) : code_(code), text_(std::move(text)) {}

XMP_Error::XMP_Error(const XMP_Error&) = default;

XMP_Error::~XMP_Error() = default;

namespace kivmetadata {

MetaDataProvider::~MetaDataProvider() = default;

TypicalProviderImpl::TypicalProviderImpl(__XMPMeta__* meta) : meta_(meta)
{
    Call("TypicalProviderImpl");
}

TypicalProviderImpl::~TypicalProviderImpl()
{
    Note("~TypicalProviderImpl");
}

PathStatus TypicalProviderImpl::QueryPathStatus(const std::string&) const
{
    return PathStatus::kMissing;
}

bool TypicalProviderImpl::CanWriteChanges() const
{
    return false;
}

std::vector<std::string> TypicalProviderImpl::GetAllPathsForDynamicSchema(const std::string&) const
{
    return {};
}

std::string TypicalProviderImpl::DebugSerializedXMP() const
{
    return {};
}

std::string TypicalProviderImpl::DebugDescription() const
{
    return {};
}

__XMPMeta__* TypicalProviderImpl::MetaDataAccess() const
{
    return meta_;
}

void TypicalProviderImpl::ChangesWritten()
{
    Call("ChangesWritten");
}

void TypicalProviderImpl::DoWriteChanges(const __XMPMeta__&) {}

void LoadAllViewDefinitions()
{
    Call("LoadAllViewDefinitions");
}

std::shared_ptr<const ViewDefinitions> CommonViewDefinitions()
{
    Call("CommonViewDefinitions");
    return std::make_shared<const ViewDefinitions>(Get().views);
}

std::shared_ptr<const SchemaDefinitions> CommonSchemaDefinitions()
{
    Call("CommonSchemaDefinitions");
    return std::make_shared<const SchemaDefinitions>(Get().schemas);
}

}  // namespace kivmetadata

namespace kivmetadataui {

const kivui::ui::ModuleInfo& ModuleInfo::Get()
{
    static const kivui::ui::ModuleInfo info{"kivmetadataui", "recording"};
    return info;
}

void Initialize()
{
    Call("kivmetadataui::Initialize");
}

void Terminate() noexcept
{
    Note("kivmetadataui::Terminate");
}

bool DoMetadataDialog(std::shared_ptr<kivmetadata::MetaDataProvider> provider, HWND parent,
                      const MetadataDialogParameters& parameters)
{
    Call("kivmetadataui::DoMetadataDialog",
         "title=" + kivcore::string::UTF16to8(parameters.title) +
             " heading=" + kivcore::string::UTF16to8(parameters.heading) +
             " confirmLabel=" + kivcore::string::UTF16to8(parameters.confirmLabel) + " flags=" +
             std::to_string(parameters.flags) + (parent == nullptr ? " no parent" : " parent"));
    parameters.preferences->Set("seen", true);
    if (Get().inDialog) {
        Get().inDialog(*provider);
    }
    return Get().dialogResult;
}

}  // namespace kivmetadataui
