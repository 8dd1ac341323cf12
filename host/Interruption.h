// The request to stop a long run, such as Ctrl-C.

#pragma once

namespace kivhost {

/// While one lives, the first request is noted and the program goes on, so that it can finish what
/// it is at; a second one ends it at once. One at a time.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    bool IsAskedFor() const;

    /// Ends the program as the request would have done, so that whoever started it sees why.
    /// Returns the exit status where the system leaves that to the program.
    int End() const;
};

}  // namespace kivhost
