// Whether a debugger watches the process, and stopping in it.

#pragma once

#include <kivcore/Export.h>

namespace kivcore::debug {

/// True if a program that is known to catch a stop is attached.
KIVCORE_API bool IsDebuggerAttached() noexcept;

/// Stops in the debugger. Only where IsDebuggerAttached(): it would end the process elsewhere.
KIVCORE_API void StopInDebugger() noexcept;

}  // namespace kivcore::debug
