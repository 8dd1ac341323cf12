// The commands of pemtext. Each returns the exit status; bad input is thrown as Failure.

#pragma once

#include "tools/pemtext/Common.h"

#include <span>
#include <string_view>

namespace pemtext {

/// All of them, in the order of the help text.
std::span<const Command> Commands();

// DumpCommand.cpp
int RunDump(const Arguments& arguments);
// LookupCommands.cpp
int RunLookup(const Arguments& arguments);
int RunLocalize(const Arguments& arguments);
int RunValue(const Arguments& arguments);
// WriteCommands.cpp
int RunCompile(const Arguments& arguments);
int RunExport(const Arguments& arguments);
int RunText(const Arguments& arguments);
// CheckCommand.cpp
int RunCheck(const Arguments& arguments);
// StatsCommand.cpp
int RunStats(const Arguments& arguments);
// ExtractCommand.cpp
int RunExtract(const Arguments& arguments);
// MergeCommand.cpp
int RunMerge(const Arguments& arguments);
// PseudoCommand.cpp
int RunPseudo(const Arguments& arguments);
// PoCommands.cpp
int RunFromPo(const Arguments& arguments);
int RunToPo(const Arguments& arguments);

}  // namespace pemtext
