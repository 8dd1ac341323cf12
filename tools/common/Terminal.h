// Whether somebody watches.

#pragma once

namespace tools {

bool IsStandardErrorATerminal();

}  // namespace tools
