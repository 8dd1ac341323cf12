#include <kivcore/Config.h>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include <kivcore/ErrorManager.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Locale.h>
#include <kivcore/NeverDestroyed.h>
#include <kivcore/Trace.h>

namespace kivcore::config {

namespace {

struct Client {
    UString companyName;
    UString clientName;
    UString version;
    UString internalVersion;
    UString buildNumber;
    bool hasName = false;
    bool headless = false;
    std::vector<MessageCallback> messageCallbacks;  // one for each Initialize not undone
};

Client& CurrentClient() noexcept
{
    static NeverDestroyed<Client> client;
    return *client;
}

constinit unsigned initializeCount = 0;
constinit bool isEnding = false;

}  // namespace

bool Initialize(const MessageCallback& callback)
{
    CurrentClient().messageCallbacks.push_back(callback);
    return ++initializeCount == 1;
}

void Terminate(const std::function<void()>* lastStep)
{
    // A terminate from within the last step finds nothing left to undo.
    if (initializeCount == 0 || isEnding) {
        return;
    }
    const auto ended = static_cast<std::ptrdiff_t>(initializeCount - 1);
    if (initializeCount == 1 && lastStep != nullptr) {
        isEnding = true;
        try {
            (*lastStep)();
        } catch (...) {
            debug::Trace(0, "kivcore", "the last step of terminating failed");
        }
        isEnding = false;
    }
    if (--initializeCount != 0) {  // the last step may have initialized anew
        std::vector<MessageCallback>& callbacks = CurrentClient().messageCallbacks;
        // Out of the list first: what a callback holds may look at the configuration when it goes.
        const MessageCallback gone = std::move(callbacks[static_cast<std::size_t>(ended)]);
        callbacks.erase(callbacks.begin() + ended);
        return;
    }
    {
        // For the same reason moved out first.
        const Client gone = std::exchange(CurrentClient(), Client());
    }
    Locale::Reset();
    ReleaseRecycledBlocks();
}

bool IsInitialized() noexcept
{
    return initializeCount != 0;
}

void SendMessageToClient(const char* message)
{
    // A copy, because the callback may end the framework.
    const std::vector<MessageCallback>& callbacks = CurrentClient().messageCallbacks;
    const MessageCallback callback = callbacks.empty() ? MessageCallback() : callbacks.back();
    if (callback) {
        callback(message != nullptr ? message : "");
    }
}

bool IsClientNameInitialized() noexcept
{
    return CurrentClient().hasName;
}

void SetCompanyName(const UString& name)
{
    CurrentClient().companyName = name;
}

void SetClientName(const UString& name)
{
    CurrentClient().clientName = name;
    CurrentClient().hasName = true;
}

void SetClientVersion(const UString& version)
{
    CurrentClient().version = version;
}

void SetClientInternalVersion(const UString& version)
{
    CurrentClient().internalVersion = version;
}

void SetClientBuildNumber(const UString& number)
{
    CurrentClient().buildNumber = number;
}

const UString& CompanyName() noexcept
{
    return CurrentClient().companyName;
}

const UString& ClientName() noexcept
{
    return CurrentClient().clientName;
}

const UString& ClientVersion() noexcept
{
    return CurrentClient().version;
}

const UString& ClientInternalVersion() noexcept
{
    return CurrentClient().internalVersion;
}

const UString& ClientBuildNumber() noexcept
{
    return CurrentClient().buildNumber;
}

void SetAppIsHeadless(bool headless) noexcept
{
    CurrentClient().headless = headless;
}

bool IsAppHeadless() noexcept
{
    return CurrentClient().headless;
}

void ExecuteTopLevelFunction(const std::function<void()>& function, bool* failed) noexcept
{
    SetLastFailureText({});
    bool succeeded = false;
    try {
        // Held until the function has returned: it may put another manager in force.
        const std::shared_ptr<ErrorManager> manager = GetErrorManager();
        succeeded = manager->ExecuteFunctionAndConvertException(function);
        if (!succeeded && *KivLastFailureText() == '\0') {
            SetLastFailureText("unknown exception");  // a manager that keeps no text
        }
    } catch (...) {
        SetLastFailureFromCurrentException();
    }
    if (failed != nullptr) {
        *failed = !succeeded;
    }
}

}  // namespace kivcore::config
