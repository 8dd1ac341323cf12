#include "framework/kivmetadata/src/Tracing.h"

#include <kivcore/Trace.h>

namespace kivmetadata {

namespace {

constinit kivcore::debug::TraceSite problems("kivmetadata", 0);

}  // namespace

void TraceProblem(std::string_view text) noexcept
{
    problems.Report(text);
}

}  // namespace kivmetadata
