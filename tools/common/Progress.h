// Tells on standard error how far a long run is: on a terminal in one line that is written over,
// elsewhere in a line now and then.

#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace tools {

class Progress {
public:
    /// @param what   the things that are counted, such as "files"
    /// @param total  how many there are; nothing is told for a single one
    Progress(std::string_view program, std::string_view what, std::size_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Wipes the line.
    ~Progress();

    /// One more is done.
    void Step();

    /// Writes a line of its own to standard error.
    void Tell(std::string_view line);

    /// Wipes the line, so that something else can be written to the terminal. The next steps bring
    /// it back.
    void Wipe();

private:
    using Clock = std::chrono::steady_clock;

    const std::string program_;
    const std::string what_;
    const std::size_t total_;
    const bool isTerminal_;
    std::size_t done_ = 0;
    std::size_t shownUnits_ = 0;  // of the line that stands on the terminal
    Clock::time_point next_;      // when to tell again
};

}  // namespace tools
