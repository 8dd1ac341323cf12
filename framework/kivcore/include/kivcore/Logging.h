// Callbacks, by name, that tell where a part of the framework keeps its log files.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::logging {

using LogFilePathsCallback = std::function<std::vector<UString>()>;

/// Registers `callback` under `name`, in place of an earlier one of that name.
KIVCORE_API void RegisterLogFilePathsCallback(const std::string& name,
                                              LogFilePathsCallback callback);
/// Silent where nothing of that name is registered.
KIVCORE_API void UnregisterLogFilePathsCallback(const std::string& name) noexcept;
/// The paths that all callbacks name.
KIVCORE_API std::vector<UString> LogFilePaths();

}  // namespace kivcore::logging
