#include <kivui/NodeManager.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include <kivui/IconCache.h>

namespace kivui::ui {

namespace {

constexpr float kSmallestScale = 0.5f;
constexpr float kLargestScale = 4.0f;

constinit UI_NodeManager* registered = nullptr;

}  // namespace

struct UI_NodeManager::State {
    DPISelectionType selection = DPISelectionType::kSystem;
    RecommendedScaleFactorFunction recommendedScale;
    ScaleMatrixT<float> scaleMatrix{0, 0, 1, 1};
    svg::ISVGHandler* handler = nullptr;
    std::vector<ModuleInfo> modules;
};

UI_NodeManager::UI_NodeManager() : state_(std::make_unique<State>()) {}

UI_NodeManager::~UI_NodeManager()
{
    SetSVGHandler(nullptr);
    if (registered == this) {
        registered = nullptr;
    }
}

UI_NodeManager* UI_NodeManager::Get(bool mayBeNull)
{
    if (registered == nullptr && !mayBeNull) {
        throw std::logic_error("No node manager is registered");
    }
    return registered;
}

void UI_NodeManager::Set(UI_NodeManager* manager) noexcept
{
    registered = manager;
}

void UI_NodeManager::SetDPISelectionType(DPISelectionType type) noexcept
{
    state_->selection = type;
}

DPISelectionType UI_NodeManager::GetDPISelectionType() const noexcept
{
    return state_->selection;
}

void UI_NodeManager::SetRecommendedScaleFactorFunction(RecommendedScaleFactorFunction function)
{
    state_->recommendedScale = std::move(function);
}

void UI_NodeManager::SetScaleMatrix(const ScaleMatrixT<float>& matrix) noexcept
{
    state_->scaleMatrix = matrix;
}

const ScaleMatrixT<float>& UI_NodeManager::GetScaleMatrix() const noexcept
{
    return state_->scaleMatrix;
}

float UI_NodeManager::DrawingScale(float screenScale) const
{
    float scale = screenScale;
    if (state_->selection == DPISelectionType::kRecommended && state_->recommendedScale) {
        scale = state_->recommendedScale(screenScale, state_->selection);
    }
    return std::isnan(scale) ? 1.0f : std::clamp(scale, kSmallestScale, kLargestScale);
}

void UI_NodeManager::SetSVGHandler(svg::ISVGHandler* handler) noexcept
{
    // The icons' handles are the last handler's, which may end now.
    if (state_->handler != nullptr && state_->handler != handler) {
        IconCache::Clear();
    }
    state_->handler = handler;
}

svg::ISVGHandler* UI_NodeManager::GetSVGHandler() const noexcept
{
    return state_->handler;
}

void UI_NodeManager::InitializeModule(const ModuleInfo& module)
{
    const bool isKnown =
        std::any_of(state_->modules.begin(), state_->modules.end(),
                    [&module](const ModuleInfo& known) { return known.name == module.name; });
    if (!isKnown) {
        state_->modules.push_back(module);
    }
}

const std::vector<ModuleInfo>& UI_NodeManager::Modules() const noexcept
{
    return state_->modules;
}

OS_NodeManager::OS_NodeManager() = default;

OS_NodeManager::~OS_NodeManager() = default;

}  // namespace kivui::ui
