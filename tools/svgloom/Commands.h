// The commands of svgloom. Each returns the exit status; bad input is thrown as tools::Failure.

#pragma once

#include "tools/common/Program.h"

#include <span>

namespace svgloom {

/// All of them, in the order of the help text.
std::span<const tools::Command> Commands();

// CallsCommand.cpp
int RunCalls(const tools::Arguments& arguments);
// RenderCommand.cpp
int RunRender(const tools::Arguments& arguments);
// check/CheckCommand.cpp
int RunCheck(const tools::Arguments& arguments);
// NamesCommand.cpp
int RunNames(const tools::Arguments& arguments);
// TreeCommand.cpp
int RunTree(const tools::Arguments& arguments);
// ValueCommands.cpp
int RunPath(const tools::Arguments& arguments);
int RunTransform(const tools::Arguments& arguments);
int RunColor(const tools::Arguments& arguments);
int RunCss(const tools::Arguments& arguments);

}  // namespace svgloom
