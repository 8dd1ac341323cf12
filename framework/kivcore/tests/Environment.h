// An environment variable for as long as an object lives.

#pragma once

#include <optional>
#include <string>

namespace kivcore::testing {

class EnvironmentVariable {
public:
    /// Sets the variable, or takes it out where there is no value.
    EnvironmentVariable(const char* name, const std::optional<std::string>& value);
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    /// Back to what it was.
    ~EnvironmentVariable();

private:
    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace kivcore::testing
