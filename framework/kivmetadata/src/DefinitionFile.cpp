#include "framework/kivmetadata/src/DefinitionFile.h"

#include "framework/kivmetadata/src/Tracing.h"

#include <exception>
#include <new>

namespace kivmetadata {

namespace {

constexpr std::size_t kMaxFileBytes = std::size_t{4} << 20;

}  // namespace

bool ReadDefinitionFile(
    const kivcore::filesupport::File& file,
    const std::function<void(std::string_view text, const std::string& sourceName)>& read)
{
    if (!file.Exists()) {
        return false;
    }
    try {
        read(file.ReadAll(kMaxFileBytes), kivcore::filesupport::PathToUTF8(file.FullPath()));
        return true;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        TraceProblem(error.what());
        return false;
    }
}

}  // namespace kivmetadata
