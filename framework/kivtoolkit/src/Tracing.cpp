#include "framework/kivtoolkit/src/Tracing.h"

#include <kivcore/Trace.h>

namespace kivtoolkit {

void Trace(std::string_view text) noexcept
{
    static constinit kivcore::debug::TraceSite site("kivmetadataui", 0);
    site.Report(text);
}

}  // namespace kivtoolkit
