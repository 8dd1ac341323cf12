#include "framework/kivcore/tests/Environment.h"

#include <cstdlib>
#include <filesystem>

#include <windows.h>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::testing {

namespace {

std::wstring Wide(const std::string& text)
{
    return PathOfText(text).wstring();
}

// The C library keeps variables of its own beside the system's.
void Put(const char* name, const std::optional<std::string>& value)
{
    const std::wstring wideName = Wide(name);
    const std::wstring wideValue = Wide(value.value_or(""));
    _wputenv_s(wideName.c_str(), wideValue.c_str());
    if (value) {
        SetEnvironmentVariableW(wideName.c_str(), wideValue.c_str());  // it may be empty here
    }
}

}  // namespace

EnvironmentVariable::EnvironmentVariable(const char* name, const std::optional<std::string>& value)
    : name_(name)
{
    const std::wstring wideName = Wide(name);
    std::wstring text(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
    if (!text.empty()) {
        text.resize(GetEnvironmentVariableW(wideName.c_str(), text.data(),
                                            static_cast<DWORD>(text.size())));
        before_ = std::filesystem::path(text).string();
    }
    Put(name, value);
}

EnvironmentVariable::~EnvironmentVariable()
{
    Put(name_, before_);
}

}  // namespace kivcore::testing
