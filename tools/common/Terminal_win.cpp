#include "tools/common/Terminal.h"

#include <windows.h>

namespace tools {

// Not what _isatty asks for: that holds for every device, "NUL" included.
bool IsStandardErrorATerminal()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

}  // namespace tools
