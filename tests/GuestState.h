// What a guest must leave alone in its host's process: for tests that nothing of it changes.

#pragma once

#include <map>
#include <string>

namespace kivtests {

/// The locale, the working folder, every signal's handling, the environment and the like: by name.
using ProcessState = std::map<std::string, std::string>;

ProcessState StateOfProcess();

/// What differs, one line each; empty for nothing.
std::string Differences(const ProcessState& before, const ProcessState& after);

/// True once the windowing toolkit was started in this process; being loaded does not count.
bool IsToolkitStarted();

/// Keeps what this process prints, on either stream, from the screen while it lives.
class OutputCapture {
public:
    OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;
    ~OutputCapture();

    /// Ends the capture; what was printed.
    std::string Finish();

private:
    void Restore();

    int file_ = -1;
    int standardOutput_ = -1;
    int standardError_ = -1;
};

}  // namespace kivtests
