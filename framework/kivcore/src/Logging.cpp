#include <kivcore/Logging.h>

#include <map>

namespace kivcore::logging {

namespace {

// Never destroyed: a host may leave without the last terminate.
std::map<std::string, LogFilePathsCallback>& Callbacks()
{
    static auto& callbacks = *new std::map<std::string, LogFilePathsCallback>();
    return callbacks;
}

}  // namespace

void RegisterLogFilePathsCallback(const std::string& name, LogFilePathsCallback callback)
{
    Callbacks()[name] = std::move(callback);
}

void UnregisterLogFilePathsCallback(const std::string& name) noexcept
{
    Callbacks().erase(name);
}

std::vector<UString> LogFilePaths()
{
    std::vector<UString> paths;
    for (const auto& [name, callback] : Callbacks()) {
        for (UString& path : callback()) {
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

}  // namespace kivcore::logging
