#include "framework/kivmetadata/src/Tracing.h"

#include <kivcore/Trace.h>

namespace kivmetadata {

namespace {

constinit kivcore::debug::TraceSite problems("kivmetadata", 0);

}  // namespace

void TraceProblem(std::string_view text) noexcept
{
    try {
        if (problems.Enabled()) {
            problems.Write(text);
        }
    } catch (...) {  // asking for the channel may allocate; a lost trace is no failure
    }
}

}  // namespace kivmetadata
