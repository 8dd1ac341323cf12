// What the worker program needs of its system.

#pragma once

#include <string>
#include <vector>

/// The arguments behind the program's name, UTF-8. Takes those that main() was given.
std::vector<std::string> WorkerArguments(int count, char** arguments);
