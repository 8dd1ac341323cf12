// A tool of several commands: its table of commands, help, failures and exit status.

#pragma once

#include "tools/common/CommandLine.h"

#include <span>
#include <string_view>

namespace tools {

enum ExitStatus { kDone = 0, kBad = 1, kWrongUsage = 2 };

/// Returns the exit status. Bad input is thrown as Failure, a wrong command line as UsageError.
struct Command {
    std::string_view name;
    std::string_view usage;  // behind the name
    std::string_view help;   // whole lines
    std::span<const OptionRow> options;
    std::size_t minFiles;
    std::size_t maxFiles;
    int (*run)(const Arguments& arguments);
};

struct Program {
    std::string_view name;
    std::string_view about;  // what it does, whole lines
    std::string_view version;
    std::span<const Command> commands;  // in the order of the help text
};

/// Runs what the arguments of main() ask for, tells what fails, and returns the exit status.
int RunProgram(const Program& program, int argc, char** argv);

}  // namespace tools
