// One open dialog as the toolkit module sees it, over the provider's object.

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "framework/kivmetadataui/src/ScriptRunner.h"
#include "framework/kivmetadataui/src/ToolkitModule.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/Provider.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivui/Theme.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace kivmetadataui {

class RunningDialog : public ShownDialog {
public:
    /// Requires a provider with an object. Holds everything it is given, and the theme in force.
    RunningDialog(std::shared_ptr<kivmetadata::MetaDataProvider> provider,
                  std::shared_ptr<const kivmetadata::ViewDefinitions> views,
                  std::shared_ptr<const kivmetadata::SchemaDefinitions> schemas,
                  DialogOptions options, std::optional<DialogDriver> driver);
    RunningDialog(const RunningDialog&) = delete;
    RunningDialog& operator=(const RunningDialog&) = delete;
    ~RunningDialog() override;

    DialogModel& Model() noexcept override { return *model_; }
    bool Run(const std::function<void()>& callback) noexcept override;
    bool Confirm() noexcept override;
    bool HasScript() const noexcept override;
    bool RunScriptStep(DialogSurface& surface) noexcept override;

    /// From now on nothing is confirmed.
    void Cancel() noexcept { isCancelled_ = true; }
    bool IsCancelled() const noexcept { return isCancelled_; }
    /// True once the changes are in the object.
    bool IsConfirmed() const noexcept { return isConfirmed_; }
    /// Why a script could not be carried out, UTF-8; empty where it could.
    const std::string& ScriptFailure() const noexcept { return scriptFailure_; }

private:
    void WriteChanges();
    std::string WhyStillOpen() const;

    std::shared_ptr<kivmetadata::MetaDataProvider> provider_;
    std::shared_ptr<const kivmetadata::ViewDefinitions> views_;
    std::shared_ptr<const kivmetadata::SchemaDefinitions> schemas_;
    boost::intrusive_ptr<kivui::ui::Theme> theme_;
    std::unique_ptr<DialogModel> model_;
    std::optional<ScriptRunner> script_;
    std::string scriptFailure_;
    bool isConfirmed_ = false;
    bool isCancelled_ = false;
};

}  // namespace kivmetadataui
