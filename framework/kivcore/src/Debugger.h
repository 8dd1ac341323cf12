// Whether a debugger watches the process, and stopping in it.

#pragma once

namespace kivcore::debug {

/// True if a program that is known to catch a stop is attached.
bool IsDebuggerAttached() noexcept;

/// Stops in the debugger. Only where IsDebuggerAttached(): it would end the process elsewhere.
void StopInDebugger() noexcept;

}  // namespace kivcore::debug
