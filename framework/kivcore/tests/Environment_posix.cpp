#include "framework/kivcore/tests/Environment.h"

#include <cstdlib>

namespace kivcore::testing {

namespace {

void Put(const char* name, const std::optional<std::string>& value)
{
    if (value) {
        setenv(name, value->c_str(), 1);
    } else {
        unsetenv(name);
    }
}

}  // namespace

EnvironmentVariable::EnvironmentVariable(const char* name, const std::optional<std::string>& value)
    : name_(name)
{
    if (const char* const before = std::getenv(name)) {
        before_ = before;
    }
    Put(name, value);
}

EnvironmentVariable::~EnvironmentVariable()
{
    Put(name_, before_);
}

}  // namespace kivcore::testing
