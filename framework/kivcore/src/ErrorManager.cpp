#include <kivcore/ErrorManager.h>

#include <algorithm>
#include <charconv>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

#include <kivcore/Config.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Localizer.h>
#include <kivcore/NeverDestroyed.h>
#include <kivcore/StringConversion.h>
#include <kivcore/Trace.h>

#include "framework/kivcore/src/StaticMutex.h"

namespace kivcore::config {

namespace {

/// What is in force; an empty entry stands for the default.
struct Current {
    std::shared_ptr<ErrorManager> manager;
    std::shared_ptr<ErrorManager> defaultManager;  // made at the first use
    std::shared_ptr<const ErrorPresenter> presenter;
};

constinit StaticMutex currentMutex;

/// Under the lock only.
Current& InForce() noexcept
{
    static NeverDestroyed<Current> current;
    return *current;
}

void Show(const std::string& message) noexcept
{
    try {
        debug::Trace(0, "kivcore", message);
        const std::shared_ptr<const ErrorPresenter> presenter = [] {
            const std::lock_guard lock(currentMutex);
            return InForce().presenter;
        }();
        if (presenter != nullptr && !IsAppHeadless()) {
            (*presenter)(message);
        }
    } catch (...) {
        debug::Trace(0, "kivcore", "a message could not be shown");
    }
}

}  // namespace

/// What a manager has to show, shared with its reporters so that one that ends late finds it.
struct ErrorManager::Display {
    int lazyCount = 0;
    std::string waiting;  // lines to be shown once lazyCount is 0 again

    void Present(const std::string& message)
    {
        if (lazyCount == 0) {
            Show(message);
            return;
        }
        if (!waiting.empty()) {
            waiting += '\n';
        }
        waiting += message;
    }
};

/// Keeps the messages in the order in which they came.
class QueuedErrorReporter : public DeferredErrorReporter {
public:
    explicit QueuedErrorReporter(std::shared_ptr<ErrorManager::Display> display)
        : display_(std::move(display))
    {
    }
    QueuedErrorReporter(const QueuedErrorReporter&) = delete;
    QueuedErrorReporter& operator=(const QueuedErrorReporter&) = delete;
    ~QueuedErrorReporter() override
    {
        try {
            if (!messages_.empty()) {
                display_->Present(Text());
            }
        } catch (...) {
            debug::Trace(0, "kivcore", "deferred messages could not be shown");
        }
    }

    void Report(const std::string& message) override
    {
        if (std::find(messages_.begin(), messages_.end(), message) == messages_.end()) {
            messages_.push_back(message);
        }
    }

    std::string Text() const override
    {
        std::string text;
        for (const std::string& message : messages_) {
            if (!text.empty()) {
                text += '\n';
            }
            text += message;
        }
        return text;
    }

private:
    std::shared_ptr<ErrorManager::Display> display_;
    std::vector<std::string> messages_;
};

ReplacementValue::ReplacementValue(const char* utf8Text)
    : text_(utf8Text != nullptr ? string::UTF8to16(utf8Text) : UString())
{
}

ReplacementValue::ReplacementValue(std::int64_t number)
{
    char digits[24];
    const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), number);
    text_.assign(std::begin(digits), end);
}

std::string SubstituteErrorMessage(const char* messageId, const ReplacementValue& value0,
                                   const ReplacementValue& value1, const ReplacementValue& value2,
                                   const ReplacementValue& value3)
{
    const ReplacementValue* const values[] = {&value0, &value1, &value2, &value3};
    const UString pattern = Localize(messageId != nullptr ? messageId : "");
    UString text;
    for (std::size_t index = 0; index < pattern.size(); ++index) {
        const char16_t next = index + 1 < pattern.size() ? pattern[index + 1] : u'\0';
        if (pattern[index] == u'^' && next >= u'0' && next <= u'3') {
            text += values[next - u'0']->Text();
            ++index;
        } else {
            text += pattern[index];
        }
    }
    return string::UTF16to8(text);
}

DeferredErrorReporter::~DeferredErrorReporter() = default;

ErrorManager::ErrorManager() : display_(std::make_shared<Display>()) {}

ErrorManager::~ErrorManager() = default;

std::size_t ErrorManager::PurgeMemory()
{
    const std::size_t bytes = RecycledBytes();
    ReleaseRecycledBlocks();
    return bytes;
}

void ErrorManager::IncrementLazilyDisplayErrors()
{
    ++display_->lazyCount;
}

void ErrorManager::DecrementLazilyDisplayErrors()
{
    if (display_->lazyCount == 0 || --display_->lazyCount != 0) {
        return;
    }
    const std::string waiting = std::exchange(display_->waiting, std::string());
    if (!waiting.empty()) {
        Show(waiting);
    }
}

bool ErrorManager::ExecuteFunctionAndConvertException(
    const std::function<void()>& function) noexcept
{
    try {
        function();
        return true;
    } catch (...) {
        SetLastFailureFromCurrentException();
        return false;
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the slot's signature is fixed
int ErrorManager::RunAndContain(std::function<int()> function) noexcept
{
    try {
        return function();
    } catch (...) {
        SetLastFailureFromCurrentException();
        return 1;
    }
}

std::unique_ptr<DeferredErrorReporter> ErrorManager::NewDeferredErrorReporter()
{
    return std::make_unique<QueuedErrorReporter>(display_);
}

void ErrorManager::RaiseError(bool /*alreadyShown*/, const char* messageId,
                              const ReplacementValue& value0, const ReplacementValue& value1,
                              const ReplacementValue& value2, const ReplacementValue& value3)
{
    throw std::runtime_error(SubstituteErrorMessage(messageId, value0, value1, value2, value3));
}

void ErrorManager::Present(const std::string& message)
{
    display_->Present(message);
}

void SetErrorManager(std::shared_ptr<ErrorManager> manager)
{
    // What `manager` holds afterwards, the former one, goes when the lock is free again: its
    // destructor may come back here.
    const std::lock_guard lock(currentMutex);
    InForce().manager.swap(manager);
}

void ResetToDefaultErrorManager()
{
    SetErrorManager(nullptr);
}

std::shared_ptr<ErrorManager> GetErrorManager()
{
    const std::lock_guard lock(currentMutex);
    Current& current = InForce();
    if (current.manager != nullptr) {
        return current.manager;
    }
    if (current.defaultManager == nullptr) {
        current.defaultManager = std::make_shared<ErrorManager>();
    }
    return current.defaultManager;
}

void SetErrorPresenter(ErrorPresenter presenter)
{
    std::shared_ptr<const ErrorPresenter> next;
    if (presenter) {
        next = std::make_shared<const ErrorPresenter>(std::move(presenter));
    }
    const std::lock_guard lock(currentMutex);
    InForce().presenter.swap(next);
}

}  // namespace kivcore::config
