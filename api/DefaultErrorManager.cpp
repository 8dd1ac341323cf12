#include "api/DefaultErrorManager.h"

#include "api/ApiError.h"
#include "api/TraceSites.h"

#include <kivcore/LastFailure.h>
#include <kivxmp/XMPError.h>

#include <exception>
#include <utility>

namespace kivmetadataapi {

namespace {

void Report(const char* text) noexcept
{
    kivcore::SetLastFailureText(text);
    ContainedFailureSite().Report(text);
}

}  // namespace

DefaultErrorManager::~DefaultErrorManager() = default;

int DefaultErrorManager::RunAndContain(std::function<int()> function) noexcept
{
    int result = 1;
    try {
        result = function();  // an empty one throws std::bad_function_call, contained like the rest
    } catch (const kivmetadataapi_error& error) {
        Report(error.what());
    } catch (const std::exception& error) {
        Report(error.what());
    } catch (const XMP_Error& error) {
        Report(error.Text());
    } catch (...) {
        Report("unknown exception");
    }
    return result;
}

void DefaultErrorManager::RaiseError(bool alreadyShown, const char* messageId,
                                     const kivcore::config::ReplacementValue& value0,
                                     const kivcore::config::ReplacementValue& value1,
                                     const kivcore::config::ReplacementValue& value2,
                                     const kivcore::config::ReplacementValue& value3)
{
    throw kivmetadataapi_error(
        kivcore::config::SubstituteErrorMessage(messageId, value0, value1, value2, value3),
        !alreadyShown);
}

}  // namespace kivmetadataapi
