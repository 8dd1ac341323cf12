// What the sources of each system implement.

#pragma once

#include <kivcore/Debugger.h>
