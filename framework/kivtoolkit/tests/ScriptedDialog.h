// A dialog for tests: a real model over a small packet, the real window, and steps that look at
// both while it is open.

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/kivmetadataui/src/ToolkitModule.h"
#include "framework/kivtoolkit/src/DialogWindow.h"

#include <gtest/gtest.h>
#include <kivcore/PropList.h>
#include <kivmetadata/Definitions.h>
#include <kivui/NodeManager.h>
#include <kivxmp/XMPMeta.h>

extern "C" kivmetadataui::ToolkitModule* KivToolkitOpen(std::uint32_t version);

namespace kivtoolkit::tests {

/// Views "first" (one field of every kind: t:text, t:long, t:alt, t:rights, t:list, t:order,
/// t:closed, t:open, t:date, t:number, t:rating, t:flag, t:fixed) and "second" (t:text, t:other).
class ScriptedDialog : public kivmetadataui::ShownDialog {
public:
    using Step = std::function<void(ScriptedDialog&, kivmetadataui::DialogSurface&)>;

    explicit ScriptedDialog(std::string_view properties, kivmetadataui::DialogOptions options = {});
    /// Over an object of any origin.
    explicit ScriptedDialog(std::unique_ptr<__XMPMeta__> meta,
                            kivmetadataui::DialogOptions options = {});
    ~ScriptedDialog() override;

    ScriptedDialog& Then(Step step)
    {
        steps_.push_back(std::move(step));
        return *this;
    }
    /// Shows the dialog, does the steps, presses Cancel if they left it open.
    kivmetadataui::DialogResult Show(HWND parent = nullptr);

    kivmetadataui::DialogModel& Model() noexcept override { return *model_; }
    bool Run(const std::function<void()>& callback) noexcept override;
    bool Confirm() noexcept override;
    bool HasScript() const noexcept override { return true; }
    bool RunScriptStep(kivmetadataui::DialogSurface& surface) noexcept override;

    /// A packet with `properties`, whose prefix is "t".
    static std::string Packet(std::string_view properties);
    /// The window while it is open.
    static DialogWindow& Window();
    /// Content of the field at `path`, as "a|b" or "de=a|en=b".
    std::string Content(const char* path);
    kivmetadataui::Field& FieldAt(const char* path);

    std::vector<std::string> failures;  ///< what callbacks threw
    bool refuses = false;               ///< Confirm leaves the dialog open

private:
    std::unique_ptr<__XMPMeta__> meta_;
    kivmetadata::ViewDefinitions views_;
    kivmetadata::SchemaDefinitions schemas_;
    std::unique_ptr<kivmetadataui::DialogModel> model_;
    std::vector<Step> steps_;
    std::size_t next_ = 0;
};

/// The theme, the node manager and the toolkit for as long as a test runs.
class ToolkitTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    void SetScale(float scale);
    void SetBrightness(float brightness);

private:
    struct NodeManager : kivui::ui::OS_NodeManager {};
    std::unique_ptr<NodeManager> manager_;
};

}  // namespace kivtoolkit::tests
