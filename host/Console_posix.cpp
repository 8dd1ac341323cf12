#include "host/Console.h"

namespace kivhost {

Console::Console() = default;

Console::~Console() = default;

std::vector<std::string> CommandLineArguments(int argc, char** argv)
{
    return {argv + 1, argv + argc};
}

}  // namespace kivhost
