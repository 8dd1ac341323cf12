// Traces on named channels with levels, and assertions. No channel is on unless the environment
// variable KIV_TRACE names it: "kivxmp", "kivui:6", "*:9", separated by commas; a bare name is
// level 0. What that variable switched on goes to standard error as long as there is no sink. While
// a channel is off a trace site costs one comparison: it asks again only when TraceChangeCount has
// moved.

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

#include <kivcore/Export.h>

namespace kivcore::debug {

/// True if messages of `level` (0 is the most important) on `channel` are wanted. With
/// `readEnvironment`, KIV_TRACE is read first if that has not happened yet.
KIVCORE_API bool TraceEnabled(const char* channel, int level, bool readEnvironment);

/// Hands `text` (UTF-8, as it is) to the sinks if the channel is on at `level`. Never throws. What
/// a sink traces itself is dropped. May be called from any thread, and calls sinks there.
KIVCORE_API void Trace(int level, const char* channel, std::string_view text) noexcept;

/// Moves whenever channels or sinks change.
KIVCORE_API std::uint32_t TraceChangeCount() noexcept;

/// Switches `channel` on up to `level`, or off with -1. "*" stands for all channels that are named
/// neither here nor by KIV_TRACE.
KIVCORE_API void SetTraceLevel(const char* channel, int level);

using TraceSink = std::function<void(int level, const char* channel, std::string_view text)>;
/// Adds a sink and returns its number. While there is one, nothing goes to standard error.
KIVCORE_API int AddTraceSink(TraceSink sink);
KIVCORE_API void RemoveTraceSink(int number);

/// One trace site's memory of whether its channel is on.
class TraceSite {
public:
    constexpr TraceSite(const char* channel, int level) : channel_(channel), level_(level) {}

    bool Enabled()
    {
        const std::uint32_t now = TraceChangeCount();
        if (seen_.load(std::memory_order_relaxed) != now) {
            enabled_.exchange(TraceEnabled(channel_, level_, true));
            seen_.exchange(now);
        }
        return enabled_.load(std::memory_order_relaxed);
    }
    void Write(std::string_view text) const { Trace(level_, channel_, text); }
    /// Writes `text` if the channel is on; a failure to find out loses it.
    void Report(std::string_view text) noexcept
    {
        try {
            if (Enabled()) {
                Write(text);
            }
        } catch (...) {
        }
    }

private:
    const char* channel_;
    int level_;
    std::atomic<std::uint32_t> seen_{0};  // the count is never 0
    std::atomic<bool> enabled_{false};
};

/// Told of a failed assertion instead of the trace; for tests. An empty function takes it away.
using AssertHandler = std::function<void(const char* file, int line, const char* text)>;
KIVCORE_API void SetAssertHandler(AssertHandler handler);
/// Traces on "kivcore" (and stops in a debugger, if one is attached); never ends the process.
KIVCORE_API void AssertionFailed(const char* file, int line, const char* text) noexcept;
/// Reports a failed assertion with a place and a message of the caller's choice; the handler is
/// told "function: condition: message". Null texts count as empty.
/// @return true if the caller should stop in a debugger, where one is attached (Debugger.h)
KIVCORE_API bool DoSimpleAssert(const char* file, int line, const char* function,
                                const char* condition, const char* message) noexcept;

}  // namespace kivcore::debug

/// States what must hold. Evaluated in every build; a failure is traced and work goes on.
#define KIV_ASSERT(condition)     \
    (static_cast<bool>(condition) \
         ? static_cast<void>(0)   \
         : ::kivcore::debug::AssertionFailed(__FILE__, __LINE__, #condition))
