// The commands of pemtext. Each returns the exit status; bad input is thrown as Failure.

#pragma once

#include "tools/pemtext/CommandLine.h"

#include <span>
#include <string_view>

namespace pemtext {

enum ExitStatus { kDone = 0, kBad = 1, kWrongUsage = 2 };

struct Command {
    std::string_view name;
    std::string_view usage;  // behind the name
    std::string_view help;   // whole lines
    std::span<const OptionRow> options;
    std::size_t minFiles;
    std::size_t maxFiles;
    int (*run)(const Arguments& arguments);
};

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
