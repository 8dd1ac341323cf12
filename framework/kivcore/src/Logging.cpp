#include <kivcore/Logging.h>

#include <kivcore/NeverDestroyed.h>

#include <map>

namespace kivcore::logging {

namespace {

std::map<std::string, LogFilePathsCallback>& Callbacks() noexcept
{
    static NeverDestroyed<std::map<std::string, LogFilePathsCallback>> callbacks;
    return *callbacks;
}

}  // namespace

void RegisterLogFilePathsCallback(const std::string& name, LogFilePathsCallback callback)
{
    Callbacks().insert_or_assign(name, std::move(callback));
}

void UnregisterLogFilePathsCallback(const std::string& name) noexcept
{
    Callbacks().erase(name);
}

std::vector<UString> LogFilePaths()
{
    std::vector<UString> paths;
    const auto callbacks = Callbacks();  // a copy: one of them may take itself out
    for (const auto& [name, callback] : callbacks) {
        if (!callback) {
            continue;
        }
        for (UString& path : callback()) {
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

}  // namespace kivcore::logging
