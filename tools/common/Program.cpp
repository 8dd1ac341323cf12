#include "tools/common/Program.h"

#include "host/Console.h"
#include "tools/common/Files.h"

#include <exception>
#include <string>
#include <vector>

namespace tools {

namespace {

std::string UsageOf(const Program& program, const Command& command)
{
    return std::string(program.name) + " " + std::string(command.name) +
           (command.usage.empty() ? "" : " ") + std::string(command.usage) + "\n";
}

std::string Overview(const Program& program)
{
    std::string text = "usage: " + std::string(program.name) + " COMMAND ...\n";
    for (const Command& command : program.commands)
        text += "       " + UsageOf(program, command);
    return text + std::string(program.about) + "FILE \"-\" is standard input. " +
           std::string(program.name) +
           " COMMAND --help tells more; -V, --version.\n"
           "Exit status: 0 done, 1 the input is bad or the output cannot be written, 2 the "
           "command\n"
           "line is wrong.\n";
}

int RunCommand(const Program& program, const Command& command, std::span<const std::string> words)
{
    try {
        for (const std::string& word : words) {
            if (word == "--help") {
                Print("usage: " + UsageOf(program, command) + std::string(command.help));
                return kDone;
            }
            if (word == "--")
                break;
        }
        const Arguments arguments(command.options, words);
        if (arguments.Files().size() < command.minFiles)
            throw UsageError("a file is missing");
        if (arguments.Files().size() > command.maxFiles)
            throw UsageError("too many files");
        return command.run(arguments);
    } catch (const UsageError& error) {
        Tell(std::string(program.name) + " " + std::string(command.name) + ": " + error.what() +
             "\nusage: " + UsageOf(program, command));
        return kWrongUsage;
    }
}

int Run(const Program& program, std::span<const std::string> words)
{
    if (words.empty()) {
        Tell(Overview(program));
        return kWrongUsage;
    }
    if (words[0] == "--help") {
        Print(Overview(program));
        return kDone;
    }
    if (words[0] == "-V" || words[0] == "--version") {
        Print(std::string(program.name) + " " + std::string(program.version) + "\n");
        return kDone;
    }
    for (const Command& command : program.commands) {
        if (command.name == words[0])
            return RunCommand(program, command, words.subspan(1));
    }
    Tell(std::string(program.name) + ": unknown command \"" + words[0] + "\"\n" +
         Overview(program));
    return kWrongUsage;
}

// Runs `step`; what it throws is told and gives kBad.
template <class Step>
int Contain(const Program& program, Step&& step)
{
    try {
        return step();
    } catch (const std::exception& error) {
        Tell(std::string(program.name) + ": " + error.what() + "\n");
        return kBad;
    }
}

}  // namespace

int RunProgram(const Program& program, int argc, char** argv)
{
    return Contain(program, [&] {
        const kivhost::Console console;
        const int status = Contain(program, [&] {
            const std::vector<std::string> words = kivhost::CommandLineArguments(argc, argv);
            return Run(program, words);
        });
        // What was printed goes out even where the rest fails.
        const int flushed = Contain(program, [] {
            FlushOutput();
            return static_cast<int>(kDone);
        });
        return flushed == kDone ? status : flushed;
    });
}

}  // namespace tools
