#include "api/tests/RecordingFramework.h"

#include <kivcore/Config.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/Localizer.h>

#include <stdexcept>

namespace recording {

namespace {

Framework framework;

}  // namespace

Framework& Get()
{
    return framework;
}

void Reset()
{
    kivcore::config::Localizer::Set(nullptr, nullptr);
    kivcore::config::ResetToDefaultErrorManager();
    framework = Framework();
}

void Note(const std::string& name, const std::string& argument) noexcept
{
    framework.calls.push_back(argument.empty() ? name : name + " " + argument);
}

void Call(const std::string& name, const std::string& argument)
{
    Note(name, argument);
    if (name == framework.failAt) {
        if (framework.throwsUnknown) {
            throw 42;
        }
        throw std::runtime_error(name + " failed");
    }
}

std::string TakeCalls()
{
    std::string text;
    for (const std::string& call : framework.calls) {
        text += call + "\n";
    }
    framework.calls.clear();
    return text;
}

}  // namespace recording
