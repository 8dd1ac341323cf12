// How failures are contained, worded and shown. One error manager is in force at a time.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::config {

/// A value put into a message: a text, a whole number or nothing.
class KIVCORE_API ReplacementValue {
public:
    ReplacementValue() = default;
    ReplacementValue(UString text) : text_(std::move(text)) {}
    ReplacementValue(UStringView text) : text_(text) {}
    ReplacementValue(const char* utf8Text);
    ReplacementValue(std::int64_t number);

    const UString& Text() const noexcept { return text_; }

private:
    UString text_;
};

/// The message `messageId` (a "$$$/" key, localized), with "^0" to "^3" replaced by the values, as
/// UTF-8. A value is not searched for further "^n".
KIVCORE_API std::string SubstituteErrorMessage(const char* messageId,
                                               const ReplacementValue& value0,
                                               const ReplacementValue& value1,
                                               const ReplacementValue& value2,
                                               const ReplacementValue& value3);

/// Collects errors while it lives and presents them together when it ends.
class KIVCORE_API DeferredErrorReporter {
public:
    virtual ~DeferredErrorReporter();
    /// Keeps one message, UTF-8. Equal messages are kept once.
    virtual void Report(const std::string& message) = 0;
    /// The messages kept so far, one a line.
    virtual std::string Text() const = 0;
};

/// The framework's default error manager, and the base of others. Virtual operations stand in a
/// fixed order; new ones go to the end.
class KIVCORE_API ErrorManager {
public:
    ErrorManager();
    ErrorManager(const ErrorManager&) = delete;
    ErrorManager& operator=(const ErrorManager&) = delete;

    virtual ~ErrorManager();
    /// Frees what can be made again; returns the number of bytes that came free.
    virtual std::size_t PurgeMemory();
    /// While the count is above 0, errors to be presented wait.
    virtual void IncrementLazilyDisplayErrors();
    /// The decrement that reaches 0 presents what waited.
    virtual void DecrementLazilyDisplayErrors();
    /// Runs `function`. An exception is contained: its text becomes LastFailureText(), and the
    /// result is false.
    virtual bool ExecuteFunctionAndConvertException(const std::function<void()>& function) noexcept;
    /// Runs `function` and returns its result; 1 if it threw or is empty.
    virtual int RunAndContain(std::function<int()> function) noexcept;
    /// A reporter whose messages are presented through this manager when it ends.
    virtual std::unique_ptr<DeferredErrorReporter> NewDeferredErrorReporter();
    /// Throws the substituted message (see SubstituteErrorMessage). `alreadyShown` tells that the
    /// user has seen it; the default manager throws std::runtime_error, which cannot carry that.
    [[noreturn]] virtual void RaiseError(bool alreadyShown, const char* messageId,
                                         const ReplacementValue& value0,
                                         const ReplacementValue& value1,
                                         const ReplacementValue& value2,
                                         const ReplacementValue& value3);

protected:
    /// Shows `message` (UTF-8) to the user: through the presenter that a UI has set, never in a
    /// headless client; traced on "kivcore" always.
    void Present(const std::string& message);

private:
    friend class QueuedErrorReporter;
    struct Display;
    std::shared_ptr<Display> display_;  // shared with the reporters, which may outlive the manager
};

/// Makes `manager` the one in force; ownership is shared. Null puts the default one back.
KIVCORE_API void SetErrorManager(std::shared_ptr<ErrorManager> manager);
KIVCORE_API void ResetToDefaultErrorManager();
/// The manager in force, never null.
KIVCORE_API std::shared_ptr<ErrorManager> GetErrorManager();

/// Shows a message to the user. UTF-8.
using ErrorPresenter = std::function<void(const std::string& message)>;
/// Sets what Present uses; an empty function takes it away.
KIVCORE_API void SetErrorPresenter(ErrorPresenter presenter);

}  // namespace kivcore::config
