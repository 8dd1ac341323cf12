#include <kivmetadataui/DialogDriver.h>

#include <utility>

#include "framework/kivmetadataui/src/DriverStore.h"

namespace kivmetadataui {

namespace {

struct Store {
    std::optional<DialogDriver> driver;
    std::vector<DialogChange> changes;
};

Store& TheStore()
{
    static Store& store = *new Store;
    return store;
}

}  // namespace

DialogDriver& DialogDriver::TypeValue(std::string path, std::string value)
{
    return Add(DriverStepKind::kTypeValue, std::move(path), std::move(value));
}

DialogDriver& DialogDriver::TypeText(std::string text)
{
    return Add(DriverStepKind::kTypeText, {}, std::move(text));
}

DialogDriver& DialogDriver::PressKey(const DriverKeyPress& press)
{
    Add(DriverStepKind::kPressKey);
    steps_.back().press = press;
    return *this;
}

DialogDriver& DialogDriver::ChooseView(std::string name)
{
    return Add(DriverStepKind::kChooseView, std::move(name));
}

DialogDriver& DialogDriver::WaitUntilPainted()
{
    return Add(DriverStepKind::kWaitUntilPainted);
}

DialogDriver& DialogDriver::Screenshot(std::string pngPath)
{
    return Add(DriverStepKind::kScreenshot, std::move(pngPath));
}

DialogDriver& DialogDriver::PressOk()
{
    return Add(DriverStepKind::kPressOk);
}

DialogDriver& DialogDriver::PressCancel()
{
    return Add(DriverStepKind::kPressCancel);
}

void DialogDriver::Register(DialogDriver driver)
{
    TheStore().driver = std::move(driver);
}

void DialogDriver::Unregister() noexcept
{
    TheStore().driver.reset();
}

const std::vector<DialogChange>& DialogDriver::LastChanges() noexcept
{
    return TheStore().changes;
}

DialogDriver& DialogDriver::Add(DriverStepKind kind, std::string name, std::string text)
{
    steps_.push_back({kind, std::move(name), std::move(text), {}});
    return *this;
}

std::optional<DialogDriver> TakeRegisteredDriver()
{
    return std::exchange(TheStore().driver, std::nullopt);
}

void SetLastChanges(std::vector<DialogChange> changes) noexcept
{
    TheStore().changes = std::move(changes);
}

}  // namespace kivmetadataui
