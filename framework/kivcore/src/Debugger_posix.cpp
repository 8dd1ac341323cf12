#include "framework/kivcore/src/Debugger.h"

#include <array>
#include <charconv>
#include <csignal>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace kivcore::debug {

namespace {

// A tracer that is no debugger (strace) would let the signal through, and the process would end.
constexpr std::string_view kDebuggers[] = {"gdb", "gdbserver", "lldb", "lldb-server", "rr"};

constexpr std::string_view kTracerField = "TracerPid:";

/// The beginning of a small file of the system's; empty where it cannot be read.
std::string ReadStart(const std::string& path)
{
    std::string text;
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return text;
    }
    std::array<char, 4096> buffer{};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    close(descriptor);
    if (count > 0) {
        text.assign(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

/// Number of the process that traces this one; 0 for none.
int TracerProcess()
{
    const std::string status = ReadStart("/proc/self/status");
    const std::size_t field = status.find(kTracerField);
    if (field == std::string::npos) {
        return 0;
    }
    const std::size_t digit = status.find_first_of("0123456789", field + kTracerField.size());
    int process = 0;
    if (digit != std::string::npos) {
        std::from_chars(status.data() + digit, status.data() + status.size(), process);
    }
    return process;
}

}  // namespace

bool IsDebuggerAttached() noexcept
{
    try {
        const int tracer = TracerProcess();
        if (tracer == 0) {
            return false;
        }
        const std::string name = ReadStart("/proc/" + std::to_string(tracer) + "/comm");
        for (const std::string_view debugger : kDebuggers) {
            if (name == std::string(debugger) + "\n") {
                return true;
            }
        }
    } catch (...) {
        return false;
    }
    return false;
}

void StopInDebugger() noexcept
{
    std::raise(SIGTRAP);
}

}  // namespace kivcore::debug
