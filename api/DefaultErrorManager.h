// The error manager that the library gives the framework: failures become results and traces.

#pragma once

#include <functional>

#include <kivcore/ErrorManager.h>

namespace kivmetadataapi {

class DefaultErrorManager : public kivcore::config::ErrorManager {
public:
    DefaultErrorManager() = default;
    ~DefaultErrorManager() override;

    /// Runs `function` and returns its result. An exception stays inside, its text is traced on
    /// "kivmetadataapi" and becomes the last failure's text, and the result is 1.
    int RunAndContain(std::function<int()> function) noexcept override;

    /// Throws kivmetadataapi_error with the substituted message and the negation of `alreadyShown`.
    [[noreturn]] void RaiseError(bool alreadyShown, const char* messageId,
                                 const kivcore::config::ReplacementValue& value0,
                                 const kivcore::config::ReplacementValue& value1,
                                 const kivcore::config::ReplacementValue& value2,
                                 const kivcore::config::ReplacementValue& value3) override;
};

}  // namespace kivmetadataapi
