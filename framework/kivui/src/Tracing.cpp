#include "framework/kivui/src/Tracing.h"

#include <exception>
#include <string>

#include <kivcore/Trace.h>

namespace kivui {

void TraceFailure(std::string_view what, std::string_view reason) noexcept
{
    static constinit kivcore::debug::TraceSite site("kivui", 0);
    try {
        if (site.Enabled()) {
            site.Write(std::string(what).append(": ").append(reason));
        }
    } catch (const std::exception&) {
        site.Write(what);  // no memory for the whole message
    }
}

}  // namespace kivui
