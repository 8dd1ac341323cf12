// The program's ends towards whoever started it: its command line, and what it prints.

#pragma once

#include <string>
#include <vector>

namespace kivhost {

/// While it lives, the standard streams pass bytes on as they are, and a console takes them for
/// UTF-8.
class Console {
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console();

private:
    [[maybe_unused]] unsigned codePageBefore_ = 0;  // on Windows; 0: nothing to put back
};

/// The arguments behind the program's name, UTF-8. Takes those that main() was given; a system
/// whose main() gets them in another encoding is asked for its own.
std::vector<std::string> CommandLineArguments(int argc, char** argv);

}  // namespace kivhost
