#include "tools/common/Terminal.h"

#include <unistd.h>

namespace tools {

bool IsStandardErrorATerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

}  // namespace tools
