// What the tools share, under this tool's own names.

#pragma once

#include "tools/common/CommandLine.h"
#include "tools/common/Files.h"
#include "tools/common/Findings.h"
#include "tools/common/Json.h"
#include "tools/common/Program.h"

namespace pemtext {

using namespace tools;

}  // namespace pemtext
