// The one object that a user interface hangs on: scale, screen resolution and the modules in use.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <boost/function.hpp>

#include <kivui/Export.h>
#include <kivui/ModuleInfo.h>

namespace kivui::svg {
class ISVGHandler;
}  // namespace kivui::svg

namespace kivui::ui {

/// Where the scale of windows comes from.
enum class DPISelectionType : int {
    kSystem = 0,       ///< the screen's own resolution
    kRecommended = 1,  ///< the recommended-scale function
};

/// An offset and a scale for each axis.
template <class T>
struct ScaleMatrixT {
    T offsetX{};
    T offsetY{};
    T scaleX{};
    T scaleY{};
    bool operator==(const ScaleMatrixT&) const = default;
};

/// Scale to use, given the screen's own scale and the selection in force.
using RecommendedScaleFactorFunction = boost::function<float(float, DPISelectionType)>;

class KIVUI_API UI_NodeManager {
public:
    UI_NodeManager(const UI_NodeManager&) = delete;
    UI_NodeManager& operator=(const UI_NodeManager&) = delete;

    /// Takes the object out if it is the registered one.
    virtual ~UI_NodeManager();

    /// The registered manager. Where there is none: null if `mayBeNull`, else std::logic_error.
    static UI_NodeManager* Get(bool mayBeNull);
    /// Registers `manager` without owning it; null takes the registered one out.
    static void Set(UI_NodeManager* manager) noexcept;

    void SetDPISelectionType(DPISelectionType type) noexcept;
    DPISelectionType GetDPISelectionType() const noexcept;
    void SetRecommendedScaleFactorFunction(RecommendedScaleFactorFunction function);
    void SetScaleMatrix(const ScaleMatrixT<float>& matrix) noexcept;
    const ScaleMatrixT<float>& GetScaleMatrix() const noexcept;

    /// The scale at which to draw on a screen whose own scale is `screenScale`: by the selection in
    /// force; what is not a number counts as 1, then kept within 0.5 and 4.
    float DrawingScale(float screenScale) const;

    /// What draws vector artwork, not owned; null for none. Icons drawn through another one are
    /// let go, as they are by this object's end.
    void SetSVGHandler(svg::ISVGHandler* handler) noexcept;
    /// Null where none was set.
    svg::ISVGHandler* GetSVGHandler() const noexcept;

    /// Enters a module once; a second call with the same name changes nothing.
    void InitializeModule(const ModuleInfo& module);
    const std::vector<ModuleInfo>& Modules() const noexcept;

protected:
    UI_NodeManager();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The node manager of this system.
class KIVUI_API OS_NodeManager : public UI_NodeManager {
public:
    ~OS_NodeManager() override;

protected:
    OS_NodeManager();
};

}  // namespace kivui::ui
