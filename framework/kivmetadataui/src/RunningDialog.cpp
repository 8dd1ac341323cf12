#include "framework/kivmetadataui/src/RunningDialog.h"

#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

#include "framework/kivmetadataui/src/DriverStore.h"
#include "framework/kivmetadataui/src/Texts.h"

#include <kivcore/ErrorManager.h>
#include <kivxmp/Derived.h>
#include <kivxmp/XMPAccess.h>
#include <kivxmp/XMPError.h>

namespace kivmetadataui {

namespace {

/// Inside a catch block.
std::string CurrentFailure()
{
    try {
        throw;
    } catch (const XMP_Error& error) {
        return error.Text();
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return Narrow(DialogText("$$$/Kiv/Dialog/Message/Unknown=the reason is not known"));
    }
}

/// Runs `function` under the error manager in force; false if it threw, with the text in `failure`.
bool RunContained(const std::function<void()>& function, std::string& failure) noexcept
{
    bool hasReturned = false;
    kivcore::config::GetErrorManager()->RunAndContain([&]() {
        try {
            function();
        } catch (...) {
            failure = CurrentFailure();
            throw;  // the error manager's to note
        }
        hasReturned = true;
        return 0;
    });
    return hasReturned;
}

std::optional<std::string> UnlessNull(std::string json)
{
    return json == "null" ? std::nullopt : std::optional(std::move(json));
}

// A derived value is the old one: the dialog showed it.
std::vector<kivxmp::Change> ChangesBetween(const __XMPMeta__& before, const __XMPMeta__& after)
{
    std::vector<kivxmp::Change> changes = kivxmp::Compare(before, after);
    const auto derived = kivxmp::DerivedProperties(before);
    const auto shown = __XMPMeta__::Create();
    const auto written = __XMPMeta__::Create();
    for (const kivxmp::Node* const node : derived->Properties()) {
        const kivxmp::Node* const own = after.FindProperty(node->NamespaceUri(), node->LocalName());
        if (own != nullptr) {
            kivxmp::PathStep step;
            step.uri = node->NamespaceUri();
            step.local = node->LocalName();
            step.prefix = node->Prefix();
            shown->SetCopy({step}, *node);
            written->SetCopy({step}, *own);
        }
    }
    std::erase_if(changes, [&](const kivxmp::Change& change) {
        const kivxmp::PathStep property = after.ParsePath(change.path).front();
        return written->FindProperty(property.uri, property.local) != nullptr;
    });
    const std::vector<kivxmp::Change> replaced = kivxmp::Compare(*shown, *written);
    changes.insert(changes.end(), replaced.begin(), replaced.end());
    return changes;
}

}  // namespace

RunningDialog::RunningDialog(std::shared_ptr<kivmetadata::MetaDataProvider> provider,
                             std::shared_ptr<const kivmetadata::ViewDefinitions> views,
                             std::shared_ptr<const kivmetadata::SchemaDefinitions> schemas,
                             DialogOptions options, std::optional<DialogDriver> driver)
    : provider_(std::move(provider)), views_(std::move(views)), schemas_(std::move(schemas))
{
    if (kivui::ui::Theme::IsInitialized()) {
        theme_ = &kivui::ui::Theme::Get();
    }
    if (!provider_->CanWriteChanges()) {
        options.isReadOnly = true;
    }
    options.isPathReadOnly = [this](const std::string& path) {
        return provider_->QueryPathStatus(path) == kivmetadata::PathStatus::kReadOnly;
    };
    model_ = std::make_unique<DialogModel>(*provider_->MetaDataAccess(), *views_, *schemas_,
                                           std::move(options));
    if (driver) {
        script_.emplace(*model_, driver->Steps());
    }
}

RunningDialog::~RunningDialog() = default;

bool RunningDialog::Run(const std::function<void()>& callback) noexcept
{
    std::string failure;
    if (RunContained(callback, failure)) {
        return true;
    }
    std::string ignored;
    RunContained(
        [this, &failure] {
            model_->SetMessage(DialogText("$$$/Kiv/Dialog/Message/Failed=That did not work: ^0",
                                          {Widen(failure)}));
        },
        ignored);
    return false;
}

bool RunningDialog::Confirm() noexcept
{
    if (isCancelled_ || isConfirmed_ || !model_->CanConfirm()) {
        return isConfirmed_;
    }
    Run([this] {
        model_->EndEdits();
        if (model_->ErrorCount() != 0) {
            model_->SetMessage(
                DialogText("$$$/Kiv/Dialog/Message/Errors=Something is not right yet."));
            return;
        }
        model_->SetMessage({});
        WriteChanges();
    });
    return isConfirmed_;
}

void RunningDialog::WriteChanges()
{
    if (model_->ChangeCount() == 0) {
        isConfirmed_ = true;
        return;
    }
    const __XMPMeta__* const object = provider_->MetaDataAccess();
    if (object == nullptr) {
        throw std::runtime_error(
            Narrow(DialogText("$$$/Kiv/Dialog/Failure/ObjectGone=The metadata is gone.")));
    }
    const std::unique_ptr<__XMPMeta__> changed = object->Clone();
    model_->Apply(*changed);
    std::vector<DialogChange> changes;
    for (kivxmp::Change& change : ChangesBetween(*object, *changed)) {
        changes.push_back({std::move(change.path), UnlessNull(std::move(change.oldJson)),
                           UnlessNull(std::move(change.newJson))});
    }
    provider_->DoWriteChanges(*changed);
    SetLastChanges(std::move(changes));
    isConfirmed_ = true;
    provider_->ChangesWritten();
}

bool RunningDialog::HasScript() const noexcept
{
    return script_.has_value() && scriptFailure_.empty();
}

bool RunningDialog::RunScriptStep(DialogSurface& surface) noexcept
{
    if (!HasScript() || isConfirmed_ || isCancelled_) {
        return false;
    }
    bool isUnderWay = false;
    std::string failure;
    RunContained(
        [&] {
            isUnderWay = script_->RunStep(surface);
            if (!isUnderWay && script_->HasPressedOk()) {
                failure = WhyStillOpen();
            }
        },
        failure);
    if (!failure.empty()) {
        scriptFailure_ = std::move(failure);
    }
    return isUnderWay && scriptFailure_.empty();
}

// For a script that pressed OK and found the dialog open afterwards.
std::string RunningDialog::WhyStillOpen() const
{
    if (!model_->CanConfirm()) {
        return Narrow(DialogText("$$$/Kiv/Dialog/Failure/ReadOnly=The dialog is read-only."));
    }
    if (const std::optional<SearchHit> error = model_->FirstError()) {
        return error->field->Path() + ": " + Narrow(error->field->Error());
    }
    return Narrow(model_->Message());
}

}  // namespace kivmetadataui
