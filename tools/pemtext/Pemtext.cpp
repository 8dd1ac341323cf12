// pemtext: looks into dictionaries, converts and checks them.

#include "host/Console.h"
#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Files.h"

#include <cstdio>
#include <exception>
#include <span>
#include <string>
#include <vector>

#ifndef KIV_VERSION
#error "the build names the version"
#endif

namespace pemtext {

namespace {

std::string Overview()
{
    std::string text = "usage: pemtext COMMAND ...\n";
    for (const Command& command : Commands())
        text +=
            "       pemtext " + std::string(command.name) + " " + std::string(command.usage) + "\n";
    return text +
           "FILE \"-\" is standard input. pemtext COMMAND --help tells more; -V, --version.\n";
}

std::string UsageOf(const Command& command)
{
    return "usage: pemtext " + std::string(command.name) + " " + std::string(command.usage) + "\n";
}

void Tell(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
}

int RunCommand(const Command& command, std::span<const std::string> words)
{
    try {
        for (const std::string& word : words) {
            if (word == "--help") {
                Print(UsageOf(command) + std::string(command.help));
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
        Tell("pemtext " + std::string(command.name) + ": " + error.what() + "\n" +
             UsageOf(command));
        return kWrongUsage;
    }
}

int Run(std::span<const std::string> words)
{
    if (words.empty()) {
        Tell(Overview());
        return kWrongUsage;
    }
    if (words[0] == "--help") {
        Print(Overview());
        return kDone;
    }
    if (words[0] == "-V" || words[0] == "--version") {
        Print("pemtext " KIV_VERSION "\n");
        return kDone;
    }
    for (const Command& command : Commands()) {
        if (command.name == words[0])
            return RunCommand(command, words.subspan(1));
    }
    Tell("pemtext: unknown command \"" + words[0] + "\"\n" + Overview());
    return kWrongUsage;
}

// What was printed goes out even where the rest fails.
int RunAndFlush(std::span<const std::string> words)
{
    int status = kBad;
    try {
        status = Run(words);
    } catch (const std::exception& error) {
        Tell("pemtext: " + std::string(error.what()) + "\n");
    }
    try {
        FlushOutput();
    } catch (const std::exception& error) {
        Tell("pemtext: " + std::string(error.what()) + "\n");
        status = kBad;
    }
    return status;
}

}  // namespace

}  // namespace pemtext

int main(int argc, char** argv)
{
    try {
        const kivhost::Console console;
        return pemtext::RunAndFlush(kivhost::CommandLineArguments(argc, argv));
    } catch (const std::exception& error) {
        pemtext::Tell("pemtext: " + std::string(error.what()) + "\n");
        return pemtext::kBad;
    }
}
