#include "framework/kivcore/src/Debugger.h"

#include <windows.h>

namespace kivcore::debug {

bool IsDebuggerAttached() noexcept
{
    return IsDebuggerPresent() != FALSE;
}

void StopInDebugger() noexcept
{
    DebugBreak();
}

}  // namespace kivcore::debug
