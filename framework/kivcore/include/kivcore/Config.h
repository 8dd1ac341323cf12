// The framework's configuration: who the client is, whether it has a face, and the executor under
// which every entry point runs.

#pragma once

#include <functional>

#include <boost/function.hpp>

#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::config {

/// Takes messages of the framework to its host, UTF-8.
using MessageCallback = boost::function<void(const char*)>;

/// Begins the use of the framework; calls are counted. The callback of the newest call is the one
/// in force. Returns false if the framework was up already.
KIVCORE_API bool Initialize(const MessageCallback& callback);

/// Undoes the newest Initialize, its callback included: the one before is in force again. Silent
/// when there is none. The one that reaches zero forgets client identity, headless mode and locale,
/// and frees recycled blocks. `lastStep`, if not null, runs before that; what it throws is dropped.
KIVCORE_API void Terminate(const std::function<void()>* lastStep);

/// True between the first Initialize and the last Terminate.
KIVCORE_API bool IsInitialized() noexcept;

/// Hands `message` (UTF-8) to the callback in force, if there is one.
KIVCORE_API void SendMessageToClient(const char* message);

/// True once a client name is set, also to an empty one.
KIVCORE_API bool IsClientNameInitialized() noexcept;

KIVCORE_API void SetCompanyName(const UString& name);
KIVCORE_API void SetClientName(const UString& name);
KIVCORE_API void SetClientVersion(const UString& version);
KIVCORE_API void SetClientInternalVersion(const UString& version);
KIVCORE_API void SetClientBuildNumber(const UString& number);

/// The texts set above, empty before. They stay valid until the next Set or last Terminate.
KIVCORE_API const UString& CompanyName() noexcept;
KIVCORE_API const UString& ClientName() noexcept;
KIVCORE_API const UString& ClientVersion() noexcept;
KIVCORE_API const UString& ClientInternalVersion() noexcept;
KIVCORE_API const UString& ClientBuildNumber() noexcept;

/// A headless client gets no message boxes of the framework's own.
KIVCORE_API void SetAppIsHeadless(bool headless) noexcept;
KIVCORE_API bool IsAppHeadless() noexcept;

/// Calls `function` through the current error manager's ExecuteFunctionAndConvertException; nothing
/// escapes and nothing is traced. `*failed`, where given, becomes whether an exception was caught;
/// its text is then LastFailureText(), which is empty otherwise unless the function set it.
/// A running call keeps the error manager that it began with.
KIVCORE_API void ExecuteTopLevelFunction(const std::function<void()>& function,
                                         bool* failed) noexcept;

}  // namespace kivcore::config
