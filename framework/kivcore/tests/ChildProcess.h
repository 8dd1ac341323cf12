// Another program, run to its end, on any system: RunProgram and ChildOutcome.

#pragma once

#ifdef _WIN32
#include "framework/kivcore/tests/ChildProcess_win.h"
#else
#include "framework/kivcore/tests/ChildProcess_posix.h"
#endif
